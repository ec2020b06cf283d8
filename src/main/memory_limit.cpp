#include "main/memory_limit.hpp"

namespace kestrel {

bool MemoryAccount::take(std::size_t size) {
    const auto limit = static_cast<std::ptrdiff_t>(budget_.limit);
    const auto more = static_cast<std::ptrdiff_t>(size);
    if (more > limit - own_) {
        end_ = MemoryEnd::over;
        return false;
    }
    const bool fits = budget_.taken.fetch_add(more, std::memory_order_relaxed) + more <= limit;
    if (!fits && turn_.load(std::memory_order_acquire) != place_) {
        budget_.taken.fetch_sub(more, std::memory_order_relaxed);
        if (end_ == MemoryEnd::none) end_ = MemoryEnd::crowded;
        return false;
    }
    own_ += more;
    return true;
}

void MemoryAccount::giveBack(std::size_t size) {
    const auto less = static_cast<std::ptrdiff_t>(size);
    own_ -= less;
    budget_.taken.fetch_sub(less, std::memory_order_relaxed);
}

} // namespace kestrel
