// The terminal as curses runs it: started so that a bad one can be reported, ended so that it is whole again.
#pragma once

#include "libvesk/types.h"

// Starts curses on standard input and output. FALSE, with the reason on standard error, when the terminal is
// no good; the process goes on.
[[nodiscard]] BOOL WINSCREEN_start();
// Gives the terminal back. Does nothing unless it was started; no curses call may follow.
void WINSCREEN_end();
