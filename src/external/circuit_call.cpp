#include "external/circuit.hpp"
#include "ibis/run.hpp"

#include <algorithm>
#include <unordered_set>

namespace kestrel {

namespace {

constexpr std::string_view kKind = "Circuit Call";
constexpr std::string_view kKeyword = "Circuit_Call";

/// A line that names pins.
struct PinLine {
    std::string_view name;
    CallPins kind;
    int pins;
};

constexpr std::array<PinLine, 3> kPinLines{{{"Signal_pin", CallPins::signal, 1},
                                            {"Diff_signal_pins", CallPins::diff, 2},
                                            {"Series_pins", CallPins::series, 2}}};

std::string_view pinLineName(CallPins kind) {
    const auto* const line = std::ranges::find(kPinLines, kind, &PinLine::kind);
    return line == kPinLines.end() ? std::string_view() : line->name;
}

/// What a line names that is not kept may be one of its pins, however many there are.
void dropPins(const Run& run, CircuitCall& call, std::string_view text) {
    for (std::string_view name = takeItem(run, text); !name.empty(); name = takeItem(run, text)) {
        call.dropped_nodes.emplace(name);
    }
}

void pinLine(Run& run, CircuitCall& call, const PinLine& line, std::string_view text) {
    const ItemList items = splitItems(run, text, static_cast<int>(call.pins.size()));
    if (call.kind != CallPins::none) {
        errorAtLine(run.diagnostics, 1834, line.name, pinLineName(call.kind));
        dropPins(run, call, text);
        return;
    }
    if (items.count != line.pins) {
        errorAtLine(run.diagnostics, 1835, line.name, items.count, line.pins);
        dropPins(run, call, text);
        return;
    }
    call.kind = line.kind;
    for (int place = 0; place < line.pins; ++place) {
        call.pins[static_cast<std::size_t>(place)] = items[place];
    }
}

void portMapLine(Run& run, CircuitCall& call, std::string_view text) {
    constexpr int kNames = 2; // port and node
    call.port_map_seen = true;
    const ItemList items = splitItems(run, text, kNames);
    if (items.count != kNames) {
        errorAtLine(run.diagnostics, 1836, items.count);
        if (items.kept == 0) return;
        call.dropped_ports.emplace(items[0]);
        call.dropped_nodes.emplace(items[items.kept - 1]); // a lone name may as well be the node
        return;
    }
    if (!call.mapped_ports.emplace(items[0]).second) {
        errorAtLine(run.diagnostics, 1837, items[0]);
        call.dropped_nodes.emplace(items[1]);
        return;
    }
    call.port_map.push_back({std::string(items[0]), std::string(items[1])});
}

void open(Run& run, Cmpnt& component, std::string_view text) {
    CircuitCall& call = component.circuit_calls.emplace_back();
    const ItemList items = splitItems(run, text, 1);
    if (items.count == 0) errorAtLine(run.diagnostics, 1833);
    if (items.count > 1) errorAtLine(run.diagnostics, 1803, items.count, kKind, 1);
    call.circuit = cutName(items[0], kLongNameLimit);
}

void line(Run& run, Cmpnt& component, std::string_view text) {
    CircuitCall& call = component.circuit_calls.back();
    const std::string_view name = takeItem(run, text);
    const auto* const pins = std::ranges::find(kPinLines, name, &PinLine::name);
    if (pins != kPinLines.end()) {
        pinLine(run, call, *pins, text);
    } else if (name == "Port_map") {
        portMapLine(run, call, text);
    } else {
        errorAtLine(run.diagnostics, 1807, kKind);
    }
}

void close(Run& run, Cmpnt& component) {
    const CircuitCall& call = component.circuit_calls.back();
    if (!call.port_map_seen) error(run.diagnostics, 1842, call.circuit, component.name);
}

void textBehindEnd(Run& run, std::string_view text) {
    errorAtLine(run.diagnostics, 1803, splitItems(run, text, 0).count, "End Circuit Call", 0);
}

/// The pin that a node stands for: the whole of it, or what stands before its first ".".
std::string_view pinOfNode(std::string_view node) { return node.substr(0, node.find('.')); }

/// Compares the ports of a call with those of its circuit.
void checkPorts(Run& run, const Cmpnt& component, const CircuitCall& call, const ExtCkt& circuit) {
    if (circuit.ports.names.empty()) return; // its own block has been reported
    for (const PortMap& map : call.port_map) {
        if (circuit.ports.has(map.port)) continue;
        error(run.diagnostics, 1839, call.circuit, component.name, map.port);
    }
}

/// What was reported for the calls of a component; other calls do not report it again.
struct Reported {
    std::unordered_set<std::string_view> circuits;
    std::unordered_set<const Pin*> pins;
};

void checkPin(Run& run, const Cmpnt& component, const CircuitCall& call, std::string_view name, Reported& reported) {
    if (name.empty()) return;
    const std::string_view listed = listedPinName(component, name);
    const Pin* const pin = findPin(component, listed);
    if (pin == nullptr) {
        if (!isKnownPin(component, listed)) error(run.diagnostics, 1840, call.circuit, component.name, name);
        return;
    }
    if (equalsNoCase(pin->model_name, "CIRCUITCALL") || pin->model_reported) return;
    if (reported.pins.insert(pin).second) warning(run.diagnostics, 1845, pin->name, component.name);
}

void checkPins(Run& run, const Cmpnt& component, const CircuitCall& call, Reported& reported) {
    const auto& [first, second] = call.pins;
    checkPin(run, component, call, first, reported);
    if (second != first) checkPin(run, component, call, second, reported);
}

void checkNodesOf(Run& run, const Cmpnt& component, const CircuitCall& call) {
    const auto is_pin = [&](std::string_view name) { return isKnownPin(component, listedPinName(component, name)); };
    std::unordered_set<std::string_view> missing;
    for (const PortMap& map : call.port_map) {
        if (component.nodes.has(map.node) || is_pin(map.node) || is_pin(pinOfNode(map.node))) continue;
        if (missing.insert(map.node).second) {
            error(run.diagnostics, 1841, call.circuit, component.name, map.node);
        }
    }
}

void checkUnmapped(Run& run, const Cmpnt& component, const CircuitCall& call, const ExtCkt& circuit) {
    if (!call.port_map_seen) return; // reported
    const auto& ports = circuit.ports.names;
    const auto missing = std::ranges::find_if(ports, [&call](const std::string& port) {
        return port != kGroundPort && !call.mapped_ports.contains(port) && !call.dropped_ports.contains(port);
    });
    if (missing != ports.end()) warning(run.diagnostics, 1843, call.circuit, component.name, *missing);
}

void checkCall(Run& run, const Cmpnt& component, const CircuitCall& call, Reported& reported) {
    ExtCkt* const circuit = currentRoot(run)->external_circuits.find(call.circuit);
    if (circuit != nullptr) {
        circuit->used = true;
        checkPorts(run, component, call, *circuit);
    } else if (!call.circuit.empty() && reported.circuits.insert(call.circuit).second) {
        error(run.diagnostics, 1838, call.circuit, component.name);
    }
    if (!component.pins.empty()) {
        checkPins(run, component, call, reported);
        checkNodesOf(run, component, call);
    }
    if (circuit != nullptr) checkUnmapped(run, component, call, *circuit);
}

} // namespace

const Block<Cmpnt> kCircuitCall{
    .begin = KeywordCode::circuitCall,
    .end = KeywordCode::endCircuitCall,
    .end_name = "End_Circuit_Call",
    .open = open,
    .line = line,
    .close = close,
    .text_behind_end = textBehindEnd,
    .not_ended = [](Run& run) { errorAtLine(run.diagnostics, 1827, kKeyword, kKeyword); },
    .no_begin = [](Run& run) { errorAtLine(run.diagnostics, 1828, kKeyword, kKeyword); },
};

std::unordered_set<std::string_view> circuitCallPins(const Cmpnt& component) {
    std::unordered_set<std::string_view> names;
    const auto add = [&](std::string_view name) { names.insert(listedPinName(component, name)); };
    for (const CircuitCall& call : component.circuit_calls) {
        std::ranges::for_each(call.pins, add);
        for (const std::string& node : call.dropped_nodes) {
            add(node);
            add(pinOfNode(node));
        }
        for (const PortMap& map : call.port_map) {
            add(map.node);
            add(pinOfNode(map.node));
        }
    }
    return names;
}

void checkCircuitCalls(Run& run, const Cmpnt& component) {
    Reported reported;
    for (const CircuitCall& call : component.circuit_calls) {
        checkCall(run, component, call, reported);
    }
}

} // namespace kestrel
