#pragma once

#include <cstddef>

namespace kestrel {

/// Asks the system to back memory that is about to be filled with large pages. A hint: where there are none, nothing
/// happens.
void preferLargePages(const void* memory, std::size_t size);

} // namespace kestrel
