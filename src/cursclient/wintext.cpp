// Clipped, cleaned text inside windows. Every display draws through these, so that no text can leave its
// window and nothing from outside reaches the terminal raw.
#include "cursclient/wintext.h"

#include <algorithm>
#include <array>

#include "libvesk/support/util.h"

namespace {

// The inside is columns 1 to width - 2 and rows 1 to height - 2.
BOOL inside_row(const WINS_window* win, int y) {
    return win != nullptr && win->win != nullptr && y >= 1 && y <= getmaxy(win->win) - 2;
}

// A cell as waddch would make it: what has no colour takes the background's.
cchar_t cell_of(WINDOW* win) {
    attr_t attrs = 0;
    short pair = 0;
    wattr_get(win, &attrs, &pair, nullptr);
    if (pair == 0) pair = static_cast<short>(PAIR_NUMBER(getbkgd(win)));
    cchar_t cell{};
    setcchar(&cell, L" ", attrs, pair, nullptr);
    return cell;
}

}  // namespace

// Cells are made here and copied into the window in one go: all that is put is printable ASCII, so that
// nothing of what waddch looks into for every character can occur.
void WINTEXT_put(WINS_window* win, int y, int x, std::string_view text) {
    if (!inside_row(win, y) || x < 1) return;
    const int room = getmaxx(win->win) - 1 - x;
    if (room <= 0) return;
    text = text.substr(0, static_cast<std::size_t>(room));
    cchar_t cell = cell_of(win->win);
    std::array<cchar_t, 64> cells;
    while (!text.empty()) {
        const std::size_t n = std::min(text.size(), cells.size());
        for (std::size_t i = 0; i < n; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            cell.chars[0] = UTIL_is_printable(byte) ? byte : L' ';
            cells[i] = cell;
        }
        mvwadd_wchnstr(win->win, y, x, cells.data(), static_cast<int>(n));
        x += static_cast<int>(n);
        text.remove_prefix(n);
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
