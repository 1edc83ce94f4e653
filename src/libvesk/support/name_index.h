// A table by name that is built at compile time and never changes: open addressing over a power of two of
// slots, so that a look-up costs one hash and about one comparison however many entries there are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "libvesk/support/util.h"

// ENTRY has a member `name`; the entries live longer than the index. One that gets more than half full does
// not compile.
template <class ENTRY, std::size_t SLOTS>
class NAME_index {
    static_assert((SLOTS & (SLOTS - 1)) == 0 && SLOTS <= 65536, "slots are a power of two");

  public:
    // A name that is there already stays as it is.
    constexpr void add(const ENTRY* entry) {
        const std::size_t at = slot(entry->name);
        if (slots_[at] != 0) return;
        if (count_ == entries_.size()) throw "the index is too small: give it more slots";
        entries_[count_] = entry;
        slots_[at] = static_cast<std::uint16_t>(++count_);
    }

    // Null when there is no entry of that name.
    [[nodiscard]] constexpr const ENTRY* find(std::string_view name) const {
        const std::size_t number = slots_[slot(name)];
        return number != 0 ? entries_[number - 1] : nullptr;
    }

    [[nodiscard]] constexpr std::size_t size() const { return count_; }
    // In the order in which they were added.
    [[nodiscard]] constexpr std::span<const ENTRY* const> entries() const {
        return {entries_.data(), count_};
    }

  private:
    // Where the name is, or the free slot where it belongs.
    [[nodiscard]] constexpr std::size_t slot(std::string_view name) const {
        std::size_t at = hash(name) & (SLOTS - 1);
        while (slots_[at] != 0 && name != entries_[slots_[at] - 1u]->name)
            at = (at + 1) & (SLOTS - 1);
        return at;
    }

    // FNV-1a, folded because its low bits alone mix short names badly.
    [[nodiscard]] static constexpr std::size_t hash(std::string_view name) {
        const std::uint64_t h = UTIL_fnv1a(name);
        return static_cast<std::size_t>(h ^ (h >> 32));
    }

    // Numbers of entries from 1, 0 in a free slot. Slots do not hold the pointers themselves, since not every
    // compiler compares the address of an object with null at compile time.
    std::array<std::uint16_t, SLOTS> slots_{};
    std::array<const ENTRY*, SLOTS / 2> entries_{};
    std::size_t count_ = 0;
};
