#pragma once

#include <string>

namespace kestrel {
struct Ibis;
}

namespace kestrel::bench {

/// Every name and number of what was read from a generated file. Two texts are equal only when all of the numbers are,
/// to the last bit.
[[nodiscard]] std::string recordText(const Ibis& root);

} // namespace kestrel::bench
