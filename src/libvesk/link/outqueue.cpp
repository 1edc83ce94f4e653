// Pieces that lie one behind the other in their block become one.
#include "libvesk/link/outqueue.h"

#include <algorithm>
#include <utility>

void OUTQUEUE::append(FRAME_span bytes) {
    while (!bytes.empty())
        append(own_.take(&bytes));
}

void OUTQUEUE::append(const BLOCKS_piece& piece) {
    size_ += piece.bytes.size();
    if (!pieces_.empty()) {
        BLOCKS_piece& last = pieces_.back();
        const std::byte* const end = last.bytes.data() + last.bytes.size();
        if (last.block == piece.block && end == piece.bytes.data()) {
            last.bytes = {last.bytes.data(), last.bytes.size() + piece.bytes.size()};
            return;
        }
    }
    pieces_.push_back(piece);
}

void OUTQUEUE::append(OUTQUEUE* behind) {
    for (const BLOCKS_piece& piece : behind->pieces_)
        append(piece);
    behind->clear();
}

std::size_t OUTQUEUE::front(std::span<FRAME_span, PIECES> spans) const {
    const std::size_t n = std::min(PIECES, pieces_.size());
    for (std::size_t i = 0; i < n; ++i)
        spans[i] = pieces_[i].bytes;
    return n;
}

void OUTQUEUE::consume(std::size_t n) {
    size_ -= std::min(n, size_);
    while (n > 0 && !pieces_.empty()) {
        FRAME_span& bytes = pieces_.front().bytes;
        const std::size_t here = std::min(n, bytes.size());
        bytes = bytes.subspan(here);
        n -= here;
        if (bytes.empty()) pieces_.pop_front();
    }
    if (pieces_.empty()) own_.release();
}

void OUTQUEUE::clear() {
    pieces_.clear();
    size_ = 0;
    own_.release();
}
