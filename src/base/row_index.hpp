#pragma once

#include "base/text_hash.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

/// Finds the rows of a list by one of their names, which `Name`, a member or a function, gives. As long as the names
/// come in order, shorter ones first, as pins often do, the list is searched as it is; the first that does not makes
/// a hash index of places in the list.
template <class Row, auto Name> class RowIndex {
public:
    /// The first row of exactly this name, or null.
    [[nodiscard]] const Row* find(std::span<const Row> rows, std::string_view name) const {
        if (in_order_) {
            const auto at = std::ranges::lower_bound(rows, name, isBefore, Name);
            return at != rows.end() && nameOf(*at) == name ? &*at : nullptr;
        }
        const std::uint32_t place = slots_[slotOf(rows, name, hashOf(name))].place;
        return place == 0 ? nullptr : &rows[place - 1];
    }

    /// Enters the last row of the list, whose other rows have all been entered; false when its name is there already,
    /// which then keeps its first row.
    bool enterLast(std::span<const Row> rows) {
        const std::size_t last = rows.size() - 1;
        if (in_order_) {
            if (last == 0 || isBefore(nameOf(rows[last - 1]), nameOf(rows[last]))) return true;
            for (std::size_t place = 0; place < last; ++place) {
                enter(rows, place);
            }
            in_order_ = false;
        }
        const bool is_new = enter(rows, last);
        any_repeated_ = any_repeated_ || !is_new;
        return is_new;
    }

    /// True when a name was entered twice.
    [[nodiscard]] bool anyRepeated() const { return any_repeated_; }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0; ///< place in the list counted from 1; 0 is a free slot
    };

    static std::string_view nameOf(const Row& row) { return std::invoke(Name, row); }
    static bool isBefore(std::string_view a, std::string_view b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    }

    [[nodiscard]] std::uint32_t hashOf(std::string_view name) const {
        return static_cast<std::uint32_t>(seed_.hashOf(name));
    }

    /// The slot that holds the name, or the free one where it belongs.
    [[nodiscard]] std::size_t slotOf(std::span<const Row> rows, std::string_view name, std::uint32_t hash) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash & mask;
        while (slots_[at].place != 0 && (slots_[at].hash != hash || nameOf(rows[slots_[at].place - 1]) != name)) {
            at = (at + 1) & mask;
        }
        return at;
    }

    bool enter(std::span<const Row> rows, std::size_t place) {
        if (2 * (taken_ + 1) > slots_.size()) grow();
        const std::string_view name = nameOf(rows[place]);
        const std::uint32_t hash = hashOf(name);
        Slot& slot = slots_[slotOf(rows, name, hash)];
        if (slot.place != 0) return false;
        slot = {hash, static_cast<std::uint32_t>(place + 1)};
        ++taken_;
        return true;
    }

    void grow() {
        constexpr std::size_t kSmallest = 16;
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
    std::vector<Slot> slots_; // a power of two, at most half of them taken; none while the names are in order
    std::size_t taken_ = 0;
    bool in_order_ = true;
    bool any_repeated_ = false;
};

} // namespace kestrel
