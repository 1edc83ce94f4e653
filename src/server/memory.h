// The memory in which the hub keeps what is under way, counted: whoever takes some from here is part of the
// sum that the hub bounds.
#pragma once

#include <algorithm>
#include <memory_resource>

class MEMORY final : public std::pmr::memory_resource {
  public:
    [[nodiscard]] std::size_t bytes() const { return bytes_; }
    // The most that it has been since forget_peak().
    [[nodiscard]] std::size_t peak() const { return peak_; }
    void forget_peak() { peak_ = bytes_; }

  private:
    void* do_allocate(std::size_t n, std::size_t alignment) override {
        void* const at = std::pmr::new_delete_resource()->allocate(n, alignment);
        bytes_ += n;
        peak_ = std::max(peak_, bytes_);
        return at;
    }
    void do_deallocate(void* at, std::size_t n, std::size_t alignment) override {
        bytes_ -= n;
        std::pmr::new_delete_resource()->deallocate(at, n, alignment);
    }
    [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override {
        return this == &other;
    }

    std::size_t bytes_ = 0;
    std::size_t peak_ = 0;
};
