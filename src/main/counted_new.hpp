#pragma once

#include "main/memory_limit.hpp"

namespace kestrel {

/// What a MemoryCounting wants, of the program's operator new.
MemoryAccount* chargeTo(MemoryAccount* account);
void beginCounting();

} // namespace kestrel
