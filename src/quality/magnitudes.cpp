#include "quality/magnitudes.hpp"

#include "base/number_index.hpp"
#include "base/rows.hpp"
#include "component/cmpnt.hpp"
#include "quality/advised.hpp"
#include "quality/named_few.hpp"
#include "quality/number_text.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

namespace kestrel {

namespace {

constexpr double kLeastDieCapacitance = 10e-15;
constexpr double kMostDieCapacitance = 100e-12;

/// A value of packages and pins: how it is called, its unit, and what real ones stay below.
struct PackageValue {
    std::string_view name;
    std::string_view pin_name;
    GivenRange Pkg::*range;
    Cell Pin::*cell;
    std::string_view unit;
    double most;
};
constexpr std::array<PackageValue, 3> kPackageValues{{
    {"R_pkg", "R_pin", &Pkg::r_pkg, &Pin::r_pin, "ohm", 10.0},
    {"L_pkg", "L_pin", &Pkg::l_pkg, &Pin::l_pin, "H", 50e-9},
    {"C_pkg", "C_pin", &Pkg::c_pkg, &Pin::c_pin, "F", 50e-12},
}};

/// A range of models whose corners have an order.
struct OrderedRange {
    MdlRange which;
    std::string_view name;
    std::string_view unit;
    bool is_voltage;
};
constexpr std::array<OrderedRange, 9> kOrderedRanges{{
    {MdlRange::voltageRange, "[Voltage Range]", "V", true},
    {MdlRange::pullupReference, "[Pullup Reference]", "V", true},
    {MdlRange::pulldownReference, "[Pulldown Reference]", "V", true},
    {MdlRange::powerClampReference, "[POWER Clamp Reference]", "V", true},
    {MdlRange::gndClampReference, "[GND Clamp Reference]", "V", true},
    {MdlRange::rgnd, "[Rgnd]", "ohm", false},
    {MdlRange::rpower, "[Rpower]", "ohm", false},
    {MdlRange::rac, "[Rac]", "ohm", false},
    {MdlRange::cac, "[Cac]", "F", false},
}};

/// True when the minimum is above the typical value or the maximum below it.
bool isOutOfOrder(const Rng& range) {
    if (!range.typ().isNumber()) return false;
    const double typ = range.typ().value();
    return (range.min().isNumber() && range.min().value() > typ) ||
           (range.max().isNumber() && range.max().value() < typ);
}

std::string cellText(const Cell& cell, std::string_view unit) {
    return cell.isNumber() ? std::string(NumberText(cell.value(), unit)) : std::string("NA");
}

void adviseOnOrder(AdvicePlace place, std::string_view name, std::string_view unit, const Rng& range,
                   AdviceList& list) {
    list.add(place, 104, name, cellText(range.typ(), unit), cellText(range.min(), unit), cellText(range.max(), unit));
}

/// The typical capacitance of the structures of a model; nothing when none is given.
std::optional<double> sumOfParts(const MdlValues& values) {
    std::optional<double> sum;
    for (const GivenRange* const part :
         {&values.c_comp_pullup, &values.c_comp_pulldown, &values.c_comp_power_clamp, &values.c_comp_gnd_clamp}) {
        if (*part && (*part)->typ().isNumber()) sum = sum.value_or(0.0) + (*part)->typ().value();
    }
    return sum;
}

bool isNoDieCapacitance(double farads) {
    return farads != 0.0 && !(kLeastDieCapacitance <= farads && farads <= kMostDieCapacitance);
}

void adviseOnPackageOrder(const Cmpnt& component, const Pkg& package, AdviceList& list) {
    for (const PackageValue& value : kPackageValues) {
        const GivenRange& range = package.*value.range;
        // A typical value outside the others was reported with its line.
        if (!range || isTypOutside(*range) || !isOutOfOrder(*range)) continue;
        adviseOnOrder(adviceAt(component, package.line), value.name, value.unit, *range, list);
    }
}

void adviseOnRangeOrder(const Mdl& model, AdviceList& list) {
    for (const OrderedRange& row : kOrderedRanges) {
        const Rng* const range = findRange(model, row.which);
        if (range == nullptr) continue;
        // The larger supply may be the more negative one.
        const bool any_order = row.is_voltage && anyBelowZero(*range);
        if (any_order ? isTypOutside(*range) : isOutOfOrder(*range))
            adviseOnOrder(adviceAt(model), row.name, row.unit, *range, list);
    }
}

void adviseOnTypeAndThresholds(const Mdl& model, AdviceList& list) {
    const MdlValues& values = *model.values;
    if (kMeasuredBothWays.has(model.type()) && values.vmeas) {
        if (values.vinl && *values.vinl >= *values.vmeas) list.addMessage(adviceAt(model), 109, 182, model.name);
        if (values.vinh && *values.vinh <= *values.vmeas) list.addMessage(adviceAt(model), 109, 183, model.name);
    }
    if (isDifferential(model) && !model.external_model)
        list.addMessage(adviceAt(model), 109, 1829, model.name, modelTypeText(model.type()));
}

/// Pins of differential models that are in no pair, the first of each model.
void adviseOnLonePins(const AdvisedFile& file, const Cmpnt& component, AdviceList& list) {
    NumberIndex told; // by the numbers of the models' names
    std::size_t place = 0;
    for (const Pin& pin : component.pins) {
        const std::size_t at = place++;
        const Mdl* const model = file.root.models.find(pin.model_name);
        if (model == nullptr || !isDifferential(*model)) continue;
        if (isUnmodeledPinName(pin.model_name) || isModelReported(component.pins, pin)) continue;
        if (component.diff_pins != nullptr && isInDiffPin(*component.diff_pins, pin.name)) continue;
        if (std::exchange(told.at(pin.model_name.number()), 1) != 0) continue;
        list.addMessage(adviceAt(component, component.pins.lines.of(at)), 109, 614, pin.model_name, pin.name,
                        component.name);
    }
}

} // namespace

void checkDieCapacitance(const AdvisedModel& advised, AdviceList& list) {
    const MdlValues& values = *advised.model.values;
    if (values.c_comp && values.c_comp->typ().isNumber()) {
        const double whole = values.c_comp->typ().value();
        if (isNoDieCapacitance(whole)) list.add(adviceAt(advised.model), 101, farads(whole));
    } else if (const std::optional<double> sum = sumOfParts(values); sum && isNoDieCapacitance(*sum)) {
        list.add(adviceAt(advised.model), {101, 1}, farads(*sum));
    }
}

void checkPackageValues(const AdvisedFile& file, AdviceList& list) {
    for (const Cmpnt& component : file.root.components.newestFirst()) {
        const Pkg* const package = component.package.get();
        if (package == nullptr) continue;
        for (const PackageValue& value : kPackageValues) {
            const GivenRange& range = package->*value.range;
            if (!range || range->typ().value() <= value.most) continue;
            list.add(adviceAt(component, package->line), 102, value.name, NumberText(range->typ().value(), value.unit),
                     NumberText(value.most, value.unit));
        }
    }
}

void checkPinValues(const AdvisedFile& file, AdviceList& list) {
    for (const Cmpnt& component : file.root.components.newestFirst()) {
        NamedFew large;
        std::uint32_t line = 0;
        std::size_t place = 0;
        for (const Pin& pin : component.pins) {
            for (const PackageValue& value : kPackageValues) {
                const Cell& cell = pin.*value.cell;
                if (cell.value() <= value.most) continue;
                if (large.count() == 0) line = component.pins.lines.of(place);
                if (!large.namesNext()) {
                    large.addUnnamed();
                    continue;
                }
                std::string text(value.pin_name);
                text.append(" of pin ").append(pin.name.view()).append(" is ");
                large.add(text.append(NumberText(cell.value(), value.unit)));
            }
            ++place;
        }
        if (large.count() == 0) continue;
        const auto most = [](std::size_t i) { return NumberText(kPackageValues[i].most, kPackageValues[i].unit); };
        list.add(adviceAt(component, line), 103, large.text(), most(0), most(1), most(2));
    }
}

void checkOrder(const AdvisedFile& file, AdviceList& list) {
    for (const Cmpnt& component : file.root.components.newestFirst())
        if (component.package != nullptr) adviseOnPackageOrder(component, *component.package, list);
    for (const Mdl* const model : file.models)
        adviseOnRangeOrder(*model, list);
}

void checkTemperatures(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kColdest = -100.0;
    constexpr double kHottest = 200.0;
    constexpr std::array<std::string_view, kCornerCount> kNames{"typ", "min", "max"};
    const Rng* const range = findRange(advised.model, MdlRange::temperatureRange);
    if (range == nullptr) return;
    for (const Corner corner : kCorners) {
        const Cell& cell = (*range)[corner];
        if (!cell.isNumber() || (kColdest <= cell.value() && cell.value() <= kHottest)) continue;
        list.add(adviceAt(advised.model), 105, kNames[placeOf(corner)], plainNumber(cell.value()),
                 plainNumber(kColdest), plainNumber(kHottest));
        return;
    }
    if (!isTypOutside(*range)) return;
    list.add(adviceAt(advised.model), {105, 1}, plainNumber(range->typ().value()), plainNumber(range->min().value()),
             plainNumber(range->max().value()));
}

void checkSupply(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLeast = 0.4;
    constexpr double kMost = 60.0;
    constexpr ModelTypeSet kEclTypes{ModelType::inputEcl, ModelType::outputEcl, ModelType::ioEcl,
                                     ModelType::threeStateEcl};
    if (kEclTypes.has(advised.model.type())) return;
    const References& supplies = advised.physics.references();
    GivenValue supply;
    if (supplies.pullup && supplies.pulldown) {
        supply = *supplies.pullup - *supplies.pulldown;
    } else if (const Rng* const range = findRange(advised.model, MdlRange::voltageRange)) {
        if (range->typ().isNumber()) supply = range->typ().value();
    }
    if (!supply || (kLeast <= *supply && *supply <= kMost)) return;
    list.add(adviceAt(advised.model), 106, volts(*supply), volts(kLeast), volts(kMost));
}

void checkThresholdOrder(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kSlack = 0.1 + 1e-9; // and what rounding makes
    const TypicalValues values = typicalValuesOf(advised.model);
    const AdvicePlace place = adviceAt(advised.model);
    if (values.vinl && values.vinh && *values.vinl >= *values.vinh) {
        list.add(place, 107, volts(*values.vinl), volts(*values.vinh));
        return;
    }
    const References& supplies = advised.physics.references();
    if (!supplies.vcc || !supplies.gnd_clamp || !supplies.power_clamp) return;
    const double bottom = *supplies.gnd_clamp;
    const double top = *supplies.power_clamp;
    const double slack = kSlack * *supplies.vcc;
    const auto is_outside = [&](const GivenValue& value) {
        return value && bottom <= top && (*value < bottom - slack || *value > top + slack);
    };
    const bool low = is_outside(values.vinl);
    const bool high = is_outside(values.vinh);
    if (low && high) {
        list.add(place, {107, 2}, volts(*values.vinl), volts(*values.vinh), volts(bottom), volts(top));
    } else if (low || high) {
        const std::string_view name = low ? "Vinl" : "Vinh";
        list.add(place, {107, 1}, name, volts(low ? *values.vinl : *values.vinh), volts(bottom), volts(top));
    }
}

void checkMeasuredLevel(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kRounding = 1e-6;
    const ModelPhysics& physics = advised.physics;
    const TypicalValues values = typicalValuesOf(advised.model);
    if (!physics.isDriver() || !values.vmeas || !physics.vcc()) return;
    const bool has_load = values.rref && values.vref;
    if (!has_load && !physics.isPushPull()) return;
    const auto level_of = [&](DriveState state) {
        return has_load ? physics.level(state, Corner::typ, {*values.rref, *values.vref})
                        : physics.levelWithoutLoad(state);
    };
    const std::optional<double> low = level_of(DriveState::low);
    const std::optional<double> high = level_of(DriveState::high);
    if (!low || !high) return;
    const auto [bottom, top] = std::minmax(*low, *high);
    if (bottom - kRounding <= *values.vmeas && *values.vmeas <= top + kRounding) return;
    list.add(adviceAt(advised.model), 108, volts(*values.vmeas), level(bottom), level(top));
}

void checkCautions(const AdvisedFile& file, AdviceList& list) {
    for (const Mdl* const model : file.models)
        adviseOnTypeAndThresholds(*model, list);
    if (std::ranges::none_of(file.models, [](const Mdl* model) { return isDifferential(*model); })) return;
    for (const Cmpnt& component : file.root.components.newestFirst())
        adviseOnLonePins(file, component, list);
}

} // namespace kestrel
