#pragma once

#include "base/indexed_rows.hpp"
#include "base/name_table.hpp"
#include "base/row_lines.hpp"
#include "base/text_hash.hpp"
#include "base/text_store.hpp"
#include "reader/columns.hpp"
#include "reader/values.hpp"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace kestrel {

/// One row of "[Pin]". Values in ohms, henries and farads; "NA" or missing means the package's default.
struct Pin {
    StoredText name;
    StoredText signal_name;
    Name model_name;
    Cell r_pin;
    Cell l_pin;
    Cell c_pin;
};

/// What was reported of the rows of "[Pin]".
struct ReportedPins {
    TextSet dropped_names;               ///< those of dropped rows, cut and as written
    TextMap<StoredText> cut_names;       ///< those that were too long, with what the list has
    std::vector<std::uint32_t> models{}; ///< places of the rows whose model name was reported, in order
};

/// The rows of "[Pin]", found by the names of the pins.
struct PinList : IndexedRows<Pin, &Pin::name, Rows<Pin>> {
    TableColumns columns;
    RowLines lines;
    std::unique_ptr<ReportedPins> reported; ///< null while there is nothing
};

/// True for a pin of the component, also one whose row was reported and dropped.
[[nodiscard]] bool isKnownPin(const PinList& pins, std::string_view name);

/// True for a pin of the list whose row reported its model name, which is then not reported again.
[[nodiscard]] bool isModelReported(const PinList& pins, const Pin& pin);

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
