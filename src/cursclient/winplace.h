// Where windows go: pure arithmetic on the present screen, which is every line but the bottom one (that is
// the status bar's).
#pragma once

#include <cstdlib>
#include <memory>
#include <span>

#include "libvesk/support/types.h"

// Origin and size in columns and rows.
struct WINPLACE_box {
    int x, y, sx, sy;
    bool operator==(const WINPLACE_box&) const = default;
};

// Rows that windows may use; a screen of one line has to be shared.
[[nodiscard]] int WINPLACE_rows();
// The wanted box, cut and moved only as far as the screen demands; at least one cell.
[[nodiscard]] WINPLACE_box WINPLACE_fit(const WINPLACE_box& wanted);
// A box of that size in the middle of the screen; it may start above or left of it.
[[nodiscard]] WINPLACE_box WINPLACE_centered(int sx, int sy);

// Places boxes of the given sizes, the largest first, so that they overlap least; what overlaps alike goes to
// the top and to the left. Writes x and y, in the order given.
void WINPLACE_arrange(std::span<WINPLACE_box> boxes);

// One bit per screen column, set where the column was seen occupied.
class WINPLACE_scan_line {
  public:
    WINPLACE_scan_line();
    // FALSE (errno says why) when there was no memory for it.
    [[nodiscard]] BOOL ok() const { return bits_ != nullptr; }
    void occupy(int x, int width);
    // The leftmost column with `width` free ones from there on, or -1.
    [[nodiscard]] int find_free(int width) const;

  private:
    [[nodiscard]] BOOL occupied(int column) const;
    std::unique_ptr<BYTE[], decltype(&std::free)> bits_;
};
