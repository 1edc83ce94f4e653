// The Watlow controller's set-point dialog. No menu entry leads to it: it stands ready for stations that
// change set points from the console.
#pragma once

#include "libvesk/support/types.h"

// Asks for the password and opens the dialog for the display of that uid, if it is still there.
void WATLOW_change_setpoint(DWORD uid);
