#pragma once

#include "compare/comparison.hpp"

namespace kestrel {

struct Cmpnt;

/// Two components and their pins.
void compareComponents(Comparison& comparison, const Cmpnt& was, const Cmpnt& is);

} // namespace kestrel
