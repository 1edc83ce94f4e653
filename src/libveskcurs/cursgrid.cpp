// Drawing into memory, and the difference to what a window shows.
#include "libveskcurs/cursgrid.h"

#include <langinfo.h>

#include <algorithm>
#include <array>
#include <climits>

#include "libvesk/support/util.h"

namespace {

unsigned g_generation = 1;

bool locale_is_utf8() {
    return std::string_view(nl_langinfo(CODESET)) == "UTF-8";
}

int length(std::string_view text) {
    return static_cast<int>(std::min<std::size_t>(text.size(), INT_MAX));
}

}  // namespace

CURSGRID::CURSGRID(WINDOW* win) : win_(win) {
    take_size();
}

void CURSGRID::attach(WINDOW* win) {
    if (win != win_) shown_.clear();
    win_ = win;
}

CURSGRID::cell CURSGRID::blank() const {
    return {L' ', with_pair(A_NORMAL)};
}

chtype CURSGRID::with_pair(chtype attr) const {
    return PAIR_NUMBER(attr) != 0 ? attr : attr | (getbkgd(win_) & A_COLOR);
}

void CURSGRID::take_size() {
    if (rows_ == getmaxy(win_) && cols_ == getmaxx(win_)) return;
    rows_ = getmaxy(win_);
    cols_ = getmaxx(win_);
    drawn_.assign(static_cast<std::size_t>(rows_) * static_cast<std::size_t>(cols_), blank());
    shown_.clear();
}

void CURSGRID::fill(chtype attr) {
    take_size();
    std::fill(drawn_.begin(), drawn_.end(), cell{L' ', with_pair(attr)});
}

// The cell there; null outside the place or the window.
CURSGRID::cell* CURSGRID::at(const CURSGRID_box& place, int y, int x) {
    const bool within = y >= place.y && y - place.y < place.rows && x >= place.x && x - place.x < place.cols;
    if (!within || y < 0 || y >= rows_ || x < 0 || x >= cols_) return nullptr;
    return &drawn_[static_cast<std::size_t>(y) * static_cast<std::size_t>(cols_) +
                   static_cast<std::size_t>(x)];
}

void CURSGRID::set(const CURSGRID_box& place, int y, int x, cell c) {
    if (cell* const there = at(place, y, x)) *there = c;
}

void CURSGRID::put(const CURSGRID_box& place, int y, int x, chtype attr, std::string_view text) {
    const int first = std::max({x, place.x, 0});
    const long end =
        std::min<long>({static_cast<long>(x) + length(text), static_cast<long>(place.x) + place.cols, cols_});
    cell* to = at(place, y, first);
    if (to == nullptr) return;
    const chtype shown = with_pair(attr);
    for (long column = first; column < end; ++column)
        *to++ = {UTIL_shown(text[static_cast<std::size_t>(column - x)]), shown};
}

// Each half is rounded by itself: an odd text in an even width leans right.
void CURSGRID::put_centered(const CURSGRID_box& place, int y, chtype attr, std::string_view text) {
    put(place, y, std::max(cols_ / 2 - length(text) / 2, 1), attr, text);
}

void CURSGRID::put_symbol(const CURSGRID_box& place, int y, int x, chtype symbol_and_attr) {
    set(place, y, x,
        {static_cast<wchar_t>(symbol_and_attr & A_CHARTEXT), with_pair(symbol_and_attr & ~A_CHARTEXT)});
}

void CURSGRID::put_special(const CURSGRID_box& place, int y, int x, chtype attr, wchar_t utf8,
                           chtype elsewhere) {
    if (locale_is_utf8())
        set(place, y, x, {utf8, with_pair(attr)});
    else
        put_symbol(place, y, x, elsewhere | attr);
}

void CURSGRID::put_rule(int y, chtype attr) {
    for (int x = 0; x < cols_; ++x)
        put_symbol(whole(), y, x, ACS_HLINE | attr);
    put_symbol(whole(), y, 0, ACS_LTEE | attr);
    put_symbol(whole(), y, cols_ - 1, ACS_RTEE | attr);
}

void CURSGRID::put_border(chtype attr) {
    const int bottom = rows_ - 1;
    const int right = cols_ - 1;
    for (int x = 0; x < cols_; ++x)
        for (const int y : {0, bottom})
            put_symbol(whole(), y, x, ACS_HLINE | attr);
    for (int y = 0; y < rows_; ++y)
        for (const int x : {0, right})
            put_symbol(whole(), y, x, ACS_VLINE | attr);
    if (cols_ < 2) return;
    put_symbol(whole(), 0, 0, ACS_ULCORNER | attr);
    put_symbol(whole(), 0, right, ACS_URCORNER | attr);
    put_symbol(whole(), bottom, 0, ACS_LLCORNER | attr);
    put_symbol(whole(), bottom, right, ACS_LRCORNER | attr);
}

void CURSGRID::forget_shown() {
    ++g_generation;
}

void CURSGRID::show() {
    take_size();
    if (generation_ != g_generation) shown_.clear();
    generation_ = g_generation;
    if (shown_.empty()) {
        shown_ = drawn_;
        for (int y = 0; y < rows_; ++y)
            hand_over(y, 0, at(whole(), y, 0), cols_);
        return;
    }
    for (int y = 0; y < rows_; ++y)
        show_row(y);
}

void CURSGRID::show_row(int y) {
    const std::size_t start = static_cast<std::size_t>(y) * static_cast<std::size_t>(cols_);
    const auto drawn = drawn_.begin() + static_cast<std::ptrdiff_t>(start);
    const auto shown = shown_.begin() + static_cast<std::ptrdiff_t>(start);
    const auto first = std::mismatch(drawn, drawn + cols_, shown).first;
    if (first == drawn + cols_) return;
    auto end = drawn + cols_;
    while (*(end - 1) == shown[end - 1 - drawn])
        --end;
    hand_over(y, static_cast<int>(first - drawn), &*first, static_cast<int>(end - first));
    std::copy(first, end, shown + (first - drawn));
}

// Cells are made here and copied in one call: of all that curses looks into when it is given a character,
// only what stands here can occur.
void CURSGRID::hand_over(int y, int x, const cell* cells, int n) {
    std::array<cchar_t, 64> batch;
    cchar_t model{};
    chtype attr = 0;
    for (int i = 0; i < n;) {
        std::size_t used = 0;
        const int at = x + i;
        for (; used < batch.size() && i < n; ++i, ++used) {
            if (used == 0 || cells[i].attr != attr) {
                attr = cells[i].attr;
                setcchar(&model, L" ", attr & ~A_COLOR, static_cast<short>(PAIR_NUMBER(attr)), nullptr);
            }
            model.chars[0] = cells[i].ch;
            batch[used] = model;
        }
        mvwadd_wchnstr(win_, y, at, batch.data(), static_cast<int>(used));
    }
}
