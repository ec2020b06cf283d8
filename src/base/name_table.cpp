#include "base/name_table.hpp"

#include <algorithm>

namespace kestrel {

Name NameTable::enter(std::string_view text) {
    if (text.empty()) return {};
    if (2 * numbers() > slots_.size()) grow();
    const auto hash = static_cast<std::uint32_t>(seed_.hashOf(text));
    Slot& slot = slots_[slotOf(text, hash)];
    if (slot.number == 0) {
        const auto number = static_cast<std::uint32_t>(numbers());
        entries_.push_back({texts_.add(text), number, hash});
        slot = {hash, number};
    }
    return Name(&entries_[slot.number - 1]);
}

Name NameTable::find(std::string_view text) const {
    if (slots_.empty() || text.empty()) return {};
    const Slot& slot = slots_[slotOf(text, static_cast<std::uint32_t>(seed_.hashOf(text)))];
    return slot.number == 0 ? Name() : Name(&entries_[slot.number - 1]);
}

/// The slot that holds the name, or the free one where it belongs.
std::size_t NameTable::slotOf(std::string_view text, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].number != 0 && (slots_[at].hash != hash || entries_[slots_[at].number - 1].text != text)) {
        at = (at + 1) & mask;
    }
    return at;
}

void NameTable::grow() {
    constexpr std::size_t kSmallest = 64;
    slots_.assign(std::max(kSmallest, 2 * slots_.size()), {});
    const std::size_t mask = slots_.size() - 1;
    for (const Name::Entry& entry : entries_) {
        std::size_t at = entry.hash & mask;
        while (slots_[at].number != 0) {
            at = (at + 1) & mask;
        }
        slots_[at] = {entry.hash, entry.number};
    }
}

} // namespace kestrel
