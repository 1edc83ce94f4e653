// Reading the command line, with the list of instruments and the scenario that it names.
#include "simstation/options.h"

#include <cstdint>
#include <cstdio>
#include <fstream>

#include "libvesk/support/cmdline.h"

namespace {

void list_kinds() {
    for (const SIM_kind& kind : SIM_kinds()) {
        std::printf("%-16s %-6s %-24s%s\n", kind.type, kind.name, kind.display_name,
                    kind.on_demand ? " (on demand)" : "");
        for (const SIM_setting& setting : kind.dcl->settings)
            std::printf("    %-12s %s\n", setting.name, setting.help);
    }
}

BOOL read_file(const std::string& path, std::string* text) {
    std::ifstream file(path);
    char chunk[4096];
    while (file.read(chunk, sizeof chunk), file.gcount() > 0)
        text->append(chunk, static_cast<std::size_t>(file.gcount()));
    return file.eof();  // not so when it could not be opened, or is a directory
}

void load_scenario(const std::string& path, SIM_options* options, std::vector<std::string>* errors) {
    std::string text;
    if (!read_file(path, &text)) {
        errors->push_back("cannot read the scenario " + path);
        return;
    }
    std::vector<std::string> wrong;
    options->scenario = SIM_parse_scenario(text, &wrong);
    SIM_check_scenario(options->scenario, options->members, &wrong);
    for (const std::string& line : wrong)
        errors->push_back(path + ": " + line);
}

struct raw_options {
    std::string kinds;
    std::string scenario;
    BOOL list = FALSE;
};

void declare(CLI::App& app, SIM_options* o, raw_options* raw) {
    app.add_option("--host", o->host, "Server: NAME, NAME:PORT, [V6]:PORT or a socket path");
    app.add_option("--kinds", raw->kinds, "Instruments: TYPE[=NAME][*COUNT],... (default: one of each kind)");
    CMDLINE_number(app, "--seed", &o->settings.seed, {0, UINT64_MAX}, "The same seed gives the same values");
    CMDLINE_number(app, "--speed", &o->speed, {0.01, 10000}, "Simulated seconds per second");
    CMDLINE_number(app, "--start", &o->start, {0, 2e9},
                   "Simulated time at the start, seconds since 1970; default: now");
    CMDLINE_number(app, "--warm-up", &o->warm_up, {0, 86400},
                   "Simulated seconds that the instruments have run when they connect");
    CMDLINE_number(app, "--average", &o->settings.average_seconds, {1, 86400},
                   "Length of averages in seconds");
    app.add_option("--scenario", raw->scenario, "File of timed events");
    CMDLINE_number(app, "--errors", &o->logger.errors_per_hour, {0, 3600},
                   "Error lines in the station log per simulated hour");
    app.add_flag("--chatty", o->logger.chatty, "Answer operators' messages");
    app.add_option("--name", o->name, "Name of the station's own peer, its data logger")
        ->capture_default_str();
    app.add_flag("--quiet", o->quiet, "No log output");
    app.add_flag("--list", raw->list, "Print the kinds of instruments and what a scenario can set, and exit");
}

// Faults that the parser itself does not see.
std::vector<std::string> complete(const raw_options& raw, SIM_options* options) {
    std::vector<std::string> errors;
    options->members = SIM_roster(raw.kinds, &errors);
    if (!UTIL_valid_source_name(options->name)) errors.push_back("--name: no valid source name");
    for (const SIM_member& member : options->members) {
        if (member.name == options->name) errors.push_back("--name: " + member.name + " is an instrument");
    }
    if (errors.empty() && !raw.scenario.empty()) load_scenario(raw.scenario, options, &errors);
    return errors;
}

}  // namespace

std::optional<int> SIM_parse_options(int argc, const char* const* argv, SIM_options* options) {
    raw_options raw;
    options->name = "LOGGER";
    CLI::App app("A simulated aerosol station: instruments that connect to a server", "vesk.simstation");
    declare(app, options, &raw);
    if (const auto status = CMDLINE_parse(app, argc, argv)) return status;
    if (raw.list) {
        list_kinds();
        return 0;
    }
    const std::vector<std::string> errors = complete(raw, options);
    for (const std::string& error : errors)
        UTIL_say("vesk.simstation: " + error);
    return errors.empty() ? std::nullopt : std::optional(CMDLINE_WRONG);
}
