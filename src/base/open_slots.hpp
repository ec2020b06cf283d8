#pragma once

#include "base/large_memory.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kestrel {

/// The slots of a hash table, next to each other: an entry is where its hash says, or in the next free slot behind
/// that. A `Slot` tells with `isFree()` whether it is empty, as a new one is.
template <class Slot> class OpenSlots {
public:
    [[nodiscard]] bool empty() const { return slots_.empty(); }

    /// The slot for which `is_same` holds, or the free one where such an entry belongs. There must have been room.
    template <class IsSame> [[nodiscard]] const Slot& at(std::uint32_t hash, IsSame is_same) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t place = hash & mask;
        while (!slots_[place].isFree() && !is_same(slots_[place])) {
            place = (place + 1) & mask;
        }
        return slots_[place];
    }
    template <class IsSame> [[nodiscard]] Slot& at(std::uint32_t hash, IsSame is_same) {
        return const_cast<Slot&>(std::as_const(*this).at(hash, is_same));
    }

    /// The free slot where an entry that is not there yet belongs. There must have been room.
    [[nodiscard]] Slot& freeSlot(std::uint32_t hash) {
        return at(hash, [](const Slot& /*other*/) { return false; });
    }

    /// Makes room for one more than the present `entries`, whose hashes `hash_of` gives.
    template <class HashOf> void makeRoom(std::size_t entries, HashOf hash_of) {
        constexpr std::size_t kSmallest = 16;
        if (2 * (entries + 1) <= slots_.size()) return;
        const Slots old = std::exchange(slots_, Slots(std::max(kSmallest, std::bit_ceil(2 * (entries + 1)))));
        for (const Slot& slot : old) {
            if (!slot.isFree()) freeSlot(hash_of(slot)) = slot;
        }
    }

private:
    using Slots = std::vector<Slot, LargeAllocator<Slot>>;

    Slots slots_; // a power of two, at most half of them taken
};

} // namespace kestrel
