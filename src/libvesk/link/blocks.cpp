// Blocks become larger while their readers lag behind, so that a queue consists of few pieces, and begin
// small again when nothing waits.
#include "libvesk/link/blocks.h"

#include <algorithm>
#include <bit>
#include <cstring>

BLOCKS_piece BLOCKS::take(FRAME_span* bytes) {
    if (block_ && is_idle()) used_ = 0;
    const bool too_small = used_ == 0 && size_ < std::min(bytes->size(), LARGEST);
    if (!block_ || used_ == size_ || too_small) make_block(bytes->size());
    const std::size_t n = std::min(bytes->size(), size_ - used_);
    std::byte* const at = block_.get() + used_;
    std::memcpy(at, bytes->data(), n);
    used_ += n;
    *bytes = bytes->subspan(n);
    return {block_, {at, n}};
}

void BLOCKS::make_block(std::size_t wanted) {
    size_ = std::clamp(std::bit_ceil(std::max(2 * size_, wanted)), SMALLEST, LARGEST);
    used_ = 0;
    block_ =
        std::allocate_shared_for_overwrite<std::byte[]>(std::pmr::polymorphic_allocator<>(memory_), size_);
}

void BLOCKS::release() {
    block_.reset();
    size_ = used_ = 0;
}

void BLOCKS::release_idle() {
    if (is_idle()) release();
}
