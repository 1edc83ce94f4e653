// The only unit that knows the command-line library, which is slow to compile.
#include "peer/options.h"

#include <algorithm>
#include <cstdint>

#include "libvesk/support/cmdline.h"

namespace {

constexpr double LONGEST_TIMEOUT = 1e9;  // seconds: thirty years

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
    for (const char* other : {"--as", "--monitor", "--count", "--send", "--quiet", "--silence"})
        replay->excludes(app.get_option(other));
    CMDLINE_number(app, "--speed", &options->speed, {0.001, 1e6}, "seconds of the recording per second")
        ->needs(replay);
    CMDLINE_number(app, "--longest-gap", &options->longest_gap, {1, LONGEST_TIMEOUT},
                   "where the recording says nothing for longer, that many of its seconds are played")
        ->needs(replay);
}

void declare_describe(CLI::App& app, PEER_options* options) {
    auto* list =
        app.add_flag("--list", options->list, "show all kinds of displays, message types and records");
    auto* describe = app.add_option("--describe", options->describe,
                                    "show the fields, types and units of a message or record, or the "
                                    "messages of a kind");
    describe->type_name("NAME")->excludes(list);
    app.add_flag_callback(
        "--json", [options] { options->form = DESCRIBE_JSON; }, "show it as JSON");
    app.add_flag_callback(
           "--markdown", [options] { options->form = DESCRIBE_MARKDOWN; },
           "show the list as a document with all about its entries")
        ->needs(list)
        ->excludes(app.get_option("--json"));
    for (const char* other :
         {"--as", "--monitor", "--only", "--count", "--timeout", "--replay", "--send", "--quiet"})
        for (CLI::Option* ask : {list, describe})
            ask->excludes(app.get_option(other));
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
    CMDLINE_number(app, "--count", &options->count, {1, SIZE_MAX}, "end after that many printed lines");
    CMDLINE_number(app, "--timeout", &options->timeout, {0.001, LONGEST_TIMEOUT},
                   "end after that many seconds, with status 3");
    app.add_option("--send", options->send, "send that line, and read none from standard input")
        ->type_name("LINE")
        ->allow_extra_args(false);
    app.add_flag("--quiet", options->quiet, "print nothing of what is received")
        ->excludes(app.get_option("--count"))
        ->excludes(app.get_option("--only"));
    CMDLINE_number(app, "--silence", &options->silence, {0.1, LONGEST_TIMEOUT},
                   "after that many seconds without a line, report lost communications")
        ->needs(as);
    declare_replay(app, options);
    declare_describe(app, options);
}

}  // namespace

BOOL PEER_is_wanted(const std::vector<std::string>& only, const char* message, const char* source) {
    return only.empty() || std::any_of(only.begin(), only.end(), [=](const std::string& pattern) {
               return UTIL_wildcard_match(message, pattern.c_str()) ||
                      UTIL_wildcard_match(source, pattern.c_str());
           });
}

std::optional<int> PEER_parse_options(int argc, const char* const* argv, PEER_options* options) {
    CLI::App app(
        "The station's messages as JSON lines: received ones on standard output, one per line;\n"
        "each line on standard input sends one.",
        "vesk.peer");
    declare(app, options);
    return CMDLINE_parse(app, argc, argv);
}
