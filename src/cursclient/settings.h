// The switches of the settings that change how the console behaves; all are off unless the settings file says
// otherwise. They are read where they matter, so that they need no start and no end.
#pragma once

#include <string>

#include "libvesk/support/types.h"

enum SETTINGS_switch {
    SETTINGS_READ_ONLY,  // "Settings;ReadOnly": this console sends nothing, and says so when asked to
    SETTINGS_CONFIRM,    // "Settings;ConfirmCommands": what moves filters, tapes or valves, or deletes, asks
                         // first
    SETTINGS_RECONNECT,  // "Settings;Reconnect": a lost server is waited for
    SETTINGS_MOUSE,      // "Settings;Mouse": clicks focus, drags move, the wheel pages
};
[[nodiscard]] BOOL SETTINGS_on(SETTINGS_switch which);
// "Settings;StationName", at most 40 printable characters; "" when there is none.
[[nodiscard]] std::string SETTINGS_station_name();
