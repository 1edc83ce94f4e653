// The mouse, where the settings ask for it: a click focuses the window under it, dragging a window's frame
// moves it, the wheel pages. Off, the terminal's own selecting of text works as ever.
#pragma once

#include "libvesk/support/types.h"

// Asks the terminal for the mouse when the settings do. Once, when curses stands.
void MOUSE_start();
// KEY_MOUSE: what the mouse did. The key that it stands for, such as KEY_NPAGE for the wheel, or 0.
[[nodiscard]] int MOUSE_key(int key);
