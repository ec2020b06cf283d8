#include "component/node.hpp"

#include "reader/items.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kBegin = "Node_Declarations";
constexpr std::string_view kEnd = "End_Node_Declarations";

void doNotMatch(Context& context) { errorAtLine(context.diagnostics, 1605); }

} // namespace

const BlockEnd kNodesEnd{
    .name = kEnd,
    .text_behind = [](Context& context, std::string_view) { errorAtLine(context.diagnostics, 1602, kEnd); },
    .not_ended = doNotMatch,
    .no_begin = doNotMatch,
};

void openNodes(Context& context, std::unique_ptr<Nodes>& nodes, bool behind_call, std::string_view text) {
    if (nodes != nullptr) {
        errorAtLine(context.diagnostics, 1601);
    } else {
        nodes = std::make_unique<Nodes>();
    }
    if (!text.empty()) errorAtLine(context.diagnostics, 1602, kBegin);
    if (behind_call) errorAtLine(context.diagnostics, 3600);
}

void nodeLine(Context& context, Nodes& nodes, std::string_view text) {
    for (std::string_view name = takeItem(context, text); !name.empty(); name = takeItem(context, text)) {
        if (!nodes.add(name)) errorAtLine(context.diagnostics, 1603, name);
    }
}

void checkNodes(Context& context, const Nodes& nodes, const PinList& pins, std::string_view component) {
    for (const std::string& node : nodes.names) {
        if (pins.has(listedPinName(pins, node))) error(context.diagnostics, 1604, node, component);
    }
}

} // namespace kestrel
