#include "model/mspec.hpp"

#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

using Field = GivenRange MSpec::*;
using Row = Subparameter<MSpec>;

constexpr auto kFrom4 = IbisVersion::v4;
constexpr auto kFrom5 = IbisVersion::v5;

/// Times, loads and areas have no sign; voltages and currents do.
constexpr auto kSpec = subparameters<Row>(
    {
        {"Vinh", &MSpec::vinh},
        {"Vinl", &MSpec::vinl},
        {"Vinh+", &MSpec::vinh_plus},
        {"Vinh-", &MSpec::vinh_minus},
        {"Vinl+", &MSpec::vinl_plus},
        {"Vinl-", &MSpec::vinl_minus},
        {"S_overshoot_high", &MSpec::s_overshoot_high},
        {"S_overshoot_low", &MSpec::s_overshoot_low},
        {"D_overshoot_high", &MSpec::d_overshoot_high},
        {"D_overshoot_low", &MSpec::d_overshoot_low},
        {"Pulse_high", &MSpec::pulse_high},
        {"Pulse_low", &MSpec::pulse_low},
        {"D_overshoot_time", &MSpec::d_overshoot_time, Bound::notBelowZero},
        {"Pulse_time", &MSpec::pulse_time, Bound::notBelowZero},
        {"Vmeas", &MSpec::vmeas},
        {"Vref", &MSpec::vref, Bound::none, kFrom4},
        {"Cref", &MSpec::cref, Bound::notBelowZero, kFrom4},
        {"Rref", &MSpec::rref, Bound::notBelowZero, kFrom4},
        {"Cref_rising", &MSpec::cref_rising, Bound::notBelowZero, kFrom4},
        {"Cref_falling", &MSpec::cref_falling, Bound::notBelowZero, kFrom4},
        {"Rref_rising", &MSpec::rref_rising, Bound::notBelowZero, kFrom4},
        {"Rref_falling", &MSpec::rref_falling, Bound::notBelowZero, kFrom4},
        {"Vref_rising", &MSpec::vref_rising, Bound::none, kFrom4},
        {"Vref_falling", &MSpec::vref_falling, Bound::none, kFrom4},
        {"Vmeas_rising", &MSpec::vmeas_rising, Bound::none, kFrom4},
        {"Vmeas_falling", &MSpec::vmeas_falling, Bound::none, kFrom4},
        {"Rref_diff", &MSpec::rref_diff, Bound::notBelowZero, kFrom4},
        {"Cref_diff", &MSpec::cref_diff, Bound::notBelowZero, kFrom4},
        {"D_overshoot_area_h", &MSpec::d_overshoot_area_h, Bound::notBelowZero, kFrom5},
        {"D_overshoot_area_l", &MSpec::d_overshoot_area_l, Bound::notBelowZero, kFrom5},
        {"D_overshoot_ampl_h", &MSpec::d_overshoot_ampl_h, Bound::none, kFrom5},
        {"D_overshoot_ampl_l", &MSpec::d_overshoot_ampl_l, Bound::none, kFrom5},
        {"Weak_R", &MSpec::weak_r, Bound::notBelowZero, kFrom5},
        {"Weak_I", &MSpec::weak_i, Bound::none, kFrom5},
        {"Weak_V", &MSpec::weak_v, Bound::none, kFrom5},
    },
    {
        .unknown = CheckedMessage<>(3805),
        .repeated = 3806,
        .range = RangeLineRules{CheckedMessage<ArgKind::text>(3807), true},
        .out_of_bounds = CheckedMessage<ArgKind::text>(3810),
        .too_old = CheckedMessage<ArgKind::text, ArgKind::text>(3808),
    });

constexpr auto kMembers = namedMembers<GivenRange, kSpec>();

constexpr std::size_t kThresholds = 6; // rows of thresholds, the first ones
constexpr std::span<const Row> kThresholdRows = std::span(kSpec.rows).first(kThresholds);
constexpr std::span<const Row> kTestLoadRows =
    std::span(kSpec.rows)
        .subspan(kSpec.placeOf(&MSpec::vmeas), kSpec.placeOf(&MSpec::cref_diff) - kSpec.placeOf(&MSpec::vmeas) + 1);
constexpr std::array<Field, 4> kHysteresis{&MSpec::vinh_plus, &MSpec::vinh_minus, &MSpec::vinl_plus,
                                           &MSpec::vinl_minus};

/// What is given only together with something else; two that need the same are reported together.
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

/// True when `faulty` holds of the two fields in a corner of which both are numbers.
template <class Faulty> bool anyCorner(const MSpec& spec, Field first, Field second, Faulty faulty) {
    if (!(spec.*first) || !(spec.*second)) return false;
    return std::ranges::any_of(kCorners, [&](Corner corner) {
        const Cell& a = (*(spec.*first))[corner];
        const Cell& b = (*(spec.*second))[corner];
        return a.isNumber() && b.isNumber() && faulty(a.value(), b.value());
    });
}

void checkThresholds(Context& context, const MSpec& spec, std::string_view model) {
    const auto given = [&](Field field) { return isGiven(spec.*field); };
    const auto seen = [&](Field field) { return isSeen(kSpec, spec, field); };
    const bool begun = std::ranges::any_of(kHysteresis, given);
    const bool complete = std::ranges::all_of(kHysteresis, seen);
    if (begun && !complete) warning(context.diagnostics, 3811, model);
    const auto check_order = [&](Field high, Field low) {
        if (!anyCorner(spec, high, low, std::less<>{})) return;
        warning(context.diagnostics, 3812, model, kSpec.nameOf(high), kSpec.nameOf(low));
    };
    check_order(&MSpec::vinh_plus, &MSpec::vinh_minus);
    check_order(&MSpec::vinl_plus, &MSpec::vinl_minus);
    if (anyCorner(spec, &MSpec::vinl, &MSpec::vinh, std::greater_equal<>{})) warning(context.diagnostics, 3813, model);
}

void checkCompanions(Context& context, const MSpec& spec, std::string_view model) {
    for (const Companion& rule : kCompanions) {
        if (isSeen(kSpec, spec, rule.needed)) continue;
        const Field* const given =
            rowOf(rule.given, true, [&](Field field) { return field != nullptr && spec.*field; });
        if (given == nullptr) continue;
        warning(context.diagnostics, 3814, model, kSpec.nameOf(*given), kSpec.nameOf(rule.needed));
    }
}

/// Reports the first of the rows that is given.
void reportMisplaced(Context& context, const MSpec& spec, std::string_view model, ModelType type,
                     std::span<const Row> rows) {
    const Row* const row = rowOf(rows, true, [&spec](const Row& one) { return isGiven(spec, one); });
    if (row != nullptr) warning(context.diagnostics, 3816, model, row->name, modelTypeText(type));
}

/// Thresholds are for models that receive, test loads for those that drive. A series model is warned of the whole block
/// when it is complete, and a model without a type has been reported.
void checkType(Context& context, const MSpec& spec, std::string_view model, ModelType type) {
    if (type == ModelType::notGiven || type == ModelType::noType || kSeriesTypes.has(type)) return;
    if (!kReceivingTypes.has(type)) reportMisplaced(context, spec, model, type, kThresholdRows);
    if (kNoTestLoadTypes.has(type)) reportMisplaced(context, spec, model, type, kTestLoadRows);
}

} // namespace

std::span<const NamedMember<MSpec, GivenRange>> mSpecMembers() { return kMembers; }

void openMSpec(Context& context, std::unique_ptr<MSpec>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 3801);
    slot = std::make_unique<MSpec>();
    expectNoText(context, text, "Model Spec", 3804);
}

void mSpecLine(Context& context, MSpec& spec, std::string_view text, std::string_view model) {
    readSubparameter(context, kSpec, spec, text, model);
}

void closeMSpec(Context& context, const MSpec& spec, std::string_view model, ModelType type) {
    if (!anyGiven(kSpec, spec)) {
        if (!spec.refused.any()) warning(context.diagnostics, 3809, model);
        return;
    }
    checkThresholds(context, spec, model);
    checkCompanions(context, spec, model);
    if (spec.weak_r && spec.weak_i) warning(context.diagnostics, 3815, model);
    checkType(context, spec, model, type);
}

} // namespace kestrel
