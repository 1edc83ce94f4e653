// Bytes on their way out that several queues share: they are copied once, into blocks, and the queues hold
// pieces of those. A block is given back when the last piece of it is gone.
#pragma once

#include <memory>
#include <memory_resource>

#include "libvesk/link/frame.h"

struct BLOCKS_piece {
    std::shared_ptr<std::byte[]> block;  // what the bytes lie in
    FRAME_span bytes;
};

// Fills one block after the other. The bytes of a block stay where they are until no piece holds them.
class BLOCKS {
  public:
    static constexpr std::size_t SMALLEST = 4 * 1024;
    static constexpr std::size_t LARGEST = 256 * 1024;

    // Takes its memory from there.
    explicit BLOCKS(std::pmr::memory_resource* memory = std::pmr::get_default_resource()) : memory_(memory) {}

    // Copies the first of `bytes`, as many as the present block has room for and one at least; `*bytes`
    // becomes the rest.
    [[nodiscard]] BLOCKS_piece take(FRAME_span* bytes);
    // Leaves the present block to its pieces.
    void release();
    // The same if no piece is left of it, which gives it back.
    void release_idle();

  private:
    [[nodiscard]] bool is_idle() const { return block_.use_count() == 1; }
    void make_block(std::size_t wanted);

    std::pmr::memory_resource* memory_;
    std::shared_ptr<std::byte[]> block_;
    std::size_t size_ = 0;
    std::size_t used_ = 0;
};
