#pragma once

#include "base/open_slots.hpp"
#include "base/text_hash.hpp"

#include <cstddef>
#include <cstdint>

namespace kestrel {

/// Finds what belongs to the number of a name: the place in a list, counted from 1. As large as the numbers that it
/// holds, however many names there are.
class NumberIndex {
public:
    /// The place that belongs to the number, or 0.
    [[nodiscard]] std::uint32_t find(std::uint32_t number) const {
        return slots_.empty() ? 0 : slots_.at(hashOf(number), IsOf{number}).place;
    }

    /// The place that belongs to the number, to be set; 0 where it is new.
    [[nodiscard]] std::uint32_t& at(std::uint32_t number) {
        slots_.makeRoom(taken_, [this](const Slot& slot) { return hashOf(slot.number); });
        Slot& slot = slots_.at(hashOf(number), IsOf{number});
        if (slot.isFree()) {
            slot.number = number;
            ++taken_;
        }
        return slot.place;
    }

private:
    struct Slot {
        std::uint32_t number = 0;
        std::uint32_t place = 0;

        [[nodiscard]] bool isFree() const { return place == 0; }
    };

    struct IsOf {
        std::uint32_t number;
        bool operator()(const Slot& slot) const { return slot.number == number; }
    };

    /// Eight numbers in a row have their slots in a row, so that one look at the memory serves for all of them: names
    /// are mostly asked for in the order in which they came. The seed is an odd factor that nobody knows, so that no
    /// file can choose numbers that meet.
    [[nodiscard]] std::uint32_t hashOf(std::uint32_t number) const {
        constexpr std::uint32_t kRow = 8;
        return static_cast<std::uint32_t>((number / kRow * seed_.value()) >> 32U) / kRow * kRow + number % kRow;
    }

    HashSeed seed_;
    OpenSlots<Slot> slots_;
    std::size_t taken_ = 0;
};

} // namespace kestrel
