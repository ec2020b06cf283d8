#pragma once

#include "base/indexed_rows.hpp"
#include "reader/columns.hpp"
#include "reader/rng.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

/// One row of "[Diff Pin]". Volts and seconds; "NA" or missing means the default, of a minimum or maximum the typical
/// delay.
struct DifPin {
    std::string pin; ///< the non-inverting one
    std::string inv_pin;
    Cell vdiff;
    Rng tdelay;
    std::uint32_t line = 0;
    bool pin_reported = false;
    bool inv_pin_reported = false;
};

/// "[Diff Pin]".
struct DiffPins {
    TableColumns columns;
    IndexedRows<DifPin, &DifPin::pin> rows;
    RowIndex<DifPin, &DifPin::inv_pin> inv_pin_index;
};

/// True when a row names the pin on either side.
[[nodiscard]] bool isInDiffPin(const DiffPins& diff_pins, std::string_view pin);

/// Reads the header words behind "[Diff Pin]".
void diffPinHeader(Context& context, DiffPins& diff_pins, std::string_view text);

/// Reads one row.
void diffPinLine(Context& context, DiffPins& diff_pins, std::string_view text);

} // namespace kestrel
