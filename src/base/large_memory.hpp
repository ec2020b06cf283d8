#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace kestrel {

struct FreeMemory {
    void operator()(std::byte* memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<std::byte[], FreeMemory>;

/// Memory for stores that grow with the input, not initialized; `size` is rounded up where that costs nothing. Large
/// pieces ask the system for large pages, where it has them: small ones are handed out one by one at their first
/// use, which was a fifth of the time of checking a large file.
[[nodiscard]] inline Memory allocateLarge(std::size_t& size) {
    constexpr std::size_t kLargePage = std::size_t{2} << 20;
    constexpr std::size_t kSmallPage = 4096;
    const std::size_t page = size >= kLargePage ? kLargePage : kSmallPage;
    if (size > SIZE_MAX - page) throw std::bad_alloc();
    size = (size + page - 1) / page * page;
    Memory memory(static_cast<std::byte*>(page == kLargePage ? std::aligned_alloc(page, size) : std::malloc(size)));
    if (memory == nullptr) throw std::bad_alloc();
#if defined(__linux__)
    // A hint: without large pages the memory serves as well.
    if (page == kLargePage) static_cast<void>(madvise(memory.get(), size, MADV_HUGEPAGE));
#endif
    return memory;
}

} // namespace kestrel
