#include "main/memory_limit.hpp"

#include <chrono>
#include <thread>
#include <utility>

namespace kestrel {

MemoryAccount::~MemoryAccount() {
    budget_.taken.fetch_sub(own_, std::memory_order_relaxed);
    if (others_ended_) budget_.only_first.store(false, std::memory_order_relaxed);
}

bool MemoryAccount::take(std::size_t size) {
    const auto limit = static_cast<std::ptrdiff_t>(budget_.limit);
    const auto more = static_cast<std::ptrdiff_t>(size);
    if (more > limit - own_) {
        end_ = MemoryEnd::over;
        return false;
    }
    const bool fits = budget_.taken.fetch_add(more, std::memory_order_relaxed) + more <= limit &&
                      !budget_.only_first.load(std::memory_order_relaxed);
    if (!fits && !goesFirst()) {
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

bool MemoryAccount::awaitOthers() {
    using namespace std::chrono_literals;
    if (!goesFirst()) {
        if (end_ == MemoryEnd::none) end_ = MemoryEnd::refused;
        return false;
    }
    if (std::exchange(others_ended_, true)) return false;
    budget_.only_first.store(true, std::memory_order_relaxed);
    // They end when they take something next. One that does not, as it waits for a lock that this one holds, is not
    // waited for.
    for (int i = 0; i < 500 && budget_.taken.load(std::memory_order_relaxed) > own_; ++i)
        std::this_thread::sleep_for(1ms);
    return true;
}

} // namespace kestrel
