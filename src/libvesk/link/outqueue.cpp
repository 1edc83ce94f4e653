// The chunks behind an output queue. An empty queue keeps one of them, so that the usual case, where every
// write takes everything, allocates nothing.
#include "libvesk/link/outqueue.h"

#include <algorithm>
#include <cstring>

OUTQUEUE::chunk& OUTQUEUE::tail_with_space() {
    if (chunks_.empty() || chunks_.back().end == CHUNK_SIZE)
        chunks_.push_back({std::make_unique_for_overwrite<std::byte[]>(CHUNK_SIZE), 0, 0});
    return chunks_.back();
}

void OUTQUEUE::append(FRAME_span bytes) {
    size_ += bytes.size();
    while (!bytes.empty()) {
        chunk& c = tail_with_space();
        const std::size_t n = std::min(bytes.size(), CHUNK_SIZE - c.end);
        std::memcpy(c.bytes.get() + c.end, bytes.data(), n);
        c.end += n;
        bytes = bytes.subspan(n);
    }
}

OUTQUEUE::pieces OUTQUEUE::front() const {
    pieces out;
    for (std::size_t i = 0; i < std::min(PIECES, chunks_.size()); ++i)
        out[i] = {chunks_[i].bytes.get() + chunks_[i].begin, chunks_[i].end - chunks_[i].begin};
    return out;
}

void OUTQUEUE::consume(std::size_t n) {
    size_ -= std::min(n, size_);
    while (n > 0 && !chunks_.empty()) {
        chunk& c = chunks_.front();
        const std::size_t here = std::min(n, c.end - c.begin);
        c.begin += here;
        n -= here;
        if (c.begin < c.end) break;
        if (chunks_.size() > 1) {
            chunks_.pop_front();
        } else {
            c.begin = c.end = 0;
        }
    }
}

void OUTQUEUE::clear() {
    chunks_.clear();
    size_ = 0;
}
