#include "model/smspec.hpp"

#include "reader/context.hpp"
#include "reader/line_form.hpp"

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

constexpr RangeLineRules kRangeRules{CheckedMessage<>(2708), false};

} // namespace

void openSmSpec(Context& context, std::optional<SmSpec>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 2700);
    slot.emplace();
    expectNoText(context, text, "Submodel Spec", 2704);
}

void smSpecLine(Context& context, SmSpec& spec, std::string_view text, std::string_view submodel) {
    const SpecRow* const row = takeSubparameter(context, kRows, text, 2706);
    if (row == nullptr) return;
    std::optional<Rng>& value = spec.*(row->value);
    if (value) {
        errorAtLine(context.diagnostics, 2707, row->name, submodel);
    } else {
        readRangeLine(context, text, row->name, kRangeRules, value);
    }
}

void closeSmSpec(Context& context, const SmSpec& spec, std::string_view submodel) {
    const bool empty =
        std::ranges::none_of(kRows, [&spec](const SpecRow& row) { return (spec.*row.value).has_value(); });
    if (empty) error(context.diagnostics, 2705, submodel);
}

} // namespace kestrel
