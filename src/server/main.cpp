// vesk.server: the message hub of a station.
#include "libvesk/support/util.h"
#include "server/server.h"

int main(int argc, char** argv) {
    int status = 0;
    const auto options = OPTIONS_parse(argc, argv, &status);
    if (!options) return status;
    if (!LIBVESK_init("SERVER")) return 1;
    status = SERVER_run(*options);
    LIBVESK_cleanup();
    return status;
}
