#include "model/smspec.hpp"

#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr auto kSpec = subparameters<Subparameter<SmSpec>>(
    {
        {"V_trigger_r", &SmSpec::v_trigger_r},
        {"V_trigger_f", &SmSpec::v_trigger_f},
        {"Off_delay", &SmSpec::off_delay},
    },
    {.unknown = CheckedMessage<>(2706), .repeated = 2707, .range = RangeLineRules{CheckedMessage<>(2708), false}});

} // namespace

void openSmSpec(Context& context, OnDemand<SmSpec>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 2700);
    static_cast<void>(slot.madeAnew(context.rows));
    expectNoText(context, text, "Submodel Spec", 2704);
}

void smSpecLine(Context& context, SmSpec& spec, std::string_view text, std::string_view submodel) {
    readSubparameter(context, kSpec, spec, text, submodel);
}

void closeSmSpec(Context& context, const SmSpec& spec, std::string_view submodel) {
    if (!anyGiven(kSpec, spec)) error(context.diagnostics, 2705, submodel);
}

} // namespace kestrel
