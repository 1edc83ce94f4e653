// Bytes on their way out to one peer: appended as whole frames, taken off in whatever pieces the socket
// takes. They lie in chunks that never move, so that a write under way may point into them while more is
// appended.
#pragma once

#include <array>
#include <deque>
#include <memory>
#include <span>

#include "libvesk/link/frame.h"

class OUTQUEUE {
  public:
    static constexpr std::size_t CHUNK_SIZE = 64 * 1024;
    static constexpr std::size_t PIECES = 4;  // at most so many chunks go into one write
    using pieces = std::array<FRAME_span, PIECES>;

    void append(FRAME_span bytes);
    // The bytes to write next, in order; the unused pieces are empty.
    [[nodiscard]] pieces front() const;
    // `n` bytes of what front() gave have been written.
    void consume(std::size_t n);
    void clear();
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }

  private:
    struct chunk {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t begin;
        std::size_t end;
    };
    chunk& tail_with_space();

    std::deque<chunk> chunks_;
    std::size_t size_ = 0;
};
