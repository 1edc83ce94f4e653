// Bringing the layers up in the order of the program, and every window in view.
#include "console_rig.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "cursclient/cursclient.h"
#include "cursclient/debug.h"
#include "cursclient/display.h"
#include "cursclient/mainmenu.h"
#include "cursclient/passwd.h"
#include "cursclient/status.h"
#include "cursclient/wins.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"

namespace {

FTIME g_now = 0;

void check(BOOL ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "the console does not start: %s\n", what);
    std::abort();
}

// Side by side in rows; a row that finds no room below begins at the top again, over what stands there.
void show_all_windows() {
    int x = 0;
    int y = 0;
    int row_height = 0;
    for (WINS_window& win : LL_each<WINS_window>(g_window_list)) {
        const int width = getmaxx(win.win);
        const int height = getmaxy(win.win);
        if (x + width > COLS) {
            x = 0;
            y += std::exchange(row_height, 0);
        }
        if (y + height > LINES - 1) y = 0;
        WINS_show_window(&win);
        WINS_absolute_move(&win, x, y);
        x += width;
        row_height = std::max(row_height, height);
    }
}

}  // namespace

CONSOLE_rig::CONSOLE_rig() : screen_(LINES_USED, COLUMNS_USED) {
    g_conf = CONF_alloc();
    g_tick = 1;
    g_now = station.now();
    UTIL_set_clock([] { return g_now; });
    WINS_setup_screen();
    check(CURSDIALOG_init(), "dialogs");
    check(STATUS_init(), "status bar");
    check(PASSWD_init(), "password");
    check(MAINMENU_init(), "main menu");
    check(DISPLAY_init(), "displays");
    check(DEBUG_init(), "debug console");
    deliver(station.join(), station.now());
    for (int i = 0; i < 120; ++i)  // every average has come
        deliver(station.next_second(), station.now());
    distribute_key(CURSKEYS_CTRL_E);  // the error strip stays
    show_all_windows();
}

CONSOLE_rig::~CONSOLE_rig() {
    DEBUG_cleanup();
    DISPLAY_cleanup();
    MAINMENU_cleanup();
    PASSWD_cleanup();
    STATUS_cleanup();
    CURSDIALOG_cleanup();
    WINS_cleanup();
    UTIL_set_clock(nullptr);
    CONF_free(g_conf);
    g_conf = nullptr;
}

void CONSOLE_rig::deliver(const std::vector<STATION_message>& messages, FTIME now) {
    g_now = now;
    for (const STATION_message& m : messages) {
        VESKMSG_proc_msg pm{NETMSG_by_type(m.msg),
                            m.dsd,
                            FRAME_TO_ALL,
                            m.source,
                            "",
                            m.dsd != nullptr ? m.payload.data() : nullptr};
        message_proc(&pm, nullptr);
    }
}
