#include "component/circuit.hpp"
#include "ibis/run.hpp"

#include <algorithm>

namespace kestrel {

namespace {

constexpr std::string_view kKind = "Circuit Call";
constexpr std::string_view kKeyword = "Circuit_Call";
constexpr std::string_view kGround = "A_gnd"; ///< the port that need not be mapped

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

void dropLine(CircuitCall& call, const ItemList& items) {
    for (int place = 0; items.has(place); ++place) {
        call.dropped_names.emplace(items[place]);
    }
}

void pinLine(Run& run, CircuitCall& call, const PinLine& line, std::string_view text) {
    const ItemList items = splitItems(run, text, static_cast<int>(call.pins.size()));
    if (call.kind != CallPins::none) {
        errorAtLine(run.diagnostics, 1834, line.name, pinLineName(call.kind));
        dropLine(call, items);
        return;
    }
    if (items.count != line.pins) {
        errorAtLine(run.diagnostics, 1835, line.name, items.count, line.pins);
        dropLine(call, items);
        return;
    }
    call.kind = line.kind;
    const int limit = pinNameLimit(run.parse.version);
    for (int place = 0; place < line.pins; ++place) {
        call.pins[static_cast<std::size_t>(place)] = cutName(items[place], limit);
    }
}

void portMapLine(Run& run, CircuitCall& call, std::string_view text) {
    constexpr int kNames = 2; // port and node
    call.port_map_seen = true;
    const ItemList items = splitItems(run, text, kNames);
    if (items.count != kNames) {
        errorAtLine(run.diagnostics, 1836, items.count);
        dropLine(call, items);
        return;
    }
    if (!call.mapped_ports.emplace(items[0]).second) {
        errorAtLine(run.diagnostics, 1837, items[0]);
        dropLine(call, items);
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

void checkPin(Run& run, const Cmpnt& component, const CircuitCall& call, std::string_view name) {
    if (name.empty()) return;
    const Pin* const pin = findPin(component, name);
    if (pin == nullptr) {
        error(run.diagnostics, 1840, call.circuit, component.name, name);
    } else if (!equalsNoCase(pin->model_name, "CIRCUITCALL")) {
        warning(run.diagnostics, 1845, name, component.name);
    }
}

void checkNodesOf(Run& run, const Cmpnt& component, const CircuitCall& call) {
    const int limit = pinNameLimit(run.parse.version);
    const auto is_pin = [&](std::string_view name) { return findPin(component, cutName(name, limit)) != nullptr; };
    for (const PortMap& map : call.port_map) {
        if (component.nodes.has(map.node) || is_pin(map.node) || is_pin(pinOfNode(map.node))) continue;
        error(run.diagnostics, 1841, call.circuit, component.name, map.node);
    }
}

void checkUnmapped(Run& run, const Cmpnt& component, const CircuitCall& call, const ExtCkt& circuit) {
    if (call.port_map.empty()) return; // reported
    const auto& ports = circuit.ports.names;
    const auto missing = std::ranges::find_if(ports, [&call](const std::string& port) {
        return port != kGround && !call.mapped_ports.contains(port) && !call.dropped_names.contains(port);
    });
    if (missing != ports.end()) warning(run.diagnostics, 1843, call.circuit, component.name, *missing);
}

void checkCall(Run& run, const Cmpnt& component, const CircuitCall& call) {
    ExtCkt* const circuit = currentRoot(run)->external_circuits.find(call.circuit);
    if (circuit != nullptr) {
        circuit->used = true;
        checkPorts(run, component, call, *circuit);
    } else if (!call.circuit.empty()) {
        error(run.diagnostics, 1838, call.circuit, component.name);
    }
    if (!component.pins.empty()) {
        for (const std::string& pin : call.pins) {
            checkPin(run, component, call, pin);
        }
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

std::unordered_set<std::string_view> circuitCallPins(const Cmpnt& component, int limit) {
    std::unordered_set<std::string_view> names;
    const auto add = [&names, limit](std::string_view name) { names.insert(cutName(name, limit)); };
    for (const CircuitCall& call : component.circuit_calls) {
        std::ranges::for_each(call.pins, add);
        std::ranges::for_each(call.dropped_names, add);
        for (const PortMap& map : call.port_map) {
            add(map.node);
            add(pinOfNode(map.node));
        }
    }
    return names;
}

void checkCircuitCalls(Run& run, const Cmpnt& component) {
    for (const CircuitCall& call : component.circuit_calls) {
        checkCall(run, component, call);
    }
}

} // namespace kestrel
