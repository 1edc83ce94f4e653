// A line over the limit is dropped as it comes, so that its length does not matter.
#include "peer/lines.h"

void LINES_reader::keep(std::string_view piece) {
    if (too_long_) return;
    if (piece.size() > limit_ - line_.size()) {
        too_long_ = TRUE;
        line_ = std::string();  // gives the memory back, too
        return;
    }
    line_ += piece;
}
