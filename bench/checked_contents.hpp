#pragma once

#include "text_writer.hpp"

namespace kestrel {
struct Ibis;
}

namespace kestrel::bench {

/// What the checker made of a file.
[[nodiscard]] Contents contentsOf(const Ibis& root);

} // namespace kestrel::bench
