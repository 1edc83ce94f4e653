// The colour pairs of the console and the attributes made of them. With colours off, or on a terminal without
// them, all pairs are white on black: highlights are bold and alarms blink, but a fault looks like any text.
#pragma once

#include "libvesk/support/types.h"

enum WINS_color_pair {
    CP_WHITE_BLACK = 1,
    CP_WHITE_BLUE,
    CP_YELLOW_BLUE,
    CP_YELLOW_BLACK,
    CP_RED_BLUE,
    CP_WHITE_RED,
    CP_LAST
};
static_assert(CP_LAST == 7);

// The saved colour switch; on unless the settings say otherwise.
[[nodiscard]] BOOL WINS_color_setting();
// Defines the pairs; may be called again at any time.
void WINS_setcolors(BOOL enable_color);

// Attributes of texts: normal, highlighted (dialogs and frames), a fault, the blinking alarm of this tick.
[[nodiscard]] int WINS_attr_normal();
[[nodiscard]] int WINS_attr_highlight();
[[nodiscard]] int WINS_attr_fault();
[[nodiscard]] int WINS_attr_alarm();
