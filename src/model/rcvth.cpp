#include "model/rcvth.hpp"

#include "reader/subparameters.hpp"

#include <cmath>

namespace kestrel {

namespace {

using Field = GivenValue RcvTh::*;
using Row = Subparameter<RcvTh, ReferenceSupply>;

constexpr std::array<EnumerationRow<ReferenceSupply>, 5> kSupplies{{
    {"Power_clamp_ref", ReferenceSupply::powerClamp},
    {"Gnd_clamp_ref", ReferenceSupply::gndClamp},
    {"Pullup_ref", ReferenceSupply::pullup},
    {"Pulldown_ref", ReferenceSupply::pulldown},
    {"Ext_ref", ReferenceSupply::external},
}};

constexpr auto kThresholds = subparameters<Row>(
    {
        {"Vth", &RcvTh::vth},
        {"Vth_min", &RcvTh::vth_min},
        {"Vth_max", &RcvTh::vth_max},
        {"Vinh_ac", &RcvTh::vinh_ac},
        {"Vinh_dc", &RcvTh::vinh_dc},
        {"Vinl_ac", &RcvTh::vinl_ac},
        {"Vinl_dc", &RcvTh::vinl_dc},
        {"Threshold_sensitivity", &RcvTh::threshold_sensitivity},
        {"Reference_supply", wordOf<kSupplies>(&RcvTh::reference_supply)},
        {"Vcross_low", &RcvTh::vcross_low},
        {"Vcross_high", &RcvTh::vcross_high},
        {"Vdiff_ac", &RcvTh::vdiff_ac},
        {"Vdiff_dc", &RcvTh::vdiff_dc},
        {"Tslew_ac", &RcvTh::tslew_ac, Bound::aboveZero},
        {"Tdiffslew_ac", &RcvTh::tdiffslew_ac, Bound::aboveZero},
    },
    {
        .unknown = CheckedMessage<>(3206),
        .repeated = 3207,
        .value = ValueLineMessages{3208, 3204, 3209, ScaleMessage(3210), ValueGiven::whenRead, TooMany::whenComplete},
        .word = WordMessages{WordLineMessages{CheckedMessage<ArgKind::text>(3211), 3204}, {3212, 3213}},
        .out_of_bounds = CheckedMessage<ArgKind::text>(3214),
        .group = "Receiver Thresholds",
    });

constexpr auto kMembers = namedMembers<GivenValue, kThresholds>();

constexpr std::array<Field, 5> kDifferential{&RcvTh::vcross_low, &RcvTh::vcross_high, &RcvTh::vdiff_ac,
                                             &RcvTh::vdiff_dc, &RcvTh::tdiffslew_ac};
/// What a single-ended input has to give.
constexpr std::array<Field, 6> kSingleEnded{&RcvTh::vth,     &RcvTh::vinh_ac, &RcvTh::vinh_dc,
                                            &RcvTh::vinl_ac, &RcvTh::vinl_dc, &RcvTh::tslew_ac};
/// What begins that set as well.
constexpr std::array<Field, 3> kSingleEndedToo{&RcvTh::vth_min, &RcvTh::vth_max, &RcvTh::threshold_sensitivity};

void requireAll(Context& context, const RcvTh& thresholds, std::string_view model, std::span<const Field> fields) {
    for (const Field field : fields) {
        if (!isSeen(kThresholds, thresholds, field)) error(context.diagnostics, 3216, model, kThresholds.nameOf(field));
    }
}

void checkSensitivity(Context& context, const RcvTh& thresholds, std::string_view model) {
    const bool sensitivity = isSeen(kThresholds, thresholds, &RcvTh::threshold_sensitivity);
    const bool supply = isSeen(kThresholds, thresholds, &RcvTh::reference_supply);
    if (thresholds.threshold_sensitivity && !supply) error(context.diagnostics, 3217, model);
    if (isGiven(thresholds.reference_supply) && !sensitivity) caution(context.diagnostics, 3218, model);
}

void checkOrder(Context& context, const RcvTh& t, std::string_view model) {
    const auto above = [](const GivenValue& a, const GivenValue& b) { return a && b && *a > *b; };
    const auto wrong = [&](std::string_view first, std::string_view second) {
        warning(context.diagnostics, 3220, model, first, second);
    };
    if (above(t.vth_min, t.vth) || above(t.vth, t.vth_max)) warning(context.diagnostics, 3219, model);
    if (above(t.vinh_dc, t.vinh_ac)) wrong("Vinh_ac", "Vinh_dc");
    if (above(t.vinl_ac, t.vinl_dc)) wrong("Vinl_ac", "Vinl_dc");
    if (t.vinh_dc && t.vinl_dc && *t.vinh_dc <= *t.vinl_dc) wrong("Vinh_dc", "Vinl_dc");
    if (above(t.vcross_low, t.vcross_high)) wrong("Vcross_low", "Vcross_high");
    if (t.vdiff_ac && t.vdiff_dc && std::abs(*t.vdiff_ac) < std::abs(*t.vdiff_dc)) wrong("Vdiff_ac", "Vdiff_dc");
}

} // namespace

std::span<const NamedMember<RcvTh, GivenValue>> rcvThMembers() { return kMembers; }

std::string_view referenceSupplyWord(ReferenceSupply supply) {
    const auto* const row = rowOf(kSupplies, supply, &EnumerationRow<ReferenceSupply>::code);
    return row != nullptr ? row->text : std::string_view();
}

void openRcvTh(Context& context, std::unique_ptr<RcvTh>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 3201);
    slot = std::make_unique<RcvTh>();
    expectNoText(context, text, "Receiver Thresholds", 3204);
}

void rcvThLine(Context& context, RcvTh& thresholds, std::string_view text, std::string_view model) {
    readSubparameter(context, kThresholds, thresholds, text, model);
}

void checkRcvTh(Context& context, const RcvTh& thresholds, std::string_view model) {
    if (!anyGiven(kThresholds, thresholds) && !thresholds.refused.any()) warning(context.diagnostics, 3215, model);
    const auto given = [&](Field field) { return isGiven(thresholds.*field); };
    const auto seen = [&](Field field) { return isSeen(kThresholds, thresholds, field); };
    // Either input of a differential pair may give thresholds of its own, but it need not.
    // A pair that was begun only with lines that were refused need not give more.
    if (std::ranges::any_of(kDifferential, given)) {
        requireAll(context, thresholds, model, kDifferential);
    } else if (std::ranges::any_of(kSingleEnded, given) || std::ranges::any_of(kSingleEndedToo, given) ||
               std::ranges::none_of(kDifferential, seen)) {
        requireAll(context, thresholds, model, kSingleEnded);
    }
    checkSensitivity(context, thresholds, model);
    checkOrder(context, thresholds, model);
}

} // namespace kestrel
