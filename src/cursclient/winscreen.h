// The terminal as curses runs it: started so that a bad one can be reported, ended so that it is whole again.
#pragma once

#include "libvesk/support/types.h"

// Starts curses on standard input and output. FALSE, with the reason on standard error, when the terminal is
// no good; the process goes on.
[[nodiscard]] BOOL WINSCREEN_start();
// TRUE once after each time that the terminal told of a new size. It may have cut what it showed even when
// the size is the old one again by now, which curses takes for no change.
[[nodiscard]] BOOL WINSCREEN_size_signalled();
// Gives the terminal back. Does nothing unless it was started; no curses call may follow.
void WINSCREEN_end();
