#include "base/name_table.hpp"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace kestrel {

Name NameTable::enter(std::string_view text) {
    if (text.empty()) return {};
    if (2 * numbers() > slots_.size()) grow();
    const std::uint32_t hash = hashOf(text);
    Slot& slot = slots_[slotOf(text, hash)];
    if (slot.text.empty()) {
        if (numbers() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
        slot = {texts_.addTagged(static_cast<std::uint32_t>(numbers()), text), hash};
        ++taken_;
    }
    return Name(slot.text);
}

Name NameTable::find(std::string_view text) const {
    if (slots_.empty() || text.empty()) return {};
    return Name(slots_[slotOf(text, hashOf(text))].text);
}

/// The slot that holds the name, or the free one where it belongs.
std::size_t NameTable::slotOf(std::string_view text, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (!slots_[at].text.empty() && (slots_[at].hash != hash || slots_[at].text != text)) {
        at = (at + 1) & mask;
    }
    return at;
}

void NameTable::grow() {
    constexpr std::size_t kSmallest = 64;
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(std::max(kSmallest, 2 * slots_.size())));
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : old) {
        if (slot.text.empty()) continue;
        std::size_t at = slot.hash & mask;
        while (!slots_[at].text.empty()) {
            at = (at + 1) & mask;
        }
        slots_[at] = slot;
    }
}

} // namespace kestrel
