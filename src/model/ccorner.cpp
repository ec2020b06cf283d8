#include "model/ccorner.hpp"

#include "reader/subparameters.hpp"

#include <cmath>

namespace kestrel {

namespace {

using Field = GivenRange CComp::*;
constexpr std::array<Field, 5> kFields{&CComp::c_comp, &CComp::c_comp_pullup, &CComp::c_comp_pulldown,
                                       &CComp::c_comp_power_clamp, &CComp::c_comp_gnd_clamp};

constexpr auto kCorner = subparameters<Subparameter<CCorner>>(
    {
        {"C_comp", &CCorner::c_comp, Bound::notBelowZero},
        {"C_comp_pullup", &CCorner::c_comp_pullup, Bound::notBelowZero},
        {"C_comp_pulldown", &CCorner::c_comp_pulldown, Bound::notBelowZero},
        {"C_comp_power_clamp", &CCorner::c_comp_power_clamp, Bound::notBelowZero},
        {"C_comp_gnd_clamp", &CCorner::c_comp_gnd_clamp, Bound::notBelowZero},
    },
    {
        .unknown = CheckedMessage<>(5005),
        .repeated = 5006,
        .range = RangeLineRules{CheckedMessage<ArgKind::text>(5007), true},
        .out_of_bounds = CheckedMessage<ArgKind::text>(5008),
    });

/// True when a corner lies below or above all three values of `own` by more than a millionth of the nearest.
bool leaves(const Rng& corners, const Rng& own) {
    constexpr double kTolerance = 1e-6;
    if (!std::ranges::all_of(own, &Cell::isNumber)) return false;
    const auto [low, high] = std::minmax({own.typ().value(), own.min().value(), own.max().value()});
    const double floor = low - kTolerance * std::abs(low);
    const double ceiling = high + kTolerance * std::abs(high);
    return std::ranges::any_of(
        corners, [&](const Cell& cell) { return cell.isNumber() && (cell.value() < floor || cell.value() > ceiling); });
}

} // namespace

void openCCorner(Context& context, std::unique_ptr<CCorner>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 5001);
    slot = std::make_unique<CCorner>();
    expectNoText(context, text, "C Comp Corner", 5004);
}

void cCornerLine(Context& context, CCorner& corner, std::string_view text, std::string_view model) {
    readSubparameter(context, kCorner, corner, text, model);
}

void closeCCorner(Context& context, const CCorner& corner, std::string_view model) {
    if (!anyGiven(kCorner, corner) && !corner.refused.any()) error(context.diagnostics, 5009, model);
}

void checkCCorner(Context& context, const CCorner& corner, const CComp& own, std::string_view model) {
    for (const Field field : kFields) {
        if (!(corner.*field)) continue;
        const std::string_view name = kCorner.nameOf(field);
        if (!(own.*field)) {
            caution(context.diagnostics, 5010, model, name, name);
        } else if (leaves(*(corner.*field), *(own.*field))) {
            caution(context.diagnostics, 5011, model, name, name);
        }
    }
}

} // namespace kestrel
