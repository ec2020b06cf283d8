#pragma once

#include "reader/block.hpp"

namespace kestrel {

struct Run;
struct Cmpnt;

/// "[Node Declarations]" to its end: the nodes of the die that circuit calls use beside pins. Reports 1601 to 1603,
/// 1605 and 3600.
extern const Block<Cmpnt> kNodeDeclarations;

/// Reports nodes that are named like a pin (1604, no line).
void checkNodes(Run& run, const Cmpnt& component);

} // namespace kestrel
