#include "ibis/check_circuit_calls.hpp"
#include "ibis/check_pin_models.hpp"
#include "ibis/checks.hpp"
#include "ibis/run.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace kestrel {

namespace {

/// Reports every pair of equal names.
void checkRepeatedNames(Context& context, const Ibis& root) {
    root.components.eachRepeatedName([&context](const Cmpnt& component, std::size_t behind) {
        const About about(context.diagnostics, component);
        for (; behind > 0; --behind) {
            error(context.diagnostics, 511, component.name);
        }
    });
}

/// Looks up the package models of a component. Its own is returned, if it has one and that is found.
const PkgMdl* findPackages(Run& run, const Ibis& root, const Cmpnt& component) {
    const std::string& own = component.package_model;
    const bool found = !own.empty() && findPackageModel(run, own, component.name);
    if (component.alternates != nullptr) {
        for (const std::string& name : component.alternates->models.names) {
            if (name == own || component.alternates->cut.contains(name)) continue;
            findPackageModel(run, name, component.name);
        }
    }
    return found ? root.package_models.find(own) : nullptr;
}

/// Warns of the first pin of a package model that the component does not have.
void checkPackagePins(Context& context, const Cmpnt& component, const PkgMdl& package) {
    const PinList& pins = component.pins;
    auto pin = pins.begin(); // both lists mostly have the same order
    auto odd = package.odd_pins.begin();
    for (std::uint32_t place = 0; place < package.pin_names.size(); ++place) {
        if (odd != package.odd_pins.end() && *odd == place) {
            ++odd;
            continue;
        }
        const std::string_view name = package.pin_names[place];
        if (pin != pins.end() && pin->name == name) {
            ++pin;
            continue;
        }
        if (isKnownPin(pins, name)) continue;
        warning(context.diagnostics, 613, package.name, name, component.name);
        return;
    }
}

/// What is looked up once for all components.
struct LookedUp {
    ModelNames models;
    MappablePorts ports;
};

void checkComponent(Run& run, Ibis& root, ModelMarks& models, const Cmpnt& component, LookedUp& looked_up) {
    const PkgMdl* const package = findPackages(run, root, component);
    const PinList& pins = component.pins;
    const Name name = component.name;
    if (pins.empty()) {
        error(run.diagnostics, 524, name);
    } else {
        checkPinModels(run, root, models, component, looked_up.models);
        if (package != nullptr) checkPackagePins(run, component, *package);
    }
    if (component.pin_mapping != nullptr) checkPinMaps(run, *component.pin_mapping, pins, name);
    checkDiffPinModels(run, root, component);
    checkSeriesPins(run, root, models, component, looked_up.models);
    if (component.nodes != nullptr) checkNodes(run, *component.nodes, pins, name);
    checkCircuitCalls(run, root, component, looked_up.ports);
    if (component.emi != nullptr) checkCmpntEmi(run, *component.emi, pins, name);
}

} // namespace

void checkComponents(Run& run, Ibis& root, ModelMarks& models) {
    checkRepeatedNames(run, root);
    LookedUp looked_up;
    for (const Cmpnt& component : root.components.newestFirst()) {
        const About about(run.diagnostics, component);
        checkComponent(run, root, models, component, looked_up);
    }
    checkExtCkts(run, root);
}

} // namespace kestrel
