#pragma once

#include "base/open_slots.hpp"
#include "base/text.hpp"
#include "base/text_hash.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

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
        const std::uint32_t hash = hashOf(name);
        const std::uint32_t place = slots_.at(hash, IsOf{rows, name, hash}).place;
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
        std::uint32_t place = 0; ///< in the list, counted from 1

        [[nodiscard]] bool isFree() const { return place == 0; }
    };

    static std::string_view nameOf(const Row& row) { return std::invoke(Name, row); }

    [[nodiscard]] std::uint32_t hashOf(std::string_view name) const {
        return static_cast<std::uint32_t>(seed_.hashOf(name));
    }

    struct IsOf {
        std::span<const Row> rows;
        std::string_view name;
        std::uint32_t hash;
        bool operator()(const Slot& slot) const { return slot.hash == hash && nameOf(rows[slot.place - 1]) == name; }
    };

    bool enter(std::span<const Row> rows, std::size_t place) {
        slots_.makeRoom(taken_, [](const Slot& slot) { return slot.hash; });
        const std::string_view name = nameOf(rows[place]);
        const std::uint32_t hash = hashOf(name);
        Slot& slot = slots_.at(hash, IsOf{rows, name, hash});
        if (!slot.isFree()) return false;
        slot = {hash, static_cast<std::uint32_t>(place + 1)};
        ++taken_;
        return true;
    }

    HashSeed seed_;
    OpenSlots<Slot> slots_; // none while the names are in order
    std::size_t taken_ = 0;
    bool in_order_ = true;
    bool any_repeated_ = false;
};

} // namespace kestrel
