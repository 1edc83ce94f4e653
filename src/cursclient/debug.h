// The debug console: captures standard error while curses owns the terminal, and shows it beside the last
// keys and messages.
#pragma once

#include "libvesk/link/veskmsg.h"

// Starts the capture of standard error. FALSE (said on the real standard error) when it cannot.
[[nodiscard]] BOOL DEBUG_preinit();
// Makes the window.
[[nodiscard]] BOOL DEBUG_init();
void DEBUG_cleanup();
// Ends the capture: descriptor 2 is the real standard error again, and what was captured and not yet shown is
// written to it. Does nothing without a capture.
void DEBUG_release_stderr();
void DEBUG_update();
// Notes a trace line; always FALSE, so that the message goes on.
[[nodiscard]] BOOL DEBUG_handle_message(const VESKMSG_proc_msg* pm);
[[nodiscard]] BOOL DEBUG_keypress(int key);
void DEBUG_interpkeypress(int key);
void DEBUG_rawkeypress(int key);
