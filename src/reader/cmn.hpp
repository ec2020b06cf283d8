#pragma once

#include "ibis/diagnostics.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

struct Run;

/// Most items that a caller may keep of one line.
inline constexpr int kMaxItems = 8;

/// The items of a line as the splitter found them; views into the line.
struct ItemList {
    std::array<std::string_view, kMaxItems> items{};
    int kept = 0;  ///< items held, never more than were asked for
    int count = 0; ///< items on the line, those not kept included

    /// The item, or an empty view where the line has none.
    [[nodiscard]] std::string_view operator[](int index) const { return items[static_cast<std::size_t>(index)]; }
    [[nodiscard]] bool has(int index) const { return index < kept; }
};

/// True for the characters that the C library counts as white space.
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool isLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool isAlpha(char c) { return isUpper(c) || isLower(c); }
constexpr char toLower(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr char toUpper(char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

/// `text` from its first character that is not white space. Passing over a 121st white-space character is an assertion
/// failure unless the reader is in long-line mode.
[[nodiscard]] std::string_view skipWhiteSpace(const Run& run, std::string_view text);

/// `text` without trailing white space, however much there is.
[[nodiscard]] std::string_view stripTrailing(std::string_view text);

/// `text` without white space at either end, unbounded.
[[nodiscard]] std::string_view trim(std::string_view text);

/// True when both texts are the same but for the case of letters.
[[nodiscard]] bool equalsNoCase(std::string_view a, std::string_view b);

/// True when the first `count` characters agree but for case, or both texts end together before that.
[[nodiscard]] bool prefixEqualsNoCase(std::string_view a, std::string_view b, std::size_t count);

void lowerCase(std::string& text);
void upperCase(std::string& text);

/// Cuts a line into items at blanks and TABs; `split`, when given, is an item of its own wherever it stands. Keeps the
/// first `max`.
[[nodiscard]] ItemList splitItems(const Run& run, std::string_view text, int max, char split = '\0');

/// Takes the next item off the front of `text` by the splitter's rules; empty at the end of the text.
[[nodiscard]] std::string_view takeItem(const Run& run, std::string_view& text, char split = '\0');

/// What a number reader found.
enum class ReadResult : std::uint8_t {
    noNumber = 0,
    number = 1,
    numberAndText = 2 ///< more text behind the number; of a scaled number: digits in its scale part
};

/// Base-10 digits; a leading "-" is no number; more than 4294967295 reads as that.
[[nodiscard]] ReadResult readUnsigned(std::string_view text, std::uint32_t& value);

/// Base-10 digits with an optional sign; a value beyond 32 bits is no number.
[[nodiscard]] ReadResult readSigned(std::string_view text, std::int32_t& value);

/// A decimal number; overflow reads as infinity, underflow as 0.
[[nodiscard]] ReadResult readDouble(std::string_view text, double& value);

/// A decimal number with an optional scale letter (T G M k m u n p f) or unit: "3.3V", "10k", "1.5nF". A character
/// behind the number that is no letter makes it no number.
[[nodiscard]] ReadResult readScaled(std::string_view text, double& value);

/// As readScaled, and "NA" in any case, which sets `na` and reads as 0.0.
[[nodiscard]] ReadResult readValueOrNa(std::string_view text, double& value, bool& na);

/// What a cell of a range or table row holds.
enum class CellState : std::uint8_t { missing = 0, number = 1, na = 2 };

/// One value that may be missing or "NA".
struct Cell {
    double value = 0.0;
    CellState state = CellState::missing;
    [[nodiscard]] bool isNumber() const { return state == CellState::number; }
};

/// Reads one cell. `present` is false when the line has no such item: the cell stays missing. Reports 1909 (no number;
/// false is returned) and warning 1910 (digits in the scale; the value is kept) with the column's `label` and the
/// `quantity`.
bool readCell(Diagnostics& diagnostics, std::string_view text, bool present, std::string_view quantity,
              std::string_view label, Cell& cell);

/// Stores a text that may be given once, cut at `limit`: 1911 when `destination` holds text already (nothing is stored,
/// false), 1912 when cut, 1913 when empty.
bool setTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, std::uint32_t limit,
                 std::string_view keyword);

/// The same, but an overlong text is reported with 1914 and stored whole, up to 1024 characters.
bool setWholeTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, std::uint32_t limit,
                      std::string_view keyword);

/// Error 1915 (no line): the keyword is missing from the file being read.
void requiredKeywordMissing(Run& run, std::string_view keyword);

/// True for "GND", "NC", "POWER", "CIRCUITCALL" and "NA" in any case.
[[nodiscard]] bool isReservedWord(std::string_view text);

/// True when `text` is free to use; a reserved word reports 1916 and gives false.
bool checkNotReserved(Diagnostics& diagnostics, std::string_view text);

} // namespace kestrel
