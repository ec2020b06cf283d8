#pragma once

#include "base/row_index.hpp"
#include "reader/names.hpp"
#include "reader/values.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kestrel {

struct Run;
struct Cmpnt;

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

/// Finds the pins of a component by their names.
using PinIndex = RowIndex<Pin, &Pin::name>;

/// The pin of exactly this name, or null; of repeated names the first.
[[nodiscard]] const Pin* findPin(const Cmpnt& component, std::string_view name);

/// True for a pin of the component, also one whose row was reported and dropped.
[[nodiscard]] bool isKnownPin(const Cmpnt& component, std::string_view name);

/// The name under which the list holds a pin, by the name as the file has it: names that were too long are cut there.
[[nodiscard]] std::string_view listedPinName(const Cmpnt& component, std::string_view written);

/// True for model names that stand for a supply or no connection: "POWER", "GND", "NC" in any case.
[[nodiscard]] bool isUnmodeledPinName(std::string_view model_name);

/// Reads the column headers behind "[Pin]". Reports 523, 528 to 532.
void pinHeader(Run& run, Cmpnt& component, std::string_view text);

/// Reads one row of "[Pin]" into the component. Reports 602 to 608 and 612 and what the cell reader reports.
void pinLine(Run& run, Cmpnt& component, std::string_view text);

/// What the model name of a pin stands for.
enum class PinModelKind : std::uint8_t { undefined, single, differential, series };

/// A model name that pins use, and the component that it was last reported for.
struct PinModel {
    PinModelKind kind = PinModelKind::undefined;
    const Cmpnt* reported_for = nullptr;
};

/// The model names of all pins of a file, so that each is looked up once. The names are views of the pins' own.
using PinModels = std::unordered_map<std::string_view, PinModel>;

/// Looks up the pins' model names, marks the models found and reports 609, 610 and 614 (no line), each once per
/// name, and pins that a circuit call should name (611).
void checkPins(Run& run, const Cmpnt& component, PinModels& models);

} // namespace kestrel
