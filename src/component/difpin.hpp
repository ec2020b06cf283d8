#pragma once

#include "base/row_index.hpp"
#include "reader/values.hpp"

#include <string>
#include <string_view>

namespace kestrel {

struct Run;
struct Cmpnt;

/// One row of "[Diff Pin]". Volts and seconds; "NA" or missing means the default, of the last two the typical delay.
struct DifPin {
    std::string pin; ///< the non-inverting one
    std::string inv_pin;
    Cell vdiff;
    Cell tdelay_typ;
    Cell tdelay_min;
    Cell tdelay_max;
    bool pin_reported = false;
    bool inv_pin_reported = false;
};

/// Find the rows by their non-inverting and by their inverting pins.
using DifPinIndex = RowIndex<DifPin, &DifPin::pin>;
using InvPinIndex = RowIndex<DifPin, &DifPin::inv_pin>;

/// True when a row names the pin on either side.
[[nodiscard]] bool isInDiffPin(const Cmpnt& component, std::string_view pin);

/// Reads the header words behind "[Diff Pin]". Reports 802 and 528 to 532.
void diffPinHeader(Run& run, Cmpnt& component, std::string_view text);

/// Reads one row. Reports 803 to 810 and what the cell reader reports.
void diffPinLine(Run& run, Cmpnt& component, std::string_view text);

/// Looks up the pins of the rows and compares their models. Reports 811 to 814 (no line).
void checkDiffPins(Run& run, const Cmpnt& component);

} // namespace kestrel
