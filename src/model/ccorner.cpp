#include "model/ccorner.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace kestrel {

namespace {

/// A capacitance by its spelling, and the model's own of the same name.
struct CornerRow {
    std::string_view name;
    std::optional<Rng> CCorner::*value;
    std::optional<Rng> Mdl::*own;
};

constexpr auto kRows = std::to_array({
    CornerRow{"C_comp", &CCorner::c_comp, &Mdl::c_comp},
    CornerRow{"C_comp_pullup", &CCorner::c_comp_pullup, &Mdl::c_comp_pullup},
    CornerRow{"C_comp_pulldown", &CCorner::c_comp_pulldown, &Mdl::c_comp_pulldown},
    CornerRow{"C_comp_power_clamp", &CCorner::c_comp_power_clamp, &Mdl::c_comp_power_clamp},
    CornerRow{"C_comp_gnd_clamp", &CCorner::c_comp_gnd_clamp, &Mdl::c_comp_gnd_clamp},
});

constexpr RangeLineRules kRangeRules{CheckedMessage<ArgKind::text>(5007), true};

/// True when a corner lies below or above all three values of `own` by more than a millionth of the nearest.
bool leaves(const Rng& corners, const Rng& own) {
    constexpr double kTolerance = 1e-6;
    if (!std::ranges::all_of(own, &Cell::isNumber)) return false;
    const auto [low, high] = std::minmax({own.typ().value, own.min().value, own.max().value});
    const double floor = low - kTolerance * std::abs(low);
    const double ceiling = high + kTolerance * std::abs(high);
    return std::ranges::any_of(
        corners, [&](const Cell& cell) { return cell.isNumber() && (cell.value < floor || cell.value > ceiling); });
}

} // namespace

void openCCorner(Run& run, Mdl& model, std::string_view text) {
    if (model.c_comp_corner) errorAtLine(run.diagnostics, 5001);
    model.c_comp_corner = std::make_unique<CCorner>();
    expectNoText(run, text, "C Comp Corner", 5004);
}

void cCornerLine(Run& run, Mdl& model, std::string_view text) {
    const CornerRow* const row = takeSubparameter(run, kRows, text, 5005);
    if (row == nullptr) return;
    CCorner& corner = *model.c_comp_corner;
    std::optional<Rng>& value = corner.*row->value;
    if (value) {
        errorAtLine(run.diagnostics, 5006, row->name, model.name);
    } else if (!readRangeLine(run, text, row->name, kRangeRules, value)) {
        corner.refused.add(rowPlace(kRows, row->name, &CornerRow::name));
    } else if (anyBelowZero(*value)) {
        warningAtLine(run.diagnostics, 5008, row->name);
    }
}

void closeCCorner(Run& run, const Mdl& model) {
    const CCorner& corner = *model.c_comp_corner;
    const bool given =
        std::ranges::any_of(kRows, [&corner](const CornerRow& row) { return (corner.*row.value).has_value(); });
    if (!given && !corner.refused.any()) error(run.diagnostics, 5009, model.name);
}

void checkCCorner(Run& run, const Mdl& model) {
    if (!model.c_comp_corner) return;
    for (const CornerRow& row : kRows) {
        const std::optional<Rng>& value = *model.c_comp_corner.*row.value;
        if (!value) continue;
        const std::optional<Rng>& own = model.*row.own;
        if (!own) {
            caution(run.diagnostics, 5010, model.name, row.name, row.name);
        } else if (leaves(*value, *own)) {
            caution(run.diagnostics, 5011, model.name, row.name, row.name);
        }
    }
}

} // namespace kestrel
