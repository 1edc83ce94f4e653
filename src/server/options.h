// The command line of the server.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "libvesk/link/address.h"
#include "server/hub.h"

struct OPTIONS {
    ADDRESS socket;               // the local socket
    std::vector<ADDRESS> listen;  // TCP addresses
    bool verbose = false;
    HUB_params hub;  // all but its log
};

// Nothing when the program ends here, with `status` as its exit status: after help and version with 0, after
// a wrong command line, which has been reported on standard error, with 2.
[[nodiscard]] std::optional<OPTIONS> OPTIONS_parse(int argc, const char* const* argv, int* status);
