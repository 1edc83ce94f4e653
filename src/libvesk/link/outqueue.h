// The output queue of one peer: pieces of bytes, its own or shared with other queues, taken off in
// whatever portions the socket takes. An empty queue holds no block.
#pragma once

#include <array>
#include <deque>
#include <memory_resource>

#include "libvesk/link/blocks.h"

class OUTQUEUE {
  public:
    static constexpr std::size_t PIECES = 32;  // at most so many go into one write

    explicit OUTQUEUE(std::pmr::memory_resource* memory = std::pmr::get_default_resource())
        : own_(memory), pieces_(memory) {}

    // Copies the bytes.
    void append(FRAME_span bytes);
    // Shares the bytes with whoever else holds that piece.
    void append(const BLOCKS_piece& piece);
    // Takes over all of `behind`, which is empty then.
    void append(OUTQUEUE* behind);

    // The bytes to write next, in order: fills `spans` from its front and returns how many of them it filled.
    [[nodiscard]] std::size_t front(std::span<FRAME_span, PIECES> spans) const;
    // `n` bytes of what front() gave have been written.
    void consume(std::size_t n);
    void clear();
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    // Bytes that the queue keeps from being used otherwise, the records of its pieces included.
    [[nodiscard]] std::size_t memory() const { return size_ + pieces_.size() * sizeof(BLOCKS_piece); }

  private:
    BLOCKS own_;
    std::pmr::deque<BLOCKS_piece> pieces_;
    std::size_t size_ = 0;
};
