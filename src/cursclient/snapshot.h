// The screen as it stands, written to files on F6: as text, and as a picture for a mail or a report.
#pragma once

#include <curses.h>

#include "libvesk/support/types.h"
#include "libveskcurs/picture.h"

// A cell of a curses window as a picture shows it, in the console's colours.
[[nodiscard]] TerminalCell SNAPSHOT_cell(WINDOW* win, int y, int x);
// F6: writes vesk-YYYYMMDD-HHMMSS.txt and .svg (UTC) into the home folder, and tells where, or why not.
[[nodiscard]] BOOL SNAPSHOT_keypress(int key);
