// Clipped, cleaned text inside windows. Every display draws through these, so that no text can leave its
// window and nothing from outside reaches the terminal raw.
#include "cursclient/wintext.h"

#include <algorithm>

#include "libvesk/util.h"

namespace {

// The inside is columns 1 to width - 2 and rows 1 to height - 2.
BOOL inside_row(const WINS_window* win, int y) {
    return win != nullptr && win->win != nullptr && y >= 1 && y <= getmaxy(win->win) - 2;
}

}  // namespace

void WINTEXT_put(WINS_window* win, int y, int x, std::string_view text) {
    if (!inside_row(win, y) || x < 1) return;
    const int room = getmaxx(win->win) - 1 - x;
    if (room <= 0 || wmove(win->win, y, x) == ERR) return;
    for (const char c : text.substr(0, static_cast<std::size_t>(room))) {
        const auto byte = static_cast<unsigned char>(c);
        waddch(win->win, UTIL_is_printable(byte) ? byte : ' ');
    }
}

void WINTEXT_put_attr(WINS_window* win, int y, int x, int attr, std::string_view text) {
    if (!inside_row(win, y)) return;
    attr_t old_attrs = 0;
    short old_pair = 0;
    wattr_get(win->win, &old_attrs, &old_pair, nullptr);
    wattrset(win->win, attr);
    WINTEXT_put(win, y, x, text);
    wattr_set(win->win, old_attrs, old_pair, nullptr);
}

void WINTEXT_put_centered(WINS_window* win, int y, int attr, std::string_view text) {
    if (!inside_row(win, y)) return;
    const int x = getmaxx(win->win) / 2 - static_cast<int>(text.size()) / 2;
    WINTEXT_put_attr(win, y, std::max(x, 1), attr, text);
}

void WINTEXT_rule(WINS_window* win, int y, std::string_view title) {
    if (!inside_row(win, y)) return;
    const int width = getmaxx(win->win);
    mvwaddch(win->win, y, 0, ACS_LTEE);
    mvwhline(win->win, y, 1, ACS_HLINE, width - 2);
    mvwaddch(win->win, y, width - 1, ACS_RTEE);
    const int x = width / 2 - static_cast<int>(title.size()) / 2;
    WINTEXT_put(win, y, std::max(x, 1), title);
}
