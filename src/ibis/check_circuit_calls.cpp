#include "ibis/check_circuit_calls.hpp"

#include "base/text_hash.hpp"
#include "component/cmpnt.hpp"
#include "external/circuit.hpp"
#include "ibis/ibis.hpp"

#include <algorithm>

namespace kestrel {

namespace {

/// Compares the ports of a call with those of its circuit.
void checkPorts(Context& context, const Cmpnt& component, const CircuitCall& call, const ExtCkt& circuit) {
    if (circuit.ports.names.empty()) return; // its own block has been reported
    for (const PortMap& map : call.port_map) {
        if (circuit.ports.has(map.port)) continue;
        error(context.diagnostics, 1839, call.circuit, component.name, map.port);
    }
}

/// What was reported for the calls of a component; other calls do not report it again.
struct Reported {
    ViewSet circuits;
    std::unordered_set<const Pin*> pins;
};

void checkPin(Context& context, const Cmpnt& component, const CircuitCall& call, std::string_view name,
              Reported& reported) {
    if (name.empty()) return;
    const std::string_view listed = listedPinName(component.pins, name);
    const Pin* const pin = component.pins.find(listed);
    if (pin == nullptr) {
        if (!isKnownPin(component.pins, listed)) error(context.diagnostics, 1840, call.circuit, component.name, name);
        return;
    }
    if (isCircuitCallName(pin->model_name) || isModelReported(component.pins, *pin)) return;
    if (reported.pins.insert(pin).second) warning(context.diagnostics, 1845, pin->name, component.name);
}

void checkPins(Context& context, const Cmpnt& component, const CircuitCall& call, Reported& reported) {
    const auto& [first, second] = call.pins;
    checkPin(context, component, call, first, reported);
    if (second != first) checkPin(context, component, call, second, reported);
}

void checkNodesOf(Context& context, const Cmpnt& component, const CircuitCall& call) {
    if (wasPassedOver(context.parse, LaterKeyword::dieSupplyPads)) return; // a node may be one of the pads
    const PinList& pins = component.pins;
    const auto is_pin = [&pins](std::string_view name) { return isKnownPin(pins, listedPinName(pins, name)); };
    ViewSet missing;
    for (const PortMap& map : call.port_map) {
        if (component.nodes != nullptr && component.nodes->has(map.node)) continue;
        if (is_pin(map.node) || is_pin(pinOfNode(map.node))) continue;
        if (missing.insert(map.node).second) error(context.diagnostics, 1841, call.circuit, component.name, map.node);
    }
}

/// Ports that reach a pad or a node. The simulator's ground, ports of reserved names and those that a converter serves
/// are connected without a call.
std::vector<std::string_view> mappablePorts(const ExtCkt& circuit) {
    ViewSet served{kGroundPort};
    for (const Converter& converter : circuit.converters) {
        served.insert({converter.d_port, converter.port1, converter.port2});
    }
    std::vector<std::string_view> ports;
    for (const std::string_view port : circuit.ports.names) {
        const bool reserved = port.starts_with("D_") || port.starts_with("A_");
        if (!reserved && !served.contains(port)) ports.push_back(port);
    }
    return ports;
}

void checkUnmapped(Context& context, const Cmpnt& component, const CircuitCall& call, const ExtCkt& circuit,
                   MappablePorts& ports) {
    if (!call.port_map_seen) return; // reported
    const auto [at, is_new] = ports.try_emplace(&circuit);
    if (is_new) at->second = mappablePorts(circuit);
    const auto missing = std::ranges::find_if(at->second, [&call](std::string_view port) {
        return !call.mapped_ports.contains(port) && !call.dropped_ports.contains(port);
    });
    if (missing != at->second.end()) caution(context.diagnostics, 1843, call.circuit, component.name, *missing);
}

void checkCall(Context& context, Ibis& root, const Cmpnt& component, const CircuitCall& call, Reported& reported,
               MappablePorts& ports) {
    ExtCkt* const circuit = root.external_circuits.find(call.circuit);
    if (circuit != nullptr) {
        circuit->used = true;
        checkPorts(context, component, call, *circuit);
    } else if (!call.circuit.empty() && reported.circuits.insert(call.circuit).second) {
        error(context.diagnostics, 1838, call.circuit, component.name);
    }
    if (!component.pins.empty()) {
        checkPins(context, component, call, reported);
        checkNodesOf(context, component, call);
    }
    if (circuit != nullptr) checkUnmapped(context, component, call, *circuit, ports);
}

} // namespace

ViewSet circuitCallPins(const Cmpnt& component) {
    ViewSet names;
    const auto add = [&](std::string_view name) { names.insert(listedPinName(component.pins, name)); };
    const auto add_node = [&](std::string_view node) {
        add(node);
        add(pinOfNode(node));
    };
    for (const CircuitCall& call : component.circuit_calls) {
        std::ranges::for_each(call.pins, add);
        std::ranges::for_each(call.dropped_nodes, add_node);
        std::ranges::for_each(call.port_map, add_node, &PortMap::node);
    }
    return names;
}

void checkCircuitCalls(Context& context, Ibis& root, const Cmpnt& component, MappablePorts& ports) {
    Reported reported;
    for (const CircuitCall& call : component.circuit_calls) {
        checkCall(context, root, component, call, reported, ports);
    }
}

void checkExtCkts(Context& context, const Ibis& root) {
    for (const ExtCkt& circuit : root.external_circuits.newestFirst()) {
        const About about(context.diagnostics, circuit);
        // A repeated name is taken by the last-defined circuit.
        if (circuit.name.empty() || circuit.used || root.external_circuits.find(circuit.name) != &circuit) continue;
        warning(context.diagnostics, 1844, circuit.name);
    }
}

} // namespace kestrel
