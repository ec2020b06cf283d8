#pragma once

#include "base/text_hash.hpp"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrel {

struct Cmpnt;
struct Context;
struct ExtCkt;
struct Ibis;

/// What may be names of pins in all circuit calls of a component, as the list has them, also in lines that were
/// reported.
[[nodiscard]] ViewSet circuitCallPins(const Cmpnt& component);

/// The ports of each circuit that a call of it should map, so that they are gathered once.
using MappablePorts = std::unordered_map<const ExtCkt*, std::vector<std::string_view>>;

/// Looks up circuits, ports, pins and nodes of a component's calls and marks the circuits as used.
void checkCircuitCalls(Context& context, Ibis& root, const Cmpnt& component, MappablePorts& ports);

/// Once the calls of all components are checked: warns of external circuits that none of them has used.
void checkExtCkts(Context& context, const Ibis& root);

} // namespace kestrel
