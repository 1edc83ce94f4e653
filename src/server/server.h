// The server as a program: its sockets, its clockwork and its log around one hub.
#pragma once

#include "server/options.h"

// Runs until SIGTERM, SIGINT or SIGHUP. The exit status: 0 after such an end, 1 when it could not
// start.
[[nodiscard]] int SERVER_run(SERVER_options options);
