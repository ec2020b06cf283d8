#include "base/large_memory.hpp"

#include <cstdint>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace kestrel {

namespace {

constexpr std::size_t kLargePage = std::size_t{1} << 21;

} // namespace

#ifdef __linux__

void preferLargePages(const void* memory, std::size_t size) {
    // Only whole pages count, and the range must begin at a page of any size.
    const auto first = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (first + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t end = (first + size) / kLargePage * kLargePage;
    if (begin < end) static_cast<void>(madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE));
}

#else

void preferLargePages(const void* /*memory*/, std::size_t /*size*/) {}

#endif

Memory allocateLarge(std::size_t& size) {
    constexpr std::size_t kSmallPage = 4096;
    const std::size_t page = isLarge(size) ? kLargePage : kSmallPage;
    if (size > SIZE_MAX - page) throw std::bad_alloc();
    size = (size + page - 1) / page * page;
    const std::align_val_t alignment{page == kLargePage ? page : alignof(std::max_align_t)};
    // By the operator, so that a program may count it.
    Memory memory(static_cast<std::byte*>(::operator new(size, alignment)), {alignment});
    preferLargePages(memory.get(), size);
    return memory;
}

bool isLarge(std::size_t size) { return size >= kLargePage; }

void freeLarge(std::byte* memory) { FreeMemory{std::align_val_t{kLargePage}}(memory); }

} // namespace kestrel
