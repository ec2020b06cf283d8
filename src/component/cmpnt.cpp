#include "component/cmpnt.hpp"

#include "reader/items.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

/// A subparameter line of "[Component]".
struct LocationLine {
    std::string_view name;
    Location Cmpnt::*value;
};

constexpr std::array<LocationLine, 2> kLocationLines{{
    {"Si_location", &Cmpnt::si_location},
    {"Timing_location", &Cmpnt::timing_location},
}};

constexpr std::array<EnumerationRow<Location>, 2> kLocations{{{"Pin", Location::pin}, {"Die", Location::die}}};
constexpr EnumerationMessages kLocationMessages{512, 520};

void readName(Context& context, CmpntState& state, Cmpnt& component, std::string_view text) {
    setTextOnce(context, component.name, text, longNameLimit(context.parse.version), "Component");
    if (std::ranges::any_of(component.name.view(), isSpace)) warningAtLine(context.diagnostics, 513, component.name);
    checkNotReserved(context.diagnostics, component.name);
    state.list->enterNewest(context.names);
}

/// Reads "Si_location Pin" or "Timing_location = Die"; the "=" may be left out and is not counted.
void readLocation(Context& context, Cmpnt& component, const LocationLine& row, std::string_view text) {
    constexpr int kItems = 2;
    Location& value = component.*row.value;
    if (value != Location::notGiven) {
        errorAtLine(context.diagnostics, 521, row.name, component.name);
        return;
    }
    const ItemList items = splitItems(context, text, kItems + 1, '=');
    const int sign = items[1] == "=" ? 1 : 0;
    if (items.count - sign != kItems) errorAtLine(context.diagnostics, 522, items.count - sign, row.name, kItems);
    if (!items.has(1 + sign)) return;
    value = readEnumeration(context.diagnostics, kLocations, row.name, items[1 + sign], kLocationMessages)
                .value_or(Location::notGiven);
}

/// Data under "[Component]" itself: the two locations, which came with version 3.
void componentLine(Context& context, Cmpnt& component, std::string_view text) {
    std::string_view rest = text;
    const LocationLine* const row = rowOf(kLocationLines, takeItem(context, rest, '='), &LocationLine::name);
    if (context.parse.version < IbisVersion::v3 || row == nullptr) {
        errorAtLine(context.diagnostics, 506);
    } else {
        readLocation(context, component, *row, text);
    }
}

void readManufacturer(Context& context, CmpntState& state, Cmpnt& component, std::string_view text) {
    setTextOnce(context.diagnostics, component.manufacturer, text, longNameLimit(context.parse.version),
                "Manufacturer");
    state.manufacturer_seen = true;
}

void readPackageModel(Context& context, CmpntState& state, Cmpnt& component, std::string_view text) {
    setTextOnce(context.diagnostics, component.package_model, text, longNameLimit(context.parse.version),
                "Package_Model");
    checkNotReserved(context.diagnostics, component.package_model);
    state.package_model_seen = true;
}

/// Data under a keyword that takes none.
template <CheckedMessage<> Code> void noData(Context& context, std::string_view /*text*/) {
    errorAtLine(context.diagnostics, Code);
}

void openPackage(Context& context, Cmpnt& component, std::string_view text) {
    if (component.package != nullptr) {
        errorAtLine(context.diagnostics, 517);
        return;
    }
    if (!text.empty()) errorAtLine(context.diagnostics, 518);
    component.package = std::make_unique<Pkg>();
    component.package->line = context.parse.line;
}

/// Hands a keyword line to the module that begins a part, a data line to the one that reads it and the end of the lines
/// to the one that checks it. Those that report it get the component's name.
template <auto Part, auto Open> void openPart(Context& context, Cmpnt& component, std::string_view text) {
    Open(context, component.*Part, text);
}

template <auto Part, auto Read> void readPart(Context& context, Cmpnt& component, std::string_view text) {
    auto& part = *(component.*Part);
    if constexpr (std::is_invocable_v<decltype(Read), Context&, decltype(part), std::string_view>) {
        Read(context, part, text);
    } else {
        Read(context, part, component.name, text);
    }
}

template <auto Part, auto Close> void closePart(Context& context, Cmpnt& component) {
    Close(context, *(component.*Part), component.name);
}

/// A table that the first of its keyword lines makes.
template <auto Part, auto Header> void openTable(Context& context, Cmpnt& component, std::string_view text) {
    auto& table = component.*Part;
    if (table == nullptr) table = std::make_unique<std::remove_reference_t<decltype(*table)>>();
    Header(context, *table, text);
}

void readPin(Context& context, Cmpnt& component, std::string_view text) {
    pinLine(context, component.pins, component.name, text);
}

void readSwitchGroups(Context& context, CmpntState& state, Cmpnt& component, std::string_view text) {
    switchGroupsLine(context, state.switches, *component.switch_groups, text);
}

/// What a keyword interrupts is over; the dispatcher has reported an unfinished state.
void closeSwitchGroups(Context& /*context*/, CmpntState& state) { state.switches = SwitchReader(); }

void openNodeDeclarations(Context& context, Cmpnt& component, std::string_view text) {
    openNodes(context, component.nodes, !component.circuit_calls.empty(), text);
}

void readCall(Context& context, Cmpnt& component, std::string_view text) {
    circuitCallLine(context, component.circuit_calls.back(), text);
}

void closeCall(Context& context, const Cmpnt& component) {
    closeCircuitCall(context, component.circuit_calls.back(), component.name);
}

void closeEmi(Context& context, Cmpnt& component) {
    checkDomainPercentages(context, component.emi->pin_domains, component.name);
}

/// The EMI record while its block is open; its tables have no other place.
CmpntEmi* emiBeingRead(const CmpntState& state) {
    return state.open_section == KeywordCode::beginEmiComponent ? state.current->emi.get() : nullptr;
}

template <auto Table, auto Header> void openEmiTable(Context& context, CmpntState& state, std::string_view text) {
    CmpntEmi* const emi = emiBeingRead(state);
    Header(context, emi == nullptr ? nullptr : &(emi->*Table), text);
}

void readEmiPin(Context& context, CmpntState& state, std::string_view text) {
    if (CmpntEmi* const emi = emiBeingRead(state)) pinEmiLine(context, emi->pins, state.current->pins, text);
}

void readEmiDomain(Context& context, CmpntState& state, std::string_view text) {
    if (CmpntEmi* const emi = emiBeingRead(state)) pinDomainEmiLine(context, emi->pin_domains, text);
}

using K = KeywordCode;

constexpr auto kSections = sectionTable<CmpntState>({
    section<CmpntState, readName, componentLine>(K::component),
    section<CmpntState, readManufacturer, noData<507>>(K::manufacturer),
    section<CmpntState, readPackageModel, noData<508>>(K::packageModel),
    section<CmpntState, openPackage, readPart<&Cmpnt::package, pkgLine>>(K::package),
    section<CmpntState, openPart<&Cmpnt::pins, pinHeader>, readPin>(K::pin),
    section<CmpntState, openTable<&Cmpnt::pin_mapping, pinMapHeader>, readPart<&Cmpnt::pin_mapping, pinMapLine>>(
        K::pinMapping),
    section<CmpntState, openTable<&Cmpnt::diff_pins, diffPinHeader>, readPart<&Cmpnt::diff_pins, diffPinLine>>(
        K::diffPin),
    section<CmpntState, openTable<&Cmpnt::series_pins, seriesPinHeader>, readPart<&Cmpnt::series_pins, seriesPinLine>>(
        K::seriesPinMapping),
    section<CmpntState, openPart<&Cmpnt::switch_groups, openSwitchGroups>, readSwitchGroups, closeSwitchGroups>(
        K::seriesSwitchGroups),
    blockSection<CmpntState, openPart<&Cmpnt::alternates, openAlternates>, readPart<&Cmpnt::alternates, alternateLine>,
                 closePart<&Cmpnt::alternates, closeAlternates>>(K::alternatePackageModels,
                                                                 K::endAlternatePackageModels, kAlternatesEnd),
    blockSection<CmpntState, openNodeDeclarations, readPart<&Cmpnt::nodes, nodeLine>>(
        K::nodeDeclarations, K::endNodeDeclarations, kNodesEnd),
    blockSection<CmpntState, openPart<&Cmpnt::circuit_calls, openCircuitCall>, readCall, closeCall>(
        K::circuitCall, K::endCircuitCall, kCircuitCallEnd),
    blockSection<CmpntState, openPart<&Cmpnt::emi, openCmpntEmi>, readPart<&Cmpnt::emi, cmpntEmiLine>, closeEmi>(
        K::beginEmiComponent, K::endEmiComponent, kCmpntEmiEnd),
    section<CmpntState, openEmiTable<&CmpntEmi::pins, pinEmiHeader>, readEmiPin>(K::pinEmi),
    section<CmpntState, openEmiTable<&CmpntEmi::pin_domains, pinDomainEmiHeader>, readEmiDomain>(K::pinDomainEmi),
});

void closeCmpnt(Context& context, CmpntState& state, Cmpnt& component) {
    if (!state.manufacturer_seen) error(context.diagnostics, 514, component.name);
    if (component.package != nullptr) {
        checkPkg(context, *component.package, component.name);
    } else {
        error(context.diagnostics, 519, component.name);
    }
    if (component.alternates != nullptr && !state.package_model_seen) error(context.diagnostics, 537, component.name);
}

} // namespace

const RecordModule<CmpntState> kCmpnt{
    .opens = K::component,
    .find = [](K code) { return kSections.find(code); },
    .close = closeCmpnt,
    .orphan = reportOrphan<502, 503>,
    .behind_end = [](Context& context, const BlockEnd& end) { errorAtLine(context.diagnostics, 509, end.name); },
    .impossible = [](Context& context, LineKind) { programBugHereAtLine(context.diagnostics, 505); },
};

} // namespace kestrel
