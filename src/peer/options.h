// The command line of vesk.peer.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "libvesk/support/types.h"
#include "peer/describe.h"

struct PEER_options {
    std::string as;                 // the instrument to be; empty: a CLIENT
    std::string host;               // empty: the default local socket
    BOOL monitor = FALSE;           // also see what is addressed to others
    std::vector<std::string> only;  // shell patterns of message or source names; empty: everything
    std::size_t count = 0;          // end after so many printed lines; 0: never
    double timeout = 0;             // seconds after which to end; 0: never
    std::vector<std::string> send;  // lines to send in place of standard input
    BOOL quiet = FALSE;             // print nothing of what is received
    double silence = 0;             // seconds without a line that are lost communications; 0: never
    std::string replay;             // the recording to play, "-" for standard input; empty: none
    double speed = 1;               // seconds of the recording per second
    double longest_gap = 600;       // seconds of the recording
    // Asks that need no connection.
    BOOL list = FALSE;
    std::vector<std::string> describe;  // names
    DESCRIBE_form form = DESCRIBE_TEXT;
};

// TRUE when one of the patterns matches the message's or the source's name, or there is none.
[[nodiscard]] BOOL PEER_is_wanted(const std::vector<std::string>& only, const char* message,
                                  const char* source);

// Fills the options. A value is the exit status with which the program ends at once (CMDLINE_parse).
[[nodiscard]] std::optional<int> PEER_parse_options(int argc, const char* const* argv, PEER_options* options);
