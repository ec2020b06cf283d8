#include "model/mspec.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <span>

namespace kestrel {

namespace {

using Field = std::optional<Rng> MSpec::*;

enum class Unit : std::uint8_t { volt, second, farad, ohm, ampere, voltSecond };

/// A subparameter by its spelling, with the version that brought it.
struct SpecRow {
    std::string_view name;
    Field value;
    Unit unit;
    IbisVersion since = IbisVersion::v3;
};

constexpr auto kFrom4 = IbisVersion::v4;
constexpr auto kFrom5 = IbisVersion::v5;

constexpr auto kRows = std::to_array({
    SpecRow{"Vinh", &MSpec::vinh, Unit::volt},
    SpecRow{"Vinl", &MSpec::vinl, Unit::volt},
    SpecRow{"Vinh+", &MSpec::vinh_plus, Unit::volt},
    SpecRow{"Vinh-", &MSpec::vinh_minus, Unit::volt},
    SpecRow{"Vinl+", &MSpec::vinl_plus, Unit::volt},
    SpecRow{"Vinl-", &MSpec::vinl_minus, Unit::volt},
    SpecRow{"S_overshoot_high", &MSpec::s_overshoot_high, Unit::volt},
    SpecRow{"S_overshoot_low", &MSpec::s_overshoot_low, Unit::volt},
    SpecRow{"D_overshoot_high", &MSpec::d_overshoot_high, Unit::volt},
    SpecRow{"D_overshoot_low", &MSpec::d_overshoot_low, Unit::volt},
    SpecRow{"Pulse_high", &MSpec::pulse_high, Unit::volt},
    SpecRow{"Pulse_low", &MSpec::pulse_low, Unit::volt},
    SpecRow{"D_overshoot_time", &MSpec::d_overshoot_time, Unit::second},
    SpecRow{"Pulse_time", &MSpec::pulse_time, Unit::second},
    SpecRow{"Vmeas", &MSpec::vmeas, Unit::volt},
    SpecRow{"Vref", &MSpec::vref, Unit::volt, kFrom4},
    SpecRow{"Cref", &MSpec::cref, Unit::farad, kFrom4},
    SpecRow{"Rref", &MSpec::rref, Unit::ohm, kFrom4},
    SpecRow{"Cref_rising", &MSpec::cref_rising, Unit::farad, kFrom4},
    SpecRow{"Cref_falling", &MSpec::cref_falling, Unit::farad, kFrom4},
    SpecRow{"Rref_rising", &MSpec::rref_rising, Unit::ohm, kFrom4},
    SpecRow{"Rref_falling", &MSpec::rref_falling, Unit::ohm, kFrom4},
    SpecRow{"Vref_rising", &MSpec::vref_rising, Unit::volt, kFrom4},
    SpecRow{"Vref_falling", &MSpec::vref_falling, Unit::volt, kFrom4},
    SpecRow{"Vmeas_rising", &MSpec::vmeas_rising, Unit::volt, kFrom4},
    SpecRow{"Vmeas_falling", &MSpec::vmeas_falling, Unit::volt, kFrom4},
    SpecRow{"Rref_diff", &MSpec::rref_diff, Unit::ohm, kFrom4},
    SpecRow{"Cref_diff", &MSpec::cref_diff, Unit::farad, kFrom4},
    SpecRow{"D_overshoot_area_h", &MSpec::d_overshoot_area_h, Unit::voltSecond, kFrom5},
    SpecRow{"D_overshoot_area_l", &MSpec::d_overshoot_area_l, Unit::voltSecond, kFrom5},
    SpecRow{"D_overshoot_ampl_h", &MSpec::d_overshoot_ampl_h, Unit::volt, kFrom5},
    SpecRow{"D_overshoot_ampl_l", &MSpec::d_overshoot_ampl_l, Unit::volt, kFrom5},
    SpecRow{"Weak_R", &MSpec::weak_r, Unit::ohm, kFrom5},
    SpecRow{"Weak_I", &MSpec::weak_i, Unit::ampere, kFrom5},
    SpecRow{"Weak_V", &MSpec::weak_v, Unit::volt, kFrom5},
});

constexpr RangeLineRules kRangeRules{CheckedMessage<ArgKind::text>(3807), true};

constexpr std::size_t placeOf(Field field) { return rowPlace(kRows, field, &SpecRow::value); }

constexpr std::string_view nameOf(Field field) { return kRows[placeOf(field)].name; }

constexpr std::string_view versionText(IbisVersion version) { return version == kFrom4 ? "4.0" : "5.0"; }

/// Times, loads and areas have no sign; voltages and currents do.
constexpr bool hasSign(Unit unit) { return unit == Unit::volt || unit == Unit::ampere; }

constexpr std::size_t kThresholds = 6; // rows of thresholds, the first ones
constexpr std::span<const SpecRow> kThresholdRows = std::span(kRows).first(kThresholds);
constexpr std::span<const SpecRow> kTestLoadRows =
    std::span(kRows).subspan(placeOf(&MSpec::vmeas), placeOf(&MSpec::cref_diff) - placeOf(&MSpec::vmeas) + 1);
constexpr std::array<Field, 4> kHysteresis{&MSpec::vinh_plus, &MSpec::vinh_minus, &MSpec::vinl_plus,
                                           &MSpec::vinl_minus};

/// What is given only together with something else; two that need the same are told of together.
struct Companion {
    std::array<Field, 2> given; ///< the second may be null
    Field needed;
};

constexpr auto kCompanions = std::to_array({
    Companion{{&MSpec::d_overshoot_high, &MSpec::d_overshoot_low}, &MSpec::d_overshoot_time},
    Companion{{&MSpec::d_overshoot_high}, &MSpec::s_overshoot_high},
    Companion{{&MSpec::d_overshoot_low}, &MSpec::s_overshoot_low},
    Companion{{&MSpec::pulse_high, &MSpec::pulse_low}, &MSpec::pulse_time},
    Companion{{&MSpec::d_overshoot_area_h}, &MSpec::d_overshoot_ampl_h},
    Companion{{&MSpec::d_overshoot_area_l}, &MSpec::d_overshoot_ampl_l},
    Companion{{&MSpec::d_overshoot_ampl_h}, &MSpec::d_overshoot_area_h},
    Companion{{&MSpec::d_overshoot_ampl_l}, &MSpec::d_overshoot_area_l},
    Companion{{&MSpec::cref_rising}, &MSpec::cref_falling},
    Companion{{&MSpec::cref_falling}, &MSpec::cref_rising},
    Companion{{&MSpec::rref_rising}, &MSpec::rref_falling},
    Companion{{&MSpec::rref_falling}, &MSpec::rref_rising},
    Companion{{&MSpec::vref_rising}, &MSpec::vref_falling},
    Companion{{&MSpec::vref_falling}, &MSpec::vref_rising},
    Companion{{&MSpec::vmeas_rising}, &MSpec::vmeas_falling},
    Companion{{&MSpec::vmeas_falling}, &MSpec::vmeas_rising},
});

bool has(const MSpec& spec, Field field) { return (spec.*field).has_value(); }

/// True when a line for it was there; one that was refused has been reported.
bool hasLine(const MSpec& spec, Field field) { return has(spec, field) || spec.refused.has(placeOf(field)); }

/// True when `faulty` holds of the two fields in a corner of which both are numbers.
template <class Faulty> bool anyCorner(const MSpec& spec, Field first, Field second, Faulty faulty) {
    if (!has(spec, first) || !has(spec, second)) return false;
    return std::ranges::any_of(kCorners, [&](Corner corner) {
        const Cell& a = (*(spec.*first))[corner];
        const Cell& b = (*(spec.*second))[corner];
        return a.isNumber() && b.isNumber() && faulty(a.value, b.value);
    });
}

void checkThresholds(Run& run, const MSpec& spec, std::string_view model) {
    const bool begun = std::ranges::any_of(kHysteresis, [&spec](Field field) { return has(spec, field); });
    const bool complete = std::ranges::all_of(kHysteresis, [&spec](Field field) { return hasLine(spec, field); });
    if (begun && !complete) warning(run.diagnostics, 3811, model);
    const auto check_order = [&](Field high, Field low) {
        if (!anyCorner(spec, high, low, std::less<>{})) return;
        warning(run.diagnostics, 3812, model, nameOf(high), nameOf(low));
    };
    check_order(&MSpec::vinh_plus, &MSpec::vinh_minus);
    check_order(&MSpec::vinl_plus, &MSpec::vinl_minus);
    if (anyCorner(spec, &MSpec::vinl, &MSpec::vinh, std::greater_equal<>{})) warning(run.diagnostics, 3813, model);
}

void checkCompanions(Run& run, const MSpec& spec, std::string_view model) {
    for (const Companion& rule : kCompanions) {
        if (hasLine(spec, rule.needed)) continue;
        const auto* const given =
            std::ranges::find_if(rule.given, [&spec](Field field) { return field != nullptr && has(spec, field); });
        if (given == rule.given.end()) continue;
        warning(run.diagnostics, 3814, model, nameOf(*given), nameOf(rule.needed));
    }
}

/// Reports the first of the rows that is given.
void reportMisplaced(Run& run, const MSpec& spec, const Mdl& model, std::span<const SpecRow> rows) {
    const auto row = std::ranges::find_if(rows, [&spec](const SpecRow& one) { return has(spec, one.value); });
    if (row == rows.end()) return;
    warning(run.diagnostics, 3816, model.name, row->name, modelTypeText(model.model_type));
}

/// Thresholds are for models that receive, test loads for those that drive. A series model is warned of the whole block
/// when it is complete, and a model without a type has been reported.
void checkType(Run& run, const MSpec& spec, const Mdl& model) {
    const ModelType type = model.model_type;
    if (type == ModelType::notGiven || type == ModelType::noType || isSeries(model)) return;
    if (!kReceivingTypes.has(type)) reportMisplaced(run, spec, model, kThresholdRows);
    if (kNoTestLoadTypes.has(type)) reportMisplaced(run, spec, model, kTestLoadRows);
}

} // namespace

void openMSpec(Run& run, Mdl& model, std::string_view text) {
    if (model.model_spec) errorAtLine(run.diagnostics, 3801);
    model.model_spec = std::make_unique<MSpec>();
    expectNoText(run, text, "Model Spec", 3804);
}

void mSpecLine(Run& run, Mdl& model, std::string_view text) {
    const SpecRow* const row = takeSubparameter(run, kRows, text, 3805);
    if (row == nullptr) return;
    MSpec& spec = *model.model_spec;
    std::optional<Rng>& value = spec.*row->value;
    if (run.parse.version < row->since) {
        errorAtLine(run.diagnostics, 3808, row->name, versionText(row->since));
        spec.refused.add(placeOf(row->value));
    } else if (value) {
        errorAtLine(run.diagnostics, 3806, row->name, model.name);
    } else if (!readRangeLine(run, text, row->name, kRangeRules, value)) {
        spec.refused.add(placeOf(row->value));
    } else if (!hasSign(row->unit) && anyBelowZero(*value)) {
        warningAtLine(run.diagnostics, 3810, row->name);
    }
}

void closeMSpec(Run& run, const Mdl& model) {
    const MSpec& spec = *model.model_spec;
    const bool given = std::ranges::any_of(kRows, [&spec](const SpecRow& row) { return has(spec, row.value); });
    if (!given) {
        if (!spec.refused.any()) warning(run.diagnostics, 3809, model.name);
        return;
    }
    checkThresholds(run, spec, model.name);
    checkCompanions(run, spec, model.name);
    if (spec.weak_r && spec.weak_i) warning(run.diagnostics, 3815, model.name);
    checkType(run, spec, model);
}

} // namespace kestrel
