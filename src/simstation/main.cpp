// vesk.simstation: a simulated aerosol station.
#include "libvesk/support/descriptors.h"
#include "libvesk/support/util.h"
#include "simstation/station.h"

int main(int argc, char** argv) {
    SIM_options options;
    if (const auto exit_code = SIM_parse_options(argc, argv, &options)) return *exit_code;
    if (!LIBVESK_init("SIMSTATION")) return 2;
    UTIL_exit_signal_poll_setup_hup();
    DESCRIPTORS_raise_limit();
    const int exit_code = SIM_run_station(options);
    LIBVESK_cleanup();
    return exit_code;
}
