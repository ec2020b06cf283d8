#pragma once

#include "main/memory_limit.hpp"

namespace kestrel {

/// Has the program's operator new count; see `ChargeTo`.
MemoryAccount* chargeTo(MemoryAccount* account);

} // namespace kestrel
