#include "base/name_table.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <limits>
#include <new>
#include <span>
#include <utility>

namespace kestrel {

/// The text ahead of this place or the one in it, if it reads so.
StoredText NameTable::near(std::size_t place, std::string_view text) const {
    if (place < texts_by_number_.size() && texts_by_number_[place] == text) return texts_by_number_[place];
    return place > 0 && texts_by_number_[place - 1] == text ? texts_by_number_[place - 1] : StoredText();
}

StoredText NameTable::add(std::string_view text) {
    if (numbers() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    const StoredText added = texts_.addTagged(static_cast<std::uint32_t>(numbers()), text);
    texts_by_number_.push_back(added);
    if (isBefore(largest_, text)) largest_ = added;
    return added;
}

/// Enters those names into the index that are not in it yet.
void NameTable::completeIndex() {
    const std::size_t count = texts_by_number_.size();
    slots_.makeRoom(count, [](const Slot& slot) { return slot.hash; });
    for (; indexed_ < count; ++indexed_) {
        const StoredText text = texts_by_number_[indexed_];
        const std::uint32_t hash = hashOf(text);
        slots_.freeSlot(hash) = {text, hash};
    }
}

/// The text that reads so, found by its hash, or added.
StoredText NameTable::lookUp(std::string_view text) {
    completeIndex();
    const std::uint32_t hash = hashOf(text);
    Slot& slot = slots_.at(hash, IsOf{text, hash});
    if (slot.isFree()) {
        slot = {add(text), hash};
        ++indexed_;
    }
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
    if (entered.empty()) entered = isBefore(largest_, text) ? add(text) : lookUp(text);
    beginning_ = entered.tag();
    guesses_ = {beginning_, guesses_.front()};
    return Name(entered);
}

Name NameTable::find(std::string_view text) const {
    if (text.empty()) return {};
    const auto others = std::span(texts_by_number_).subspan(indexed_); // which came in order
    if (const auto at = std::ranges::lower_bound(others, text, isBefore); at != others.end() && *at == text) {
        return Name(*at);
    }
    if (slots_.empty()) return {};
    const std::uint32_t hash = hashOf(text);
    return Name(slots_.at(hash, IsOf{text, hash}).text);
}

} // namespace kestrel
