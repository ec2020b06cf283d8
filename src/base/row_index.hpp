#pragma once

#include "base/text_hash.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

/// Finds the rows of a list by one of their names, which `Name`, a member or a function, gives. It holds places in the
/// list, so that a row costs no allocation of its own.
template <class Row, auto Name> class RowIndex {
public:
    /// The first row of exactly this name, or null.
    [[nodiscard]] const Row* find(const std::vector<Row>& rows, std::string_view name) const {
        if (slots_.empty()) return nullptr;
        const std::uint32_t place = slots_[slotOf(rows, name, hashOf(name))].place;
        return place == 0 ? nullptr : &rows[place - 1];
    }

    /// Enters the last row of the list; false when its name is there already, which then keeps its first row.
    bool enterLast(const std::vector<Row>& rows) {
        if (2 * (taken_ + 1) > slots_.size()) grow();
        const std::string_view name = std::invoke(Name, rows.back());
        const std::uint32_t hash = hashOf(name);
        Slot& slot = slots_[slotOf(rows, name, hash)];
        if (slot.place != 0) return false;
        slot = {hash, static_cast<std::uint32_t>(rows.size())};
        ++taken_;
        return true;
    }

    /// How many different names were entered.
    [[nodiscard]] std::size_t size() const { return taken_; }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0; ///< place in the list counted from 1; 0 is a free slot
    };

    [[nodiscard]] std::uint32_t hashOf(std::string_view name) const {
        return static_cast<std::uint32_t>(seed_.hashOf(name));
    }

    /// The slot that holds the name, or the free one where it belongs.
    [[nodiscard]] std::size_t slotOf(const std::vector<Row>& rows, std::string_view name, std::uint32_t hash) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash & mask;
        while (slots_[at].place != 0 &&
               (slots_[at].hash != hash || std::invoke(Name, rows[slots_[at].place - 1]) != name)) {
            at = (at + 1) & mask;
        }
        return at;
    }

    void grow() {
        constexpr std::size_t kSmallest = 64;
        const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(std::max(kSmallest, 2 * slots_.size())));
        const std::size_t mask = slots_.size() - 1;
        for (const Slot& slot : old) {
            if (slot.place == 0) continue;
            std::size_t at = slot.hash & mask;
            while (slots_[at].place != 0) {
                at = (at + 1) & mask;
            }
            slots_[at] = slot;
        }
    }

    HashSeed seed_;
    std::vector<Slot> slots_; // a power of two, at most half of them taken
    std::size_t taken_ = 0;
};

} // namespace kestrel
