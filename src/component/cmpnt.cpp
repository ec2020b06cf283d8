#include "component/cmpnt.hpp"

#include "component/apkg.hpp"
#include "component/node.hpp"
#include "ibis/check_circuits.hpp"
#include "ibis/run.hpp"
#include "package/pkgmdl.hpp"
#include "reader/enumeration.hpp"

#include <algorithm>
#include <array>
#include <unordered_map>

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

void nameLine(Run& run, Cmpnt& component, std::string_view text) {
    setTextOnce(run.diagnostics, component.name, text, kLongNameLimit, "Component");
    if (std::ranges::any_of(component.name, isSpace)) warningAtLine(run.diagnostics, 513, component.name);
    checkNotReserved(run.diagnostics, component.name);
    if (Ibis* const root = currentRoot(run)) root->components.enterName(component, component.name);
}

void manufacturerLine(Run& run, Cmpnt& component, std::string_view text) {
    setTextOnce(run.diagnostics, component.manufacturer, text, kLongNameLimit, "Manufacturer");
    run.cmpnt.manufacturer_seen = true;
}

void packageModelLine(Run& run, Cmpnt& component, std::string_view text) {
    setTextOnce(run.diagnostics, component.package_model, text, kLongNameLimit, "Package_Model");
    checkNotReserved(run.diagnostics, component.package_model);
    run.cmpnt.package_model_seen = true;
}

void packageLine(Run& run, Cmpnt& component, std::string_view text) {
    if (component.package) {
        errorAtLine(run.diagnostics, 517);
        return;
    }
    if (!text.empty()) errorAtLine(run.diagnostics, 518);
    component.package.emplace();
}

/// Reads "Si_location Pin" or "Timing_location = Die" behind its name; the "=" may be left out and is not counted.
void locationLine(Run& run, Cmpnt& component, const LocationLine& row, std::string_view text) {
    constexpr int kItems = 2;
    Location& value = component.*row.value;
    if (value != Location::notGiven) {
        errorAtLine(run.diagnostics, 521, row.name, component.name);
        return;
    }
    const ItemList items = splitItems(run, text, kItems + 1, '=');
    const int sign = items[1] == "=" ? 1 : 0;
    if (items.count - sign != kItems) errorAtLine(run.diagnostics, 522, items.count - sign, row.name, kItems);
    if (!items.has(1 + sign)) return;
    const auto location = readEnumeration(run.diagnostics, kLocations, row.name, items[1 + sign], kLocationMessages);
    value = location.value_or(Location::notGiven);
}

/// Data under "[Component]" itself: the two locations, which came with version 3.
void componentData(Run& run, Cmpnt& component, std::string_view text) {
    std::string_view rest = text;
    const std::string_view name = takeItem(run, rest, '=');
    const auto* const row =
        std::ranges::find_if(kLocationLines, [name](const LocationLine& line) { return line.name == name; });
    if (run.parse.version < IbisVersion::v3 || row == kLocationLines.end()) {
        errorAtLine(run.diagnostics, 506);
        return;
    }
    locationLine(run, component, *row, text);
}

constexpr std::array<const Block<Cmpnt>*, 4> kBlocks{&kAlternatePackages, &kNodeDeclarations, &kCircuitCall,
                                                     &kEmiComponent};

void blockData(Run& run, Cmpnt& component, const Block<Cmpnt>& block, const Line& line) {
    if (line.key == block.begin) {
        block.line(run, component, line.text);
    } else {
        errorAtLine(run.diagnostics, 509, block.end_name);
    }
}

void keywordLine(Run& run, Cmpnt& component, const Line& line) {
    switch (line.key) {
    case KeywordCode::component: nameLine(run, component, line.text); break;
    case KeywordCode::manufacturer: manufacturerLine(run, component, line.text); break;
    case KeywordCode::packageModel: packageModelLine(run, component, line.text); break;
    case KeywordCode::package: packageLine(run, component, line.text); break;
    case KeywordCode::pin: pinHeader(run, component, line.text); break;
    case KeywordCode::pinMapping: pinMapHeader(run, component, line.text); break;
    case KeywordCode::diffPin: diffPinHeader(run, component, line.text); break;
    case KeywordCode::seriesSwitchGroups: switchGroupsHeader(run, component, line.text); break;
    case KeywordCode::seriesPinMapping: seriesPinHeader(run, component, line.text); break;
    case KeywordCode::pinEmi: pinEmiHeader(run, component, line.text); break;
    case KeywordCode::pinDomainEmi: pinDomainEmiHeader(run, component, line.text); break;
    default:
        if (const Block<Cmpnt>* const block = blockOf<Cmpnt>(kBlocks, line.key)) {
            blockKeywordLine(run, component, *block, run.cmpnt.block, line);
        }
        break;
    }
}

void dataLine(Run& run, Cmpnt& component, const Line& line) {
    switch (line.key) {
    case KeywordCode::component: componentData(run, component, line.text); break;
    case KeywordCode::manufacturer: errorAtLine(run.diagnostics, 507); break;
    case KeywordCode::packageModel: errorAtLine(run.diagnostics, 508); break;
    case KeywordCode::package:
        if (component.package) pkgLine(run, *component.package, line.text);
        break;
    case KeywordCode::pin: pinLine(run, component, line.text); break;
    case KeywordCode::pinMapping: pinMapLine(run, component, line.text); break;
    case KeywordCode::diffPin: diffPinLine(run, component, line.text); break;
    case KeywordCode::seriesSwitchGroups: switchGroupsLine(run, component, line.text); break;
    case KeywordCode::seriesPinMapping: seriesPinLine(run, component, line.text); break;
    case KeywordCode::pinEmi: pinEmiLine(run, component, line.text); break;
    case KeywordCode::pinDomainEmi: pinDomainEmiLine(run, component, line.text); break;
    default:
        if (const Block<Cmpnt>* const block = blockOf<Cmpnt>(kBlocks, line.key))
            blockData(run, component, *block, line);
        break;
    }
}

/// True for the keywords that belong to an open component.
bool keepsOpen(KeywordCode code) {
    return isBetween(code, KeywordCode::manufacturer, KeywordCode::endCircuitCall) ||
           isBetween(code, KeywordCode::beginEmiComponent, KeywordCode::pinDomainEmi);
}

void closeCmpnt(Run& run, const Cmpnt& component) {
    if (!run.cmpnt.manufacturer_seen) error(run.diagnostics, 514, component.name);
    if (component.package) {
        checkPkg(run, *component.package, component.name);
    } else {
        error(run.diagnostics, 519, component.name);
    }
    if (component.alternates_seen && !run.cmpnt.package_model_seen) error(run.diagnostics, 537, component.name);
}

/// Reports every pair of equal names: each component once per component of its name behind it in the list.
void checkDuplicates(Run& run, const Ibis& root) {
    std::unordered_map<std::string_view, std::size_t> behind;
    for (const Cmpnt& component : root.components.newestFirst()) {
        ++behind[component.name];
    }
    for (const Cmpnt& component : root.components.newestFirst()) {
        for (std::size_t left = --behind[component.name]; left > 0; --left) {
            error(run.diagnostics, 511, component.name);
        }
    }
}

/// Looks up the package models of a component. Its own is returned, if it has one and that is found.
const PkgMdl* resolvePackage(Run& run, const Ibis& root, const Cmpnt& component) {
    const std::string& package = component.package_model;
    const bool found = !package.empty() && findPackageModel(run, package, component.name);
    checkAlternatePackages(run, component);
    return found ? root.package_models.find(package) : nullptr;
}

/// Warns of the first pin of a package model that the component does not have.
void checkPackagePins(Run& run, const Cmpnt& component, const PkgMdl& package) {
    for (const std::uint32_t place : package.own_pins) {
        const std::string& name = package.pin_names[place];
        if (isKnownPin(component, name)) continue;
        warning(run.diagnostics, 613, package.name, name, component.name);
        return;
    }
}

} // namespace

void openCmpnt(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBug(run.diagnostics, 501, mark.file, mark.line);
        return;
    }
    run.cmpnt = CmpntState{};
    run.cmpnt.current = &root->components.add(std::make_unique<Cmpnt>());
}

void cmpntKeywordSeen(Run& run, KeywordCode code) {
    // What a keyword interrupts is over; the dispatcher has reported an unfinished state.
    run.cmpnt.switches.list = SwitchReader::List::none;
    if (run.cmpnt.current == nullptr) return;
    blockKeywordSeen(run, *run.cmpnt.current, run.cmpnt.block, code);
    if (keepsOpen(code)) return;
    closeCmpnt(run, *run.cmpnt.current);
    run.cmpnt.current = nullptr;
}

void cmpntLine(Run& run, const Line& line) {
    Cmpnt* const component = run.cmpnt.current;
    switch (line.kind) {
    case LineKind::keyword:
        if (component == nullptr) {
            errorAtLine(run.diagnostics, 502);
        } else {
            keywordLine(run, *component, line);
        }
        return;
    case LineKind::data:
        if (component == nullptr) {
            errorAtLine(run.diagnostics, 503);
        } else {
            dataLine(run, *component, line);
        }
        return;
    case LineKind::blank: break;
    }
    const SourceMark mark = here();
    programBugAtLine(run.diagnostics, 505, mark.file, mark.line);
}

void checkCmpnts(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    checkDuplicates(run, *root);
    PinModels models;
    SeriesModels series_models;
    for (const Cmpnt& component : root->components.newestFirst()) {
        const PkgMdl* const package = resolvePackage(run, *root, component);
        if (component.pins.empty()) {
            error(run.diagnostics, 524, component.name);
        } else {
            checkPins(run, component, models);
            if (package != nullptr) checkPackagePins(run, component, *package);
        }
        checkPinMaps(run, component);
        checkDiffPins(run, component);
        checkSeriesPins(run, component, series_models);
        checkSwitchGroups(run, component);
        checkNodes(run, component);
        checkCircuitCalls(run, component);
        checkPinEmi(run, component);
    }
    checkExtCkts(run, *root);
}

} // namespace kestrel
