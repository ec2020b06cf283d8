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

/// True for sizes that are worth large pages.
[[nodiscard]] bool isLarge(std::size_t size);
/// Frees what allocateLarge() gave for such a size.
void freeLarge(std::byte* memory);

/// For containers that may grow with the input and are looked into at random: with small pages the processor spends
/// half of a look-up on finding the page.
template <class Item> struct LargeAllocator {
    using value_type = Item;
    // Where containers keep pointers, their size is what is meant.
    static constexpr std::size_t kItemSize = sizeof(Item); // NOLINT(bugprone-sizeof-expression)

    LargeAllocator() = default;
    template <class Other> LargeAllocator(const LargeAllocator<Other>& /*other*/) {}

    [[nodiscard]] Item* allocate(std::size_t count) {
        std::size_t size = count * kItemSize;
        if (size / kItemSize != count || !isLarge(size)) return std::allocator<Item>().allocate(count);
        return reinterpret_cast<Item*>(allocateLarge(size).release());
    }
    void deallocate(Item* items, std::size_t count) {
        const std::size_t size = count * kItemSize;
        if (!isLarge(size)) return std::allocator<Item>().deallocate(items, count);
        freeLarge(reinterpret_cast<std::byte*>(items));
    }

    bool operator==(const LargeAllocator& /*other*/) const { return true; }
};

} // namespace kestrel
