// Clamps, centring and the scan line of automatic placement.
#include "cursclient/winplace.h"

#include <curses.h>

#include <algorithm>
#include <climits>
#include <numeric>
#include <set>
#include <vector>

namespace {

int overlap(const WINPLACE_box& a, const WINPLACE_box& b) {
    const int columns = std::min(a.x + a.sx, b.x + b.sx) - std::max(a.x, b.x);
    const int rows = std::min(a.y + a.sy, b.y + b.sy) - std::max(a.y, b.y);
    return columns > 0 && rows > 0 ? columns * rows : 0;
}

// The place of a box among those that stand: its corner goes to the corners that the others make, since a
// place with the least overlap can always be pushed there, up and to the left.
WINPLACE_box best_place(WINPLACE_box box, const std::vector<WINPLACE_box>& standing) {
    std::set<int> xs{0, COLS - box.sx}, ys{0, WINPLACE_rows() - box.sy};
    for (const WINPLACE_box& other : standing) {
        xs.insert({other.x + other.sx, other.x - box.sx});
        ys.insert({other.y + other.sy, other.y - box.sy});
    }
    int least = INT_MAX;
    WINPLACE_box best = WINPLACE_fit({0, 0, box.sx, box.sy});
    for (const int y : ys) {
        for (const int x : xs) {
            const WINPLACE_box at{x, y, box.sx, box.sy};
            if (WINPLACE_fit(at) != at) continue;
            const int sum = std::transform_reduce(standing.begin(), standing.end(), 0, std::plus<>(),
                                                  [&at](const WINPLACE_box& o) { return overlap(at, o); });
            if (sum >= least) continue;
            least = sum;
            best = at;
        }
    }
    return best;
}

}  // namespace

void WINPLACE_arrange(std::span<WINPLACE_box> boxes) {
    std::vector<std::size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, std::greater<>(),
                             [boxes](std::size_t i) { return boxes[i].sx * boxes[i].sy; });
    std::vector<WINPLACE_box> standing;
    for (const std::size_t i : order) {
        const WINPLACE_box at = best_place(boxes[i], standing);
        boxes[i].x = at.x;
        boxes[i].y = at.y;
        standing.push_back(at);
    }
}

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
