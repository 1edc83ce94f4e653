// The command line of the server.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "libvesk/link/address.h"
#include "server/hub.h"

struct SERVER_options {
    ADDRESS socket;               // the local socket
    std::vector<ADDRESS> listen;  // TCP addresses
    bool verbose = false;
    HUB_params hub;  // all but its log
};

// Fills the options. A value is the exit status with which the program ends at once (CMDLINE_parse).
[[nodiscard]] std::optional<int> SERVER_parse_options(int argc, const char* const* argv,
                                                      SERVER_options* options);
