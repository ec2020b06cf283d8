#pragma once

#include "diagnostics/diagnostics.hpp"

#include <cstdint>
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

/// Reads one cell. `present` is false when the line has no such item: the cell stays missing. Reports at the line a
/// text that is no number (false) and warns of digits in the scale, with the column's `label` and the `quantity`.
bool readCell(Diagnostics& diagnostics, std::string_view text, bool present, std::string_view quantity,
              std::string_view label, Cell& cell);

} // namespace kestrel
