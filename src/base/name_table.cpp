#include "base/name_table.hpp"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace kestrel {

/// The name that reads so, if it is the one that was entered last or the next one: rows name models one after the other
/// in the order in which others did, or the same again. That spares the look-up of most names.
StoredText NameTable::guessed(std::string_view text) {
    if (guess_ < texts_by_number_.size() && texts_by_number_[guess_] == text) return texts_by_number_[guess_++];
    if (guess_ > 0 && texts_by_number_[guess_ - 1] == text) return texts_by_number_[guess_ - 1];
    return {};
}

Name NameTable::enter(std::string_view text) {
    if (text.empty()) return {};
    if (const StoredText known = guessed(text); !known.empty()) return Name(known);
    if (2 * numbers() > slots_.size()) grow();
    const std::uint32_t hash = hashOf(text);
    Slot& slot = slots_[slotOf(text, hash)];
    if (slot.text.empty()) {
        if (numbers() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
        const StoredText added = texts_.addTagged(static_cast<std::uint32_t>(numbers()), text);
        texts_by_number_.push_back(added);
        slot = {added, hash};
    }
    guess_ = slot.text.tag();
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
