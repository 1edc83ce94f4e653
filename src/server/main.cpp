// vesk.server: the message hub of a station.
#include <utility>

#include "libvesk/support/util.h"
#include "server/server.h"

int main(int argc, char** argv) {
    SERVER_options options;
    if (const auto status = SERVER_parse_options(argc, argv, &options)) return *status;
    if (!LIBVESK_init("SERVER")) return 1;
    const int status = SERVER_run(std::move(options));
    LIBVESK_cleanup();
    return status;
}
