#pragma once

#include "diagnostics/message.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kestrel {

struct Context;
struct ItemList;

/// Most optional columns that a table may name.
inline constexpr int kMaxOptionalColumns = 3;

/// What the keyword line of a table names.
struct TableColumns {
    int count = 0;       ///< columns named, the first, which has no header, included; 0 until the keyword line
    bool faulty = false; ///< the line was reported, so rows are not held to it
    std::array<std::optional<std::uint8_t>, kMaxOptionalColumns> optional{}; ///< which optional header is where

    [[nodiscard]] bool seen() const { return count != 0; }
};

/// The column headers behind the keyword of a table, without case.
struct TableHeader {
    std::string_view keyword; ///< as messages name it
    std::span<const std::string_view> required;
    std::span<const std::string_view> optional; ///< all of them or none
    bool any_order = false;                     ///< of the optional ones
};

/// Cuts the words of a header line, up to `most`, and counts their columns. Reports a line without words.
ItemList readHeaderWords(Context& context, std::string_view keyword, TableColumns& columns, std::string_view text,
                         int most);

/// Which of the words that are missing or other ones are reported.
enum class WrongHeaders : bool { first, each };

/// Holds the words to `expected`, in this order, of which the first `required` must be there.
void expectHeaders(Context& context, TableColumns& columns, const ItemList& words,
                   std::span<const std::string_view> expected, int required, WrongHeaders reported);

/// Reports a word behind the first `most`, for which readHeaderWords() must have left room.
void expectNoMoreHeaders(Context& context, TableColumns& columns, const ItemList& words, int most);

/// Reads a whole header line, unless it is a repeated one, which is reported so.
void readTableHeader(Context& context, const TableHeader& header, TableColumns& columns, std::string_view text,
                     CheckedMessage<> repeated);

/// How the columns of a row agree with its table.
enum class RowFit : std::uint8_t {
    fits,
    notAllowed, ///< no row of this kind has so many
    notNamed    ///< more than the keyword line names
};

/// Judges a row by its number of columns; under a faulty header line every row fits.
[[nodiscard]] RowFit fitRow(const TableColumns& columns, std::span<const int> allowed, int count);

/// The same, and reports at the line a row that does not fit; one that is not allowed with its number of columns.
[[nodiscard]] RowFit fitRow(Context& context, const TableColumns& columns, std::span<const int> allowed, int count,
                            CheckedMessage<ArgKind::integer> not_allowed, CheckedMessage<> not_named);

} // namespace kestrel
