#pragma once

#include "base/indexed_rows.hpp"
#include "base/text_hash.hpp"
#include "reader/columns.hpp"
#include "reader/values.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace kestrel {

/// One row of "[Pin]". Values in ohms, henries and farads; "NA" or missing means the package's default.
struct Pin {
    std::string name;
    std::string signal_name;
    std::string model_name;
    Cell r_pin;
    Cell l_pin;
    Cell c_pin;
    bool model_reported = false; ///< the row reported its model name, which is then not reported again
};

/// Names of pins that the list does not have as they were written; each was reported.
struct ReportedPinNames {
    TextSet dropped;          ///< those of dropped rows, cut and as written
    TextMap<std::string> cut; ///< those that were too long, with what the list has
};

/// The rows of "[Pin]", found by the names of the pins.
struct PinList : IndexedRows<Pin, &Pin::name> {
    TableColumns columns;
    std::unique_ptr<ReportedPinNames> reported_names; ///< null while there are none
};

/// True for a pin of the component, also one whose row was reported and dropped.
[[nodiscard]] bool isKnownPin(const PinList& pins, std::string_view name);

/// The name under which the list holds a pin, by the name as the file has it: names that were too long are cut there.
[[nodiscard]] std::string_view listedPinName(const PinList& pins, std::string_view written);

/// True for model names that stand for a supply or no connection: "POWER", "GND", "NC" in any case.
[[nodiscard]] bool isUnmodeledPinName(std::string_view model_name);

/// True for "CIRCUITCALL" in any case, which leaves a pin to the circuit calls.
[[nodiscard]] bool isCircuitCallName(std::string_view model_name);

/// Reads the column headers behind "[Pin]".
void pinHeader(Context& context, PinList& pins, std::string_view text);

/// Reads one row of "[Pin]"; the component's name is for messages.
void pinLine(Context& context, PinList& pins, std::string_view component, std::string_view text);

} // namespace kestrel
