// The link of a program to its server: the message link with the calls that start-up and the main loop make.
#pragma once

#include "libvesk/link/veskmsg.h"

struct INST_link {
    VESKMSG_link msg_lnk;  // first, so that it can be handed on wherever a message link is wanted
    BOOL msg_lnk_up = FALSE;
};

// How long INST_wait_connected waits before it gives up.
inline constexpr double INST_CONNECT_SECONDS = 10.0;

// Starts connecting. FALSE at once for an address that cannot be.
[[nodiscard]] BOOL INST_connect(INST_link* link, const VESKMSG_connect_params* params);
// Blocks until the handshake completed (TRUE), failed, 10 s have passed or an exit signal arrived.
[[nodiscard]] BOOL INST_wait_connected(INST_link* link);
// Still connected: FALSE after the server went away or was silent for 30 s.
[[nodiscard]] BOOL INST_test_connected(INST_link* link);
void INST_disconnect(INST_link* link);
