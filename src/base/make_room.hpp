#pragma once

#include <cstddef>
#include <new>

namespace kestrel {

/// Spares a text or list its growth. Where there is no memory for that, it grows as far as it can.
template <class Container> void makeRoom(Container& container, std::size_t size) {
    try {
        container.reserve(size);
    } catch (const std::bad_alloc&) {
        return;
    }
}

} // namespace kestrel
