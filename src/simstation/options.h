// The command line of vesk.simstation.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simstation/logger.h"
#include "simstation/roster.h"

struct SIM_options {
    std::string host;  // "" for the local server
    std::string name;  // of the station's own peer
    SIM_settings settings;
    SIM_logger_settings logger;
    std::vector<SIM_member> members;
    std::vector<SIM_event> scenario;
    double speed = 1;            // simulated seconds per second
    FTIME start = VESK_NO_TIME;  // simulated time at the start; -1 for now
    double warm_up = 0;          // simulated seconds that all have run before they announce themselves
    BOOL quiet = FALSE;
};

// Fills the options. A value is the exit status with which the program ends at once (CMDLINE_parse), after
// --list too.
[[nodiscard]] std::optional<int> SIM_parse_options(int argc, const char* const* argv, SIM_options* options);
