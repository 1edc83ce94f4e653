// Scenarios: timed events from a text file, one a line.
//
//   WHEN  TARGET  EVENT [ARGUMENT]
//
// WHEN is seconds of simulated time since the start (90, 1.5), H:MM:SS or MM:SS, or +SECONDS after the event
// before. TARGET is an instrument's source name, "*" for all instruments or "station". Blank lines and what
// follows a "#" at the start of a line or after a blank are left out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simstation/sim.h"

enum SIM_verb {
    SIM_V_COMMS,        // on, off: communications with the instrument
    SIM_V_FLAGS,        // NUMBER: fault bits, 0 for none
    SIM_V_LOGGING,      // on, off
    SIM_V_LEAVE,        // its link closes
    SIM_V_JOIN,         // it comes back
    SIM_V_SET,          // NAME=VALUE: a setting of the kind
    SIM_V_ERROR,        // TEXT: an error line in the station log
    SIM_V_MESSAGE,      // TEXT: a message of the second operator
    SIM_V_BYPASS,       // on, off: the station's averages are bypassed
    SIM_V_CONTAMINATE,  // on, off: the station's averages are marked as contaminated
    SIM_V_QUIT,         // the program ends
};

struct SIM_event {
    double at;  // simulated seconds since the start
    std::string target;
    SIM_verb verb;
    std::string text;     // the argument; the name of a setting
    SIM_value value{""};  // of what has one
    int line;
};

inline constexpr std::string_view SIM_STATION_TARGET = "station";
inline constexpr std::string_view SIM_EVERYONE_TARGET = "*";

// The events in order of time (equal times in order of their lines). Each wrong line appends one text,
// "line 3: what is wrong", to `errors`.
[[nodiscard]] std::vector<SIM_event> SIM_parse_scenario(std::string_view text,
                                                        std::vector<std::string>* errors);
// Appends an error for every event whose target or setting these instruments do not have.
void SIM_check_scenario(const std::vector<SIM_event>& events, const std::vector<SIM_member>& members,
                        std::vector<std::string>* errors);
// Lets the instrument play an event of its own. Joining and leaving are the caller's, who has the link.
void SIM_play_event(SIM_instrument& instrument, const SIM_event& event);
