#include "external/circuit_call.hpp"

#include "reader/items.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

constexpr ExternalNames kNames{"Circuit Call", "Circuit_Call", "End Circuit Call", "End_Circuit_Call"};

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
    const PinLine* const line = rowOf(kPinLines, kind, &PinLine::kind);
    return line == nullptr ? std::string_view() : line->name;
}

/// What a line names that is not kept may be one of its pins, however many there are.
void dropPins(const Context& context, CircuitCall& call, std::string_view text) {
    for (std::string_view name = takeItem(context, text); !name.empty(); name = takeItem(context, text)) {
        call.dropped_nodes.emplace(name);
    }
}

void pinLine(Context& context, CircuitCall& call, const PinLine& line, std::string_view text) {
    const ItemList items = splitItems(context, text, static_cast<int>(call.pins.size()));
    if (call.kind != CallPins::none) {
        errorAtLine(context.diagnostics, 1834, line.name, pinLineName(call.kind));
        dropPins(context, call, text);
        return;
    }
    if (items.count != line.pins) {
        errorAtLine(context.diagnostics, 1835, line.name, items.count, line.pins);
        dropPins(context, call, text);
        return;
    }
    call.kind = line.kind;
    for (int place = 0; place < line.pins; ++place) {
        call.pins[static_cast<std::size_t>(place)] = items[place];
    }
}

void portMapLine(Context& context, CircuitCall& call, std::string_view text) {
    constexpr int kItems = 2; // port and node
    call.port_map_seen = true;
    const ItemList items = splitItems(context, text, kItems);
    if (items.count != kItems) {
        errorAtLine(context.diagnostics, 1836, items.count);
        if (items.kept == 0) return;
        call.dropped_ports.emplace(items[0]);
        call.dropped_nodes.emplace(items[items.kept - 1]); // a lone name may as well be the node
        return;
    }
    if (!call.mapped_ports.emplace(items[0]).second) {
        errorAtLine(context.diagnostics, 1837, items[0]);
        call.dropped_nodes.emplace(items[1]);
        return;
    }
    call.port_map.push_back({std::string(items[0]), std::string(items[1])});
}

} // namespace

const BlockEnd kCircuitCallEnd = kExternalEnd<kNames>;

void openCircuitCall(Context& context, std::vector<CircuitCall>& calls, std::string_view text) {
    const ItemList items = splitItems(context, text, 1);
    if (items.count == 0) errorAtLine(context.diagnostics, 1833);
    if (items.count > 1) errorAtLine(context.diagnostics, 1803, items.count, kNames.kind, 1);
    calls.emplace_back().circuit = cutName(items[0], longNameLimit(context.parse.version));
}

void circuitCallLine(Context& context, CircuitCall& call, std::string_view text) {
    const std::string_view name = takeItem(context, text);
    if (const PinLine* const pins = rowOf(kPinLines, name, &PinLine::name)) {
        pinLine(context, call, *pins, text);
    } else if (name == "Port_map") {
        portMapLine(context, call, text);
    } else {
        errorAtLine(context.diagnostics, 1807, kNames.kind);
    }
}

void closeCircuitCall(Context& context, const CircuitCall& call, std::string_view component) {
    if (!call.port_map_seen) error(context.diagnostics, 1842, call.circuit, component);
}

void reportExtraText(Context& context, std::string_view keyword, std::string_view text) {
    const int count = splitItems(context, text, 0).count;
    if (count > 0) errorAtLine(context.diagnostics, 1803, count, keyword, 0);
}

std::string_view pinOfNode(std::string_view node) { return node.substr(0, node.find('.')); }

} // namespace kestrel
