// The terminal as curses runs it: started so that a bad one can be reported, ended so that it is whole again,
// and written to without ever waiting for it. What an update writes is kept until the terminal has taken it,
// so that one that is held, slow or not read by anybody holds up nothing but its own picture.
#pragma once

#include <string>

#include "libvesk/support/types.h"

// Starts curses on standard input and output. FALSE, with the reason on standard error, when the terminal is
// no good; the process goes on.
[[nodiscard]] BOOL WINSCREEN_start();
// Brings the terminal up to date with what was drawn: curses' doupdate. Without a start that is all it does.
void WINSCREEN_update();
// Writes what the terminal has not taken yet. TRUE when nothing is left: the next picture may be drawn.
[[nodiscard]] BOOL WINSCREEN_ready();
// The descriptor that tells when the terminal takes more, -1 while nothing is left to write.
[[nodiscard]] int WINSCREEN_waiting_fd();
// Names the terminal's window, where it has one that can be named; what it was called before comes back with
// the terminal. `title` is printable ASCII.
void WINSCREEN_title(const std::string& title);
// The next update draws the whole screen anew, as when something else has written on it.
void WINSCREEN_repaint();
// Stops the process if the operator asked for it (Ctrl-Z) since the last call, with the terminal given back
// meanwhile. Returns when it goes on.
void WINSCREEN_stop_if_asked();
// TRUE once after each time that the terminal told of a new size. It may have cut what it showed even when
// the size is the old one again by now, which curses takes for no change.
[[nodiscard]] BOOL WINSCREEN_size_signalled();
// Gives the terminal back, within a second even when it is held. Does nothing unless it was started; no
// curses call may follow.
void WINSCREEN_end();
