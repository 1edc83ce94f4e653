// What can be said on the command line, and the checks of it.
#include "server/options.h"

#include <CLI/CLI.hpp>

namespace {

ADDRESS parse_address(const std::string& text, bool local) {
    ADDRESS address;
    std::string why;
    if (!ADDRESS_parse(text, &address, &why)) throw CLI::ValidationError(why);
    if (address.is_local() != local)
        throw CLI::ValidationError(
            text + (local ? " is not a path: it has no slash" : " is a path, not an address"));
    return address;
}

}  // namespace

std::optional<OPTIONS> OPTIONS_parse(int argc, const char* const* argv, int* status) {
    OPTIONS options;
    options.socket = ADDRESS_default();
    CLI::App app("The message hub of a station: instruments and consoles connect to it.", "vesk.server");
    app.add_option_function<std::string>(
           "--socket", [&](const std::string& text) { options.socket = parse_address(text, true); },
           "local socket to listen on (default " + options.socket.path + ")")
        ->type_name("PATH");
    app.add_option_function<std::vector<std::string>>(
           "--listen",
           [&](const std::vector<std::string>& texts) {
               for (const std::string& text : texts)
                   options.listen.push_back(parse_address(text, false));
           },
           "TCP address to listen on too: NAME, NAME:PORT or [V6]:PORT; may be given several times (default: "
           "none)")
        ->type_name("ADDRESS")
        ->take_all();
    app.add_option("--queue-bytes", options.hub.queue_bytes,
                   "bytes that may wait for a peer that does not read")
        ->check(CLI::Range(std::size_t{FRAME_MAX}, std::size_t{1} << 40))
        ->capture_default_str();
    app.add_option("--keep-bytes", options.hub.keep_bytes, "bytes of messages kept for those who come later")
        ->capture_default_str();
    app.add_option("--stall-seconds", options.hub.stall_seconds,
                   "a peer over that bound that takes nothing for so long is disconnected")
        ->check(CLI::Range(0.25, 3600.0))
        ->capture_default_str();
    app.add_option("--heartbeat", options.hub.heartbeat_seconds,
                   "seconds between two heartbeats to every peer")
        ->check(CLI::Range(0.25, 30.0))
        ->capture_default_str();
    app.add_option("--silence", options.hub.silence_seconds,
                   "a peer silent for so many seconds is disconnected")
        ->check(CLI::Range(1.0, 86400.0))
        ->capture_default_str();
    app.add_flag("-v,--verbose", options.verbose, "log consoles that come and go, too");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        *status = app.exit(e) == 0 ? 0 : 2;
        return std::nullopt;
    }
    return options;
}
