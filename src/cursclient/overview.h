// The station at a glance: one window with a row per instrument, and the events of the station. F2 opens it;
// it is made only then, so that who never asks for it sees and saves nothing of it. It goes by the watch over
// the console's link, which runs from the first message on.
#pragma once

#include "libvesk/watch/watch.h"

// The watch over the console's link; begins with the first call.
[[nodiscard]] WATCH& OVERVIEW_watch();
// Every message of the link.
void OVERVIEW_message(const VESKMSG_proc_msg* pm);
// Notes something that this console did, such as a command that it sent to `dest` ("" for all).
void OVERVIEW_note(const char* dest, const char* text);
// Once per pass: finds out who has become silent, and draws the window while it shows.
void OVERVIEW_update();
// For the terminal's title: the station's name and how many events wait to be acknowledged.
[[nodiscard]] std::string OVERVIEW_title();
// F2 at any time; the window's own keys while it has the focus.
[[nodiscard]] BOOL OVERVIEW_keypress(int key);
// Forgets the window and the watch: before curses ends, and between tests.
void OVERVIEW_cleanup();
