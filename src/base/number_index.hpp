#pragma once

#include "base/text_hash.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kestrel {

/// Finds what belongs to the number of a name: the place in a list, counted from 1. As large as the numbers that it
/// holds, however many names there are.
class NumberIndex {
public:
    /// The place that belongs to the number, or 0.
    [[nodiscard]] std::uint32_t find(std::uint32_t number) const {
        return slots_.empty() ? 0 : slots_[slotOf(number)].place;
    }

    /// The place that belongs to the number, to be set; 0 where it is new.
    [[nodiscard]] std::uint32_t& at(std::uint32_t number) {
        if (2 * (taken_ + 1) > slots_.size()) grow();
        Slot& slot = slots_[slotOf(number)];
        if (slot.place == 0) {
            slot.number = number;
            ++taken_;
        }
        return slot.place;
    }

private:
    struct Slot {
        std::uint32_t number = 0;
        std::uint32_t place = 0; ///< 0 is a free slot
    };

    /// The slot that holds the number, or the free one where it belongs.
    [[nodiscard]] std::size_t slotOf(std::uint32_t number) const {
        // The seed is an odd factor that nobody knows, so that no file can choose numbers that meet.
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = ((number * seed_.value()) >> 32U) & mask;
        while (slots_[at].place != 0 && slots_[at].number != number) {
            at = (at + 1) & mask;
        }
        return at;
    }

    void grow() {
        constexpr std::size_t kSmallest = 16;
        const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(std::max(kSmallest, 2 * slots_.size())));
        for (const Slot& slot : old) {
            if (slot.place != 0) slots_[slotOf(slot.number)] = slot;
        }
    }

    HashSeed seed_;
    std::vector<Slot> slots_; // a power of two, at most half of them taken
    std::size_t taken_ = 0;
};

} // namespace kestrel
