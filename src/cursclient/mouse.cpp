#include "cursclient/mouse.h"

#include <curses.h>
#include <panel.h>

#include <ranges>
#include <vector>

#include "cursclient/settings.h"
#include "cursclient/wins.h"
#include "libveskcurs/cursdialog.h"

namespace {

WINS_UID g_dragged;              // the window whose frame is held; "" for none
int g_held_x = 0, g_held_y = 0;  // where, from its corner

// The highest visible window at that cell, or null.
WINS_window* window_at(int y, int x) {
    for (PANEL* pan = panel_below(nullptr); pan != nullptr; pan = panel_below(pan)) {
        if (!wenclose(panel_window(pan), y, x)) continue;
        for (WINS_window& win : LL_each<WINS_window>(g_window_list))
            if (win.pan == pan && win.visible) return &win;
    }
    return nullptr;
}

BOOL is_on_frame(const WINS_window& win, int y, int x) {
    const int row = y - getbegy(win.win), col = x - getbegx(win.win);
    return row == 0 || col == 0 || row == getmaxy(win.win) - 1 || col == getmaxx(win.win) - 1;
}

void press(int y, int x) {
    WINS_window* win = window_at(y, x);
    if (win == nullptr) return;
    WINS_focus_window(win);
    if (!is_on_frame(*win, y, x)) return;
    WINS_uid_of_window(win, &g_dragged);
    g_held_y = y - getbegy(win->win);
    g_held_x = x - getbegx(win->win);
}

void drag_to(int y, int x) {
    if (g_dragged[0] == '\0') return;
    WINS_absolute_move(WINS_window_by_uid(&g_dragged), x - g_held_x, y - g_held_y);
}

// The key that the event stands for, or 0.
int take(const MEVENT& event) {
    if ((event.bstate & BUTTON4_PRESSED) != 0) return KEY_PPAGE;
    if ((event.bstate & BUTTON5_PRESSED) != 0) return KEY_NPAGE;
    if (CURSDIALOG_active()) return 0;
    if ((event.bstate & BUTTON1_PRESSED) != 0) {
        press(event.y, event.x);
    } else {
        drag_to(event.y, event.x);
        if ((event.bstate & BUTTON1_RELEASED) != 0) g_dragged[0] = '\0';
    }
    return 0;
}

}  // namespace

void MOUSE_start() {
    g_dragged[0] = '\0';
    if (!SETTINGS_on(SETTINGS_MOUSE)) return;
    mouseinterval(0);  // presses and releases as they come: nothing here is a double click
    mousemask(BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON4_PRESSED | BUTTON5_PRESSED | REPORT_MOUSE_POSITION,
              nullptr);
}

int MOUSE_key(int key) {
    if (key != KEY_MOUSE) return 0;
    // Several events that came together are one key, and curses hands them out latest first.
    std::vector<MEVENT> events;
    for (MEVENT event; getmouse(&event) == OK;)
        events.push_back(event);
    int stands_for = 0;
    for (const MEVENT& event : std::views::reverse(events))
        if (const int k = take(event); k != 0) stands_for = k;
    return stands_for;
}
