// The only unit that knows the command-line library, which is slow to compile.
#include "peer/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "libvesk/support/util.h"
#include "peer/peer.h"

namespace {

std::string check_instrument(const std::string& name) {
    if (name == "CLIENT") return "CLIENT is what a peer is without --as";
    return UTIL_valid_source_name(name) ? "" : "no name of an instrument: 1 to 31 printable characters";
}

void declare_replay(CLI::App& app, PEER_options* options) {
    auto* replay = app.add_option("--replay", options->replay,
                                  "play what --monitor printed, each source as its own peer; - for standard "
                                  "input");
    replay->type_name("FILE")->check([](const std::string& name) {
        return name.empty() ? std::string("no name of a file") : std::string();
    });
    for (const char* other : {"--as", "--monitor", "--count"})
        replay->excludes(app.get_option(other));
    app.add_option("--speed", options->speed, "seconds of the recording per second (default 1)")
        ->type_name("X")
        ->check(CLI::Range(0.001, 1e6))
        ->needs(replay);
}

void declare(CLI::App& app, PEER_options* options) {
    auto* as = app.add_option("--as", options->as, "be the instrument NAME until standard input ends");
    as->type_name("NAME")->check(check_instrument);
    app.add_option("--host", options->host, "NAME, NAME:PORT, [V6]:PORT or a socket's path")
        ->type_name("HOST");
    app.add_flag("--monitor", options->monitor, "also see what is addressed to others")->excludes(as);
    app.add_option("--only", options->only,
                   "print (or play) only what a pattern matches: message or source name")
        ->type_name("PATTERN");
    app.add_option("--count", options->count, "end after N printed lines")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    app.add_option("--timeout", options->timeout, "end after S seconds, with status 3")
        ->type_name("S")
        ->check(CLI::PositiveNumber);
    declare_replay(app, options);
}

}  // namespace

BOOL PEER_is_wanted(const std::vector<std::string>& only, const char* message, const char* source) {
    return only.empty() || std::any_of(only.begin(), only.end(), [=](const std::string& pattern) {
               return UTIL_wildcard_match(message, pattern.c_str()) ||
                      UTIL_wildcard_match(source, pattern.c_str());
           });
}

BOOL PEER_parse_options(int argc, const char* const* argv, PEER_options* options, int* status) {
    CLI::App app(
        "The station's messages as JSON lines: received ones on standard output, one per line;\n"
        "each line on standard input sends one.",
        "vesk.peer");
    declare(app, options);
    try {
        app.parse(argc, argv);
        return TRUE;
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? PEER_EXIT_OK : PEER_EXIT_NO_LINK;
        return FALSE;
    }
}
