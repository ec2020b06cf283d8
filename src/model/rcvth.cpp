#include "model/rcvth.hpp"

#include "ibis/run.hpp"
#include "reader/enumeration.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <span>
#include <variant>

namespace kestrel {

namespace {

using ValueField = std::optional<double> RcvTh::*;
using WordField = ReferenceSupply RcvTh::*;
using Field = std::variant<ValueField, WordField>;

/// A subparameter by its spelling; its field tells the form of its line.
struct ThresholdRow {
    std::string_view name;
    Field field;
    bool above_zero = false;
};

constexpr std::string_view kReferenceName = "Reference_supply";

constexpr auto kRows = std::to_array({
    ThresholdRow{"Vth", &RcvTh::vth},
    ThresholdRow{"Vth_min", &RcvTh::vth_min},
    ThresholdRow{"Vth_max", &RcvTh::vth_max},
    ThresholdRow{"Vinh_ac", &RcvTh::vinh_ac},
    ThresholdRow{"Vinh_dc", &RcvTh::vinh_dc},
    ThresholdRow{"Vinl_ac", &RcvTh::vinl_ac},
    ThresholdRow{"Vinl_dc", &RcvTh::vinl_dc},
    ThresholdRow{"Threshold_sensitivity", &RcvTh::threshold_sensitivity},
    ThresholdRow{kReferenceName, &RcvTh::reference_supply},
    ThresholdRow{"Vcross_low", &RcvTh::vcross_low},
    ThresholdRow{"Vcross_high", &RcvTh::vcross_high},
    ThresholdRow{"Vdiff_ac", &RcvTh::vdiff_ac},
    ThresholdRow{"Vdiff_dc", &RcvTh::vdiff_dc},
    ThresholdRow{"Tslew_ac", &RcvTh::tslew_ac, true},
    ThresholdRow{"Tdiffslew_ac", &RcvTh::tdiffslew_ac, true},
});

constexpr std::array<EnumerationRow<ReferenceSupply>, 5> kSupplies{{
    {"Power_clamp_ref", ReferenceSupply::powerClamp},
    {"Gnd_clamp_ref", ReferenceSupply::gndClamp},
    {"Pullup_ref", ReferenceSupply::pullup},
    {"Pulldown_ref", ReferenceSupply::pulldown},
    {"Ext_ref", ReferenceSupply::external},
}};

/// What a model has to give when its thresholds follow a supply.
struct SupplyKeyword {
    ReferenceSupply supply;
    std::optional<Rng> Mdl::*reference;
    CheckedMessage<ArgKind::text> missing;
};
constexpr auto kSupplyKeywords = std::to_array({
    SupplyKeyword{ReferenceSupply::powerClamp, &Mdl::power_clamp_reference, 195},
    SupplyKeyword{ReferenceSupply::gndClamp, &Mdl::gnd_clamp_reference, 196},
    SupplyKeyword{ReferenceSupply::pullup, &Mdl::pullup_reference, 197},
    SupplyKeyword{ReferenceSupply::pulldown, &Mdl::pulldown_reference, 198},
    SupplyKeyword{ReferenceSupply::external, &Mdl::external_reference, 199},
});

constexpr ValueLineMessages kValueMessages{
    3208, 3204, 3209, ScaleMessage(3210), ValueGiven::whenRead, TooMany::whenComplete};
constexpr WordLineMessages kWordMessages{CheckedMessage<ArgKind::text>(3211), 3204};
constexpr EnumerationMessages kEnumerationMessages{3212, 3213};

constexpr std::array<std::string_view, 5> kDifferential{"Vcross_low", "Vcross_high", "Vdiff_ac", "Vdiff_dc",
                                                        "Tdiffslew_ac"};
/// What a single-ended input has to give. Its other names, the supply excepted, begin the set as well.
constexpr std::array<std::string_view, 6> kSingleEnded{"Vth", "Vinh_ac", "Vinh_dc", "Vinl_ac", "Vinl_dc", "Tslew_ac"};

constexpr bool isOfPair(std::string_view name) { return std::ranges::find(kDifferential, name) != kDifferential.end(); }

constexpr std::size_t placeOf(std::string_view name) { return rowPlace(kRows, name, &ThresholdRow::name); }

bool has(const RcvTh& thresholds, const Field& field) {
    if (const auto* const value = std::get_if<ValueField>(&field)) return (thresholds.**value).has_value();
    return thresholds.*std::get<WordField>(field) != ReferenceSupply::notGiven;
}

bool isGiven(const RcvTh& thresholds, std::string_view name) { return has(thresholds, kRows[placeOf(name)].field); }

/// True when a line for it was there; one that was refused has been reported.
bool hasLine(const RcvTh& thresholds, std::string_view name) {
    const std::size_t place = placeOf(name);
    return has(thresholds, kRows[place].field) || thresholds.refused.has(place);
}

bool readValue(Run& run, std::string_view line, const ThresholdRow& row, std::optional<double>& value) {
    if (!readValueLine(run, line, kValueMessages, {row.name, "Receiver Thresholds", row.name}, value)) return false;
    if (row.above_zero && *value <= 0.0) errorAtLine(run.diagnostics, 3214, row.name);
    return true;
}

bool readSupply(Run& run, std::string_view rest, const ThresholdRow& row, ReferenceSupply& supply) {
    const std::optional<std::string_view> word = readWordLine(run, rest, row.name, kWordMessages);
    if (!word) return false;
    const auto known = readEnumeration(run.diagnostics, kSupplies, row.name, *word, kEnumerationMessages);
    supply = known.value_or(ReferenceSupply::notGiven);
    return known.has_value();
}

void requireAll(Run& run, const RcvTh& thresholds, std::string_view model, std::span<const std::string_view> names) {
    for (const std::string_view name : names) {
        if (!hasLine(thresholds, name)) error(run.diagnostics, 3216, model, name);
    }
}

void checkSensitivity(Run& run, const RcvTh& thresholds, std::string_view model) {
    constexpr std::string_view kSensitivity = "Threshold_sensitivity";
    if (isGiven(thresholds, kSensitivity) && !hasLine(thresholds, kReferenceName)) error(run.diagnostics, 3217, model);
    if (isGiven(thresholds, kReferenceName) && !hasLine(thresholds, kSensitivity)) {
        warning(run.diagnostics, 3218, model);
    }
}

void checkOrder(Run& run, const RcvTh& thresholds, std::string_view model) {
    const auto above = [](const std::optional<double>& a, const std::optional<double>& b) { return a && b && *a > *b; };
    const auto wrong = [&](std::string_view first, std::string_view second) {
        warning(run.diagnostics, 3220, model, first, second);
    };
    const RcvTh& t = thresholds;
    if (above(t.vth_min, t.vth) || above(t.vth, t.vth_max)) warning(run.diagnostics, 3219, model);
    if (above(t.vinh_dc, t.vinh_ac)) wrong("Vinh_ac", "Vinh_dc");
    if (above(t.vinl_ac, t.vinl_dc)) wrong("Vinl_ac", "Vinl_dc");
    if (t.vinh_dc && t.vinl_dc && *t.vinh_dc <= *t.vinl_dc) wrong("Vinh_dc", "Vinl_dc");
    if (above(t.vcross_low, t.vcross_high)) wrong("Vcross_low", "Vcross_high");
    if (t.vdiff_ac && t.vdiff_dc && std::abs(*t.vdiff_ac) < std::abs(*t.vdiff_dc)) wrong("Vdiff_ac", "Vdiff_dc");
}

void checkThresholds(Run& run, const RcvTh& thresholds, std::string_view model) {
    const bool given =
        std::ranges::any_of(kRows, [&thresholds](const ThresholdRow& row) { return has(thresholds, row.field); });
    if (!given && !thresholds.refused.any()) warning(run.diagnostics, 3215, model);
    // Either input of a differential pair may give thresholds of its own, but it need not.
    // Of a pair that was begun only with lines that were refused nothing is asked.
    const auto given_one = [&](std::string_view name) { return isGiven(thresholds, name); };
    const auto line_of_one = [&](std::string_view name) { return hasLine(thresholds, name); };
    const auto begins_single_ended = [&](const ThresholdRow& row) {
        return !isOfPair(row.name) && row.name != kReferenceName && has(thresholds, row.field);
    };
    if (std::ranges::any_of(kDifferential, given_one)) {
        requireAll(run, thresholds, model, kDifferential);
    } else if (std::ranges::any_of(kRows, begins_single_ended) || std::ranges::none_of(kDifferential, line_of_one)) {
        requireAll(run, thresholds, model, kSingleEnded);
    }
    checkSensitivity(run, thresholds, model);
    checkOrder(run, thresholds, model);
}

} // namespace

void openRcvTh(Run& run, Mdl& model, std::string_view text) {
    if (model.receiver_thresholds) errorAtLine(run.diagnostics, 3201);
    model.receiver_thresholds = std::make_unique<RcvTh>();
    expectNoText(run, text, "Receiver Thresholds", 3204);
}

void rcvThLine(Run& run, Mdl& model, std::string_view text) {
    std::string_view rest = text;
    const ThresholdRow* const row = takeSubparameter(run, kRows, rest, 3206);
    if (row == nullptr) return;
    RcvTh& thresholds = *model.receiver_thresholds;
    if (has(thresholds, row->field)) {
        errorAtLine(run.diagnostics, 3207, row->name, model.name);
        return;
    }
    const auto* const value = std::get_if<ValueField>(&row->field);
    const bool read = value != nullptr ? readValue(run, text, *row, thresholds.**value)
                                       : readSupply(run, rest, *row, thresholds.*std::get<WordField>(row->field));
    if (!read) thresholds.refused.add(placeOf(row->name));
}

void checkReferenceSupply(Run& run, const Mdl& model) {
    if (!model.receiver_thresholds) return;
    const auto* const row =
        std::ranges::find(kSupplyKeywords, model.receiver_thresholds->reference_supply, &SupplyKeyword::supply);
    if (row == kSupplyKeywords.end() || model.*row->reference) return;
    error(run.diagnostics, row->missing, model.name);
}

void checkRcvThs(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const Mdl& model : root->models.newestFirst()) {
        if (model.receiver_thresholds) checkThresholds(run, *model.receiver_thresholds, model.name);
    }
}

} // namespace kestrel
