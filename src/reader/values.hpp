#pragma once

#include "diagnostics/diagnostics.hpp"

#include <bit>
#include <cstdint>
#include <limits>
#include <string_view>

namespace kestrel {

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

/// What a cell of a range or table row holds.
enum class CellState : std::uint8_t { missing = 0, number = 1, na = 2 };

/// One value that may be missing or "NA". As large as a double: the two that are no numbers are patterns of bits that
/// no text reads as.
class Cell {
public:
    constexpr Cell() = default;
    constexpr explicit Cell(double value) : value_(value) {}
    [[nodiscard]] static constexpr Cell na() { return Cell(std::bit_cast<double>(kNa)); }

    [[nodiscard]] constexpr bool isNumber() const { return value_ == value_; }
    [[nodiscard]] constexpr bool isNa() const { return std::bit_cast<std::uint64_t>(value_) == kNa; }
    [[nodiscard]] constexpr CellState state() const {
        if (isNumber()) return CellState::number;
        return isNa() ? CellState::na : CellState::missing;
    }
    /// 0 where there is no number.
    [[nodiscard]] constexpr double value() const { return isNumber() ? value_ : 0.0; }

    /// True for the same state and, of numbers, the same value.
    constexpr bool operator==(const Cell& other) const {
        return value_ == other.value_ ||
               std::bit_cast<std::uint64_t>(value_) == std::bit_cast<std::uint64_t>(other.value_);
    }

private:
    static constexpr std::uint64_t kMissing = 0x7FF8'0000'0000'0001; // quiet: they are copied as numbers are
    static constexpr std::uint64_t kNa = 0x7FF8'0000'0000'0002;

    double value_ = std::bit_cast<double>(kMissing);
};
static_assert(sizeof(Cell) == sizeof(double));

/// A value that a file gives or does not. As large as a double: one that is not given is a pattern of bits that no text
/// reads as.
class GivenValue {
public:
    constexpr GivenValue() = default;
    constexpr GivenValue(double value) : value_(value) {}

    [[nodiscard]] constexpr bool has_value() const { return value_ == value_; }
    constexpr explicit operator bool() const { return has_value(); }
    /// The value, which must be given.
    [[nodiscard]] constexpr double operator*() const { return value_; }
    [[nodiscard]] constexpr double value_or(double other) const { return has_value() ? value_ : other; }

private:
    double value_ = std::numeric_limits<double>::quiet_NaN();
};

/// Reads a scaled number or "NA" in any case; a text that is neither leaves the cell missing. Reports nothing.
[[nodiscard]] ReadResult readCellText(std::string_view text, Cell& cell);

/// Reads one cell. `present` is false when the line has no such item: the cell stays missing. Reports at the line a
/// text that is no number (false) and warns of digits in the scale, with the column's `label` and the `quantity`.
bool readCell(Diagnostics& diagnostics, std::string_view text, bool present, std::string_view quantity,
              std::string_view label, Cell& cell);

} // namespace kestrel
