#include "base/large_pages.hpp"

#ifdef __linux__
#include <cstdint>

#include <sys/mman.h>
#endif

namespace kestrel {

#ifdef __linux__

void preferLargePages(const void* memory, std::size_t size) {
    // Less memory than this holds no whole large page for certain. The range must begin at a page of any size.
    constexpr std::uintptr_t kLargePage = std::uintptr_t{1} << 21;
    if (size < 2 * kLargePage) return;
    const auto begin = (reinterpret_cast<std::uintptr_t>(memory) + kLargePage - 1) & ~(kLargePage - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + size) & ~(kLargePage - 1);
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

#else

void preferLargePages(const void*, std::size_t) {}

#endif

} // namespace kestrel
