// The loop of vesk.peer: messages of the link become lines on standard output, lines of standard input
// become messages.
#pragma once

#include "peer/options.h"

// The exit statuses that scripts rely on; described in vesk.peer(1). An earlier failure of the link outweighs
// the rest.
enum PEER_exit {
    PEER_EXIT_OK = 0,
    PEER_EXIT_WRONG_INPUT = 1,  // some input was wrong and has not been sent, or could not be read
    PEER_EXIT_NO_LINK = 2,      // wrong command line, no connection, or the server's refusal
    PEER_EXIT_TIMEOUT = 3,      // --timeout passed before anything else ended the program
    PEER_EXIT_LOST = 4,         // the server went away, or the output cannot be written
};

// Connects and runs until input, output, link, a limit or an exit signal ends it; returns the exit status.
// `in_fd` and `out_fd` stay open; nothing about them is changed (they may be shared with a shell).
[[nodiscard]] int PEER_run(const PEER_options& options, int in_fd = 0, int out_fd = 1);
