#pragma once

#include "base/text.hpp"

#include <array>
#include <cassert>
#include <cstddef>
#include <string_view>

namespace kestrel {

struct Context;

/// Most white space that may be between two items.
inline constexpr std::ptrdiff_t kMaxSkip = 120;

/// Most items that a caller may keep of one line.
inline constexpr int kMaxItems = 8;

/// The items of a line as the splitter found them; views into the line.
struct ItemList {
    int kept = 0;  ///< items held, never more than were wanted
    int count = 0; ///< items on the line, those not kept included

    /// The item, or an empty view where the line has none.
    [[nodiscard]] std::string_view operator[](int index) const {
        assert(index >= 0 && index < kMaxItems);
        if (!has(index)) return {};
        const Piece& piece = pieces_[static_cast<std::size_t>(index)];
        return {piece.first, piece.last};
    }
    [[nodiscard]] bool has(int index) const { return index < kept; }

    /// Counts an item, and keeps it unless `max` are kept.
    void add(const char* first, const char* last, int max) {
        if (kept < max) pieces_[static_cast<std::size_t>(kept++)] = {first, last};
        ++count;
    }

private:
    /// An item that is not set before it is kept: lists are made for every line.
    struct Piece {
        const char* first;
        const char* last;
    };
    std::array<Piece, kMaxItems> pieces_; // NOLINT(cppcoreguidelines-pro-type-member-init)
};

/// `text` from its first character that is not white space. Passing over a 121st white-space character is an assertion
/// failure unless the reader is in long-line mode.
[[nodiscard]] std::string_view skipWhiteSpace(const Context& context, std::string_view text);

/// Cuts a line into items at blanks and TABs; `split`, when given, is an item of its own wherever it is. Keeps the
/// first `max`.
[[nodiscard]] ItemList splitItems(const Context& context, std::string_view text, int max, char split = '\0');

/// Takes the next item off the front of `text` by the splitter's rules; empty at the end of the text.
[[nodiscard]] std::string_view takeItem(const Context& context, std::string_view& text, char split = '\0');

} // namespace kestrel
