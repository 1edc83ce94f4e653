// The options of the command line and the checks of their values.
#include "server/options.h"

#include "libvesk/support/cmdline.h"

namespace {

constexpr std::size_t MOST_BYTES = std::size_t{1} << 40;

ADDRESS parse_address(const std::string& text, bool local) {
    ADDRESS address;
    std::string why;
    if (!ADDRESS_parse(text, &address, &why)) throw CLI::ValidationError(why);
    if (address.is_local() != local)
        throw CLI::ValidationError(
            text + (local ? " is not a path: it has no slash" : " is a path, not an address"));
    return address;
}

void declare_addresses(CLI::App& app, SERVER_options* o) {
    app.add_option_function<std::string>(
           "--socket", [o](const std::string& text) { o->socket = parse_address(text, true); },
           "local socket to listen on (default " + UTIL_printable(o->socket.path) + ")")
        ->type_name("PATH");
    app.add_option_function<std::vector<std::string>>(
           "--listen",
           [o](const std::vector<std::string>& texts) {
               for (const std::string& text : texts)
                   o->listen.push_back(parse_address(text, false));
           },
           "TCP address to listen on too: NAME, NAME:PORT or [V6]:PORT; may be given several times (default: "
           "none)")
        ->type_name("ADDRESS")
        ->take_all();
}

void declare_limits(CLI::App& app, HUB_params* hub) {
    CMDLINE_number(app, "--queue-bytes", &hub->connection.queue_bytes, {FRAME_MAX, MOST_BYTES},
                   "bytes that may wait for a peer that does not read");
    CMDLINE_number(app, "--memory-bytes", &hub->memory_bytes, {FRAME_MAX, MOST_BYTES},
                   "bytes that may wait for all peers together");
    CMDLINE_number(app, "--keep-bytes", &hub->keep_bytes, {0, MOST_BYTES},
                   "bytes of messages kept for those who come later");
    CMDLINE_number(app, "--stall-seconds", &hub->connection.stall_seconds, {0.25, 3600},
                   "a peer over that bound that takes nothing for so long is disconnected");
    CMDLINE_number(app, "--heartbeat", &hub->heartbeat_seconds, {0.25, 30},
                   "seconds between two heartbeats to every peer");
    CMDLINE_number(app, "--silence", &hub->silence_seconds, {1, 86400},
                   "a peer silent for so many seconds is disconnected");
}

}  // namespace

std::optional<int> SERVER_parse_options(int argc, const char* const* argv, SERVER_options* options) {
    options->socket = ADDRESS_default();
    CLI::App app("The message hub of a station: instruments and consoles connect to it.", "vesk.server");
    declare_addresses(app, options);
    declare_limits(app, &options->hub);
    app.add_flag("-v,--verbose", options->verbose, "log consoles that come and go, too");
    return CMDLINE_parse(app, argc, argv);
}
