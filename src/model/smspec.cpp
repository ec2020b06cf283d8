#include "model/smspec.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

/// A range of "[Submodel Spec]" by its spelling in the file.
struct SpecRow {
    std::string_view name;
    std::optional<Rng> SmSpec::*value;
};

constexpr std::array<SpecRow, 3> kRows{{
    {"V_trigger_r", &SmSpec::v_trigger_r},
    {"V_trigger_f", &SmSpec::v_trigger_f},
    {"Off_delay", &SmSpec::off_delay},
}};

} // namespace

void openSmSpec(Run& run, std::optional<SmSpec>& slot, std::string_view text) {
    if (slot) errorAtLine(run.diagnostics, 2700);
    slot.emplace();
    const ItemList items = splitItems(run, text, 0);
    if (items.count > 0) errorAtLine(run.diagnostics, 2704, items.count + 1, "Submodel Spec", 1);
}

void smSpecLine(Run& run, SmSpec& spec, std::string_view text, std::string_view submodel) {
    Diagnostics& diagnostics = run.diagnostics;
    const auto row = std::ranges::find(kRows, takeItem(run, text, '='), &SpecRow::name);
    if (row == kRows.end()) {
        errorAtLine(diagnostics, 2706);
        return;
    }
    std::optional<Rng>& value = spec.*(row->value);
    if (value) {
        errorAtLine(diagnostics, 2707, row->name, submodel);
        return;
    }
    Rng range;
    if (!readRange(run, text, row->name, range, OrderCheck::off)) return;
    if (range.typ.state == CellState::na) errorAtLine(diagnostics, 2708);
    value = range;
}

void closeSmSpec(Run& run, const SmSpec& spec, std::string_view submodel) {
    const bool empty =
        std::ranges::none_of(kRows, [&spec](const SpecRow& row) { return (spec.*row.value).has_value(); });
    if (empty) error(run.diagnostics, 2705, submodel);
}

} // namespace kestrel
