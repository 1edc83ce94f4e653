// Clamps, centring and the scan line of automatic placement.
#include "cursclient/winplace.h"

#include <curses.h>

#include <algorithm>
#include <climits>

int WINPLACE_rows() {
    return std::max(LINES - 1, 1);
}

WINPLACE_box WINPLACE_fit(const WINPLACE_box& wanted) {
    const int columns = std::max(COLS, 1);
    const int sx = std::clamp(wanted.sx, 1, columns);
    const int sy = std::clamp(wanted.sy, 1, WINPLACE_rows());
    return {std::clamp(wanted.x, 0, columns - sx), std::clamp(wanted.y, 0, WINPLACE_rows() - sy), sx, sy};
}

// Each half is rounded by itself, so that an odd window on an odd screen leans right and down.
WINPLACE_box WINPLACE_centered(int sx, int sy) {
    return {COLS / 2 - sx / 2, LINES / 2 - sy / 2, sx, sy};
}

int WINPLACE_centered_text(int width, std::size_t length) {
    const auto columns = static_cast<int>(std::min<std::size_t>(length, INT_MAX));
    return std::max(width / 2 - columns / 2, 1);
}

WINPLACE_scan_line::WINPLACE_scan_line()
    : bits_(static_cast<BYTE*>(std::calloc(static_cast<std::size_t>(COLS) / 8 + 1, 1)), std::free) {}

void WINPLACE_scan_line::occupy(int x, int width) {
    for (int c = std::max(x, 0); c < std::min(x + width, COLS); ++c) {
        BYTE& byte = bits_[static_cast<std::size_t>(c) / 8];
        byte = static_cast<BYTE>(byte | 1U << c % 8);
    }
}

int WINPLACE_scan_line::find_free(int width) const {
    int run = 0;
    for (int c = 0; c < COLS; ++c) {
        run = occupied(c) ? 0 : run + 1;
        if (run >= width) return c + 1 - width;
    }
    return -1;
}

BOOL WINPLACE_scan_line::occupied(int column) const {
    return (bits_[static_cast<std::size_t>(column) / 8] >> column % 8 & 1) != 0;
}
