#include "main/counted_new.hpp"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#include <malloc.h>

// The operators of verimark, by which a limit holds for all that is allocated. The forms for arrays call these; those
// that do not throw would as well, but sanitizers have their own.

namespace kestrel {

namespace {

// The one variable outside of records: these operators get nothing but a size.
constinit thread_local MemoryAccount* charged = nullptr;

/// Memory from `allocate`, counted.
template <class Allocate> void* counted(const Allocate& allocate) {
    void* memory = allocate();
    if (memory == nullptr && charged != nullptr && charged->awaitOthers()) memory = allocate();
    if (memory == nullptr) throw std::bad_alloc();
    if (charged != nullptr && !charged->take(malloc_usable_size(memory))) {
        std::free(memory);
        throw std::bad_alloc();
    }
    return memory;
}

void release(void* memory) {
    if (charged != nullptr && memory != nullptr) charged->giveBack(malloc_usable_size(memory));
    std::free(memory);
}

} // namespace

void beginCounting() {
    // What is free goes back to the system at once, else it adds up: each thread keeps some tens of megabytes. Nor does
    // each get addresses of its own, which are as many where the system limits those.
    constexpr int kMostKept = 128 << 10;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, kMostKept);
    mallopt(M_TRIM_THRESHOLD, kMostKept);
}

MemoryAccount* chargeTo(MemoryAccount* account) { return std::exchange(charged, account); }

} // namespace kestrel

void* operator new(std::size_t size) {
    return kestrel::counted([size] { return std::malloc(size != 0 ? size : 1); });
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto step = static_cast<std::size_t>(alignment);
    if (size > SIZE_MAX - step) throw std::bad_alloc();
    return kestrel::counted([&] { return std::aligned_alloc(step, (size + step - 1) / step * step); });
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept { kestrel::release(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { kestrel::release(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { kestrel::release(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    kestrel::release(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { kestrel::release(memory); }
