#pragma once

#include "base/name_list.hpp"
#include "component/pin.hpp"
#include "reader/sections.hpp"

#include <memory>
#include <string_view>

namespace kestrel {

/// "[Node Declarations]": the nodes of the die that circuit calls use beside pins.
using Nodes = NameList;

/// The end of the block.
extern const BlockEnd kNodesEnd;

/// Begins the block at its keyword, anew or once more; it should come before every circuit call.
void openNodes(Context& context, std::unique_ptr<Nodes>& nodes, bool behind_call, std::string_view text);

/// Reads a line of names.
void nodeLine(Context& context, Nodes& nodes, std::string_view text);

/// Reports nodes that are named like a pin.
void checkNodes(Context& context, const Nodes& nodes, const PinList& pins, std::string_view component);

} // namespace kestrel
