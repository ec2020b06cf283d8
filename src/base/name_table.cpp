#include "base/name_table.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace kestrel {

/// The text ahead of this place or the one in it, if it reads so.
StoredText NameTable::near(std::size_t place, std::string_view text) const {
    if (place < texts_by_number_.size() && texts_by_number_[place] == text) return texts_by_number_[place];
    return place > 0 && texts_by_number_[place - 1] == text ? texts_by_number_[place - 1] : StoredText();
}

/// True for a name that must be new, since all names are in order and it is behind the last one.
bool NameTable::isBehindAll(std::string_view text) const {
    return slots_.empty() && (texts_by_number_.empty() || isBefore(texts_by_number_.back(), text));
}

StoredText NameTable::add(std::string_view text) {
    if (numbers() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    texts_by_number_.push_back(texts_.addTagged(static_cast<std::uint32_t>(numbers()), text));
    return texts_by_number_.back();
}

void NameTable::makeIndex() {
    slots_.makeRoom(texts_by_number_.size(), [](const Slot& slot) { return slot.hash; });
    for (const StoredText& text : texts_by_number_) {
        const std::uint32_t hash = hashOf(text);
        slots_.freeSlot(hash) = {text, hash};
    }
}

/// The text that reads so, found by its hash, or added.
StoredText NameTable::lookUp(std::string_view text) {
    if (slots_.empty()) makeIndex();
    slots_.makeRoom(texts_by_number_.size(), [](const Slot& slot) { return slot.hash; });
    const std::uint32_t hash = hashOf(text);
    Slot& slot = slots_.at(hash, IsOf{text, hash});
    if (slot.isFree()) slot = {add(text), hash};
    return slot.text;
}

Name NameTable::enter(std::string_view text) {
    if (text.empty()) return {};
    // Rows name models one after the other in the order in which others did, or the same again, and two kinds of rows
    // may take turns. Trying these spares the look-up of most names.
    for (std::size_t& guess : guesses_) {
        const StoredText known = near(guess, text);
        if (known.empty()) continue;
        guess = known.tag();
        std::swap(guess, guesses_.front());
        return Name(known);
    }
    // Lists may each begin where the last one did, or one name later.
    StoredText entered = near(beginning_, text);
    if (entered.empty()) entered = isBehindAll(text) ? add(text) : lookUp(text);
    beginning_ = entered.tag();
    guesses_ = {beginning_, guesses_.front()};
    return Name(entered);
}

Name NameTable::find(std::string_view text) const {
    if (text.empty()) return {};
    if (slots_.empty()) {
        const auto at = std::ranges::lower_bound(texts_by_number_, text, isBefore);
        return at != texts_by_number_.end() && *at == text ? Name(*at) : Name();
    }
    const std::uint32_t hash = hashOf(text);
    return Name(slots_.at(hash, IsOf{text, hash}).text);
}

} // namespace kestrel
