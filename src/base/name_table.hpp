#pragma once

#include "base/large_memory.hpp"
#include "base/open_slots.hpp"
#include "base/text_hash.hpp"
#include "base/text_store.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace kestrel {

/// A name of a NameTable, which has to outlive it. As large as a pointer; reads as a text everywhere. Equal names of
/// one table are the same name and have the same number.
class Name {
public:
    Name() = default;

    [[nodiscard]] std::string_view view() const { return text_.view(); }
    operator std::string_view() const { return view(); }
    [[nodiscard]] std::size_t size() const { return view().size(); }
    [[nodiscard]] bool empty() const { return text_.empty(); }

    /// Names are numbered from 1 in the order in which they came, so that what is known of them fits into a list; the
    /// empty one has 0.
    [[nodiscard]] std::uint32_t number() const { return text_.tag(); }

    friend bool operator==(Name a, Name b) { return a.text_.isSameAs(b.text_); }
    friend bool operator==(Name a, std::string_view b) { return a.view() == b; }

private:
    friend class NameTable;
    explicit Name(StoredText text) : text_(text) {}

    StoredText text_; // with the number as its tag
};

/// The names that many rows share, those of models above all, each kept once. Names that come in order, shorter ones
/// first, are not looked up, and get into the index when another one has to be.
class NameTable {
public:
    NameTable() = default;
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;
    ~NameTable() = default;

    /// The name that reads so; a new one where there is none yet.
    [[nodiscard]] Name enter(std::string_view text);
    /// The name that reads so, or the empty one where there is none.
    [[nodiscard]] Name find(std::string_view text) const;
    /// One more than the largest number of a name.
    [[nodiscard]] std::size_t numbers() const { return texts_by_number_.size() + 1; }

private:
    struct Slot {
        StoredText text;
        std::uint32_t hash = 0;

        [[nodiscard]] bool isFree() const { return text.empty(); }
    };

    [[nodiscard]] StoredText near(std::size_t place, std::string_view text) const;
    [[nodiscard]] StoredText add(std::string_view text);
    [[nodiscard]] StoredText lookUp(std::string_view text);
    void completeIndex();
    [[nodiscard]] std::uint32_t hashOf(std::string_view text) const {
        return static_cast<std::uint32_t>(seed_.hashOf(text));
    }
    struct IsOf {
        std::string_view text;
        std::uint32_t hash;
        bool operator()(const Slot& slot) const { return slot.hash == hash && slot.text == text; }
    };

    HashSeed seed_;
    TextStore texts_;
    std::vector<StoredText, LargeAllocator<StoredText>> texts_by_number_; // from that of number 1 on
    StoredText largest_; // the name behind all others in order: one that is behind it is new
    OpenSlots<Slot> slots_;
    std::size_t indexed_ = 0; // names that have slots; those behind them in the list came in order
    // Places in the list behind names that were entered: the last two, the newer one first, and the last that was not
    // guessed from these.
    std::array<std::size_t, 2> guesses_{};
    std::size_t beginning_ = 0;
};

} // namespace kestrel
