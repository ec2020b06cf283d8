#include "base/name_table.hpp"

#include <limits>
#include <new>

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
    slots_.makeRoom(texts_by_number_.size(), [](const Slot& slot) { return slot.hash; });
    const std::uint32_t hash = hashOf(text);
    Slot& slot = slots_.at(hash, IsOf{text, hash});
    if (slot.isFree()) {
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
    const std::uint32_t hash = hashOf(text);
    return Name(slots_.at(hash, IsOf{text, hash}).text);
}

} // namespace kestrel
