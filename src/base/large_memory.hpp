#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace kestrel {

/// Asks the system to back memory that is about to be filled with large pages. A hint: where there are none, nothing
/// happens. Small pages are handed out one by one, which was a fifth of the time of checking a large file.
void preferLargePages(const void* memory, std::size_t size);

struct FreeMemory {
    std::align_val_t alignment{};
    void operator()(std::byte* memory) const { ::operator delete(memory, alignment); }
};
using Memory = std::unique_ptr<std::byte[], FreeMemory>;

/// Memory for a store that grows with the input, not initialized, in large pages if it is large. `size` is rounded up
/// to what the system hands out.
[[nodiscard]] Memory allocateLarge(std::size_t& size);

} // namespace kestrel
