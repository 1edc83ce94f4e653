// The colour pairs and the attributes that texts are drawn in.
#include "cursclient/wincolor.h"

#include <curses.h>

#include <iterator>

#include "cursclient/globals.h"
#include "libvesk/support/util.h"

BOOL WINS_color_setting() {
    const char* value = CONF_lookup(g_conf, "Settings;EnableColor");
    return value == nullptr || UTIL_text_is_true(value);
}

void WINS_setcolors(BOOL enable_color) {
    struct pair {
        short number, foreground, background;
    };
    static constexpr pair PAIRS[] = {
        {CP_WHITE_BLACK, COLOR_WHITE, COLOR_BLACK},   {CP_WHITE_BLUE, COLOR_WHITE, COLOR_BLUE},
        {CP_RED_BLUE, COLOR_RED, COLOR_BLUE},         {CP_YELLOW_BLUE, COLOR_YELLOW, COLOR_BLUE},
        {CP_YELLOW_BLACK, COLOR_YELLOW, COLOR_BLACK}, {CP_WHITE_RED, COLOR_WHITE, COLOR_RED},
    };
    static_assert(std::size(PAIRS) == CP_LAST - 1);
    const BOOL colored = has_colors() && COLOR_PAIRS >= CP_LAST + 1 && enable_color;
    for (const pair& p : PAIRS)
        init_pair(p.number, colored ? p.foreground : static_cast<short>(COLOR_WHITE),
                  colored ? p.background : static_cast<short>(COLOR_BLACK));
}

int WINS_attr_normal() {
    return static_cast<int>(COLOR_PAIR(CP_WHITE_BLUE));
}

int WINS_attr_highlight() {
    return static_cast<int>(A_BOLD | COLOR_PAIR(CP_YELLOW_BLUE));
}

int WINS_attr_fault() {
    return static_cast<int>(COLOR_PAIR(CP_RED_BLUE));
}

int WINS_attr_alarm() {
    return static_cast<int>(COLOR_PAIR(CP_RED_BLUE) | (GLOBALS_blink_bold() ? A_BOLD : A_NORMAL));
}
