#include "component/node.hpp"

#include "ibis/run.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Node_Declarations";
constexpr std::string_view kEnd = "End_Node_Declarations";

void open(Run& run, Cmpnt& component, std::string_view text) {
    if (component.nodes_seen) errorAtLine(run.diagnostics, 1601);
    component.nodes_seen = true;
    if (!text.empty()) errorAtLine(run.diagnostics, 1602, kBegin);
    if (!component.circuit_calls.empty()) errorAtLine(run.diagnostics, 3600);
}

void line(Run& run, Cmpnt& component, std::string_view text) {
    for (std::string_view name = takeItem(run, text); !name.empty(); name = takeItem(run, text)) {
        if (!component.nodes.add(name)) errorAtLine(run.diagnostics, 1603, name);
    }
}

void close(Run& /*run*/, Cmpnt& /*component*/) {}

void doNotMatch(Run& run) { errorAtLine(run.diagnostics, 1605); }

} // namespace

const Block<Cmpnt> kNodeDeclarations{
    .begin = KeywordCode::nodeDeclarations,
    .end = KeywordCode::endNodeDeclarations,
    .end_name = kEnd,
    .open = open,
    .line = line,
    .close = close,
    .text_behind_end = [](Run& run, std::string_view /*text*/) { errorAtLine(run.diagnostics, 1602, kEnd); },
    .not_ended = doNotMatch,
    .no_begin = doNotMatch,
};

void checkNodes(Run& run, const Cmpnt& component) {
    for (const std::string& node : component.nodes.names) {
        if (findPin(component, listedPinName(component, node)) != nullptr)
            error(run.diagnostics, 1604, node, component.name);
    }
}

} // namespace kestrel
