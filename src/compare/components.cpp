#include "compare/components.hpp"

#include "compare/match.hpp"
#include "component/cmpnt.hpp"

#include <string>
#include <utility>

namespace kestrel {

namespace {

constexpr FieldRow<Pkg, GivenRange> kPackage[] = {
    {"R_pkg", Unit::ohms, &Pkg::r_pkg},
    {"L_pkg", Unit::henries, &Pkg::l_pkg},
    {"C_pkg", Unit::farads, &Pkg::c_pkg},
};

constexpr FieldRow<CmpntEmi, GivenValue> kEmi[] = {
    {"C_Heatsink_gnd", Unit::farads, &CmpntEmi::c_heatsink_gnd},
    {"C_Heatsink_float", Unit::farads, &CmpntEmi::c_heatsink_float},
};

std::string_view locationWord(Location location) {
    constexpr std::array<std::string_view, 3> kWords{"", "Pin", "Die"};
    return kWords[static_cast<std::size_t>(location)];
}

std::string_view domainWord(EmiDomain domain) {
    const auto* const row = rowOf(kEmiDomains, domain, &EnumerationRow<EmiDomain>::code);
    return row == nullptr ? std::string_view() : row->text;
}

/// What is reported while it lasts is about a pin of the component.
class AboutPin {
public:
    AboutPin(Comparison& comparison, std::string_view pin) : comparison_(comparison) { comparison.record.pin = pin; }
    AboutPin(const AboutPin&) = delete;
    AboutPin& operator=(const AboutPin&) = delete;
    ~AboutPin() { comparison_.record.pin = {}; }

private:
    Comparison& comparison_;
};

/// Matches rows that each belong to a pin, which `pin_of` names; `both` compares two of them.
template <class Rows, class PinOf, class Both>
void comparePinRows(Comparison& comparison, const FieldName& field, const Rows& was, const Rows& is, PinOf pin_of,
                    Both both) {
    matchRows(
        was, is, pin_of, pin_of,
        [&](const auto& before, const auto& now) {
            const AboutPin about(comparison, pin_of(now));
            both(before, now);
        },
        [&](const auto& row, bool is_new) {
            const AboutPin about(comparison, pin_of(row));
            comparePresence(comparison, field, !is_new, is_new);
        });
}

/// The part of a component, or an empty one.
template <class Part> const Part& partOr(const std::unique_ptr<Part>& part, const Part& empty) {
    return part ? *part : empty;
}

/// Compares parts that both components have.
template <class Part>
void compareParts(Comparison& comparison, std::string_view keyword, const std::unique_ptr<Part>& was,
                  const std::unique_ptr<Part>& is, void (*compare)(Comparison&, const Part&, const Part&)) {
    if (!was && !is) return;
    if (comparePresence(comparison, keyword, was != nullptr, is != nullptr)) compare(comparison, *was, *is);
}

void comparePins(Comparison& comparison, const PinList& was, const PinList& is) {
    comparePinRows(
        comparison, "", was.rows(), is.rows(), [](const Pin& pin) { return pin.name.view(); },
        [&](const Pin& before, const Pin& now) {
            compareText(comparison, "signal", before.signal_name, now.signal_name);
            compareModelName(comparison, "model", before.model_name, now.model_name);
            compareCell(comparison, "R_pin", Unit::ohms, before.r_pin, now.r_pin);
            compareCell(comparison, "L_pin", Unit::henries, before.l_pin, now.l_pin);
            compareCell(comparison, "C_pin", Unit::farads, before.c_pin, now.c_pin);
        });
}

void comparePinMappings(Comparison& comparison, const PinMapping& was, const PinMapping& is) {
    constexpr std::string_view kGroup = "[Pin Mapping]";
    constexpr std::array<std::string_view, kBusColumns> kNames{"pulldown_ref", "pullup_ref", "gnd_clamp_ref",
                                                               "power_clamp_ref", "ext_ref"};
    comparePinRows(
        comparison, kGroup, was.rows.rows(), is.rows.rows(),
        [](const PinMap& row) { return std::string_view(row.pin); },
        [&](const PinMap& before, const PinMap& now) {
            for (std::size_t i = 0; i < kBusColumns; ++i)
                compareText(comparison, {kGroup, kNames[i]}, before.labels[i], now.labels[i]);
        });
}

void compareDiffPins(Comparison& comparison, const DiffPins& was, const DiffPins& is) {
    constexpr std::string_view kGroup = "[Diff Pin]";
    comparePinRows(
        comparison, kGroup, was.rows.rows(), is.rows.rows(),
        [](const DifPin& row) { return std::string_view(row.pin); },
        [&](const DifPin& before, const DifPin& now) {
            compareText(comparison, {kGroup, "inv_pin"}, before.inv_pin, now.inv_pin);
            compareCell(comparison, {kGroup, "vdiff"}, Unit::volts, before.vdiff, now.vdiff);
            compareRange(comparison, {kGroup, "tdelay"}, Unit::seconds, before.tdelay, now.tdelay);
        });
}

void compareSeriesPins(Comparison& comparison, const SeriesPins& was, const SeriesPins& is) {
    const auto name_of = [](const SPin& row) {
        std::string name("[Series Pin Mapping] ");
        name.append(row.pin_1.view()).append(" to ").append(row.pin_2.view());
        if (!row.group.empty()) name.append(" of ").append(row.group.view());
        return name;
    };
    // A row without pins was reported and dropped.
    const auto kept = [](const Rows<SPin>& rows) {
        std::vector<SPin> list;
        for (const SPin& row : rows)
            if (!row.pin_1.empty()) list.push_back(row);
        return list;
    };
    matchRows(
        kept(was.rows), kept(is.rows), name_of, name_of,
        [&](const SPin& before, const SPin& now) {
            if (before.model_name.view() == now.model_name.view()) return;
            compareModelName(comparison, {name_of(now), "model"}, before.model_name, now.model_name);
        },
        [&](const SPin& row, bool is_new) { comparePresence(comparison, name_of(row), !is_new, is_new); });
}

/// A state of switches as a text: "on: a b off: c".
std::string textOf(const SwitchState& state) {
    std::string text;
    for (const auto& [word, groups] : {std::pair("on:", &state.on), std::pair("off:", &state.off)}) {
        if (groups->empty()) continue;
        text.append(text.empty() ? "" : " ").append(word);
        for (const std::string& group : *groups)
            text.append(" ").append(group);
    }
    return text;
}

void compareSwitches(Comparison& comparison, const SwitchGroups& was, const SwitchGroups& is) {
    const std::size_t count = std::max(was.states.size(), is.states.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::string before = i < was.states.size() ? textOf(was.states[i]) : std::string();
        const std::string now = i < is.states.size() ? textOf(is.states[i]) : std::string();
        if (before != now)
            compareText(comparison, {"[Series Switch Groups]", "state", std::to_string(i + 1)},
                        comparison.changes.keep(before), comparison.changes.keep(now));
    }
}

/// A circuit call by its circuit and its pins.
std::string nameOf(const CircuitCall& call) {
    std::string name("[Circuit Call] ");
    name.append(call.circuit);
    for (const std::string& pin : call.pins)
        if (!pin.empty()) name.append(" at ").append(pin);
    return name;
}

void compareCircuitCalls(Comparison& comparison, const std::vector<CircuitCall>& was,
                         const std::vector<CircuitCall>& is) {
    const auto name_of = [](const CircuitCall& call) { return nameOf(call); };
    const auto port_of = [](const PortMap& row) { return std::string_view(row.port); };
    matchRows(
        was, is, name_of, name_of,
        [&](const CircuitCall& before, const CircuitCall& now) {
            matchRows(
                before.port_map, now.port_map, port_of, port_of,
                [&](const PortMap& old_row, const PortMap& new_row) {
                    if (old_row.node != new_row.node)
                        compareText(comparison, {nameOf(now), "port", new_row.port}, old_row.node, new_row.node);
                },
                [&](const PortMap& row, bool is_new) {
                    comparePresence(comparison, {nameOf(now), "port", row.port}, !is_new, is_new);
                });
        },
        [&](const CircuitCall& call, bool is_new) { comparePresence(comparison, nameOf(call), !is_new, is_new); });
}

void compareEmi(Comparison& comparison, const CmpntEmi& was, const CmpntEmi& is) {
    constexpr std::string_view kGroup = "[Begin EMI Component]";
    compareWord(comparison, {kGroup, "Domain"}, domainWord(was.domain), domainWord(is.domain), "Digital");
    const auto cpd_of = [](const CmpntEmi& emi) {
        return emi.cpd_range || !emi.cpd ? emi.cpd_range : GivenRange(Rng{{Cell(*emi.cpd)}});
    };
    compareRange(comparison, {kGroup, "Cpd"}, Unit::farads, cpd_of(was), cpd_of(is));
    compareFields(comparison, kGroup, kEmi, was, is);
    comparePinRows(
        comparison, "[Pin EMI]", was.pins.rows.rows(), is.pins.rows.rows(),
        [](const PinEmi& row) { return std::string_view(row.pin); },
        [&](const PinEmi& before, const PinEmi& now) {
            compareText(comparison, {"[Pin EMI]", "domain_name"}, before.domain, now.domain);
            compareValue(comparison, {"[Pin EMI]", "clock_div"}, Unit::none, before.clock_div, now.clock_div);
        });
    const auto name_of = [](const PinDomainEmi& row) { return std::string_view(row.name); };
    matchRows(
        was.pin_domains.rows.rows(), is.pin_domains.rows.rows(), name_of, name_of,
        [&](const PinDomainEmi& before, const PinDomainEmi& now) {
            compareValue(comparison, {"[Pin Domain EMI]", now.name}, Unit::none, before.percentage, now.percentage);
        },
        [&](const PinDomainEmi& row, bool is_new) {
            comparePresence(comparison, {"[Pin Domain EMI]", row.name}, !is_new, is_new);
        });
}

} // namespace

void compareComponents(Comparison& comparison, const Cmpnt& was, const Cmpnt& is) {
    compareText(comparison, "[Manufacturer]", was.manufacturer, is.manufacturer);
    compareText(comparison, "[Package Model]", was.package_model, is.package_model);
    compareWord(comparison, "Si_location", locationWord(was.si_location), locationWord(is.si_location), "Pin");
    compareWord(comparison, "Timing_location", locationWord(was.timing_location), locationWord(is.timing_location),
                "Pin");
    compareFields(comparison, {}, kPackage, partOr(was.package, {}), partOr(is.package, {}));
    comparePins(comparison, was.pins, is.pins);
    compareParts(comparison, "[Pin Mapping]", was.pin_mapping, is.pin_mapping, comparePinMappings);
    compareParts(comparison, "[Diff Pin]", was.diff_pins, is.diff_pins, compareDiffPins);
    compareParts(comparison, "[Series Pin Mapping]", was.series_pins, is.series_pins, compareSeriesPins);
    compareParts(comparison, "[Series Switch Groups]", was.switch_groups, is.switch_groups, compareSwitches);
    if (was.alternates || is.alternates)
        compareNames(comparison, "[Alternate Package Models]", partOr(was.alternates, {}).models.names,
                     partOr(is.alternates, {}).models.names);
    if (was.nodes || is.nodes)
        compareNames(comparison, "[Node Declarations]", partOr(was.nodes, {}).names, partOr(is.nodes, {}).names);
    compareCircuitCalls(comparison, was.circuit_calls, is.circuit_calls);
    compareParts(comparison, "[Begin EMI Component]", was.emi, is.emi, compareEmi);
}

} // namespace kestrel
