#pragma once

#include "reader/corner.hpp"
#include "reader/values.hpp"

#include <string_view>

namespace kestrel {

struct Context;

/// Typical, minimum and maximum of one quantity, in its own unit.
using Rng = PerCorner<Cell>;

/// Whether a range reader warns of a typical value outside minimum and maximum.
enum class OrderCheck : bool { off, on };

/// Reads "typ min max". True when every cell present could be read; `range` is filled as far as that went in any case.
bool readRange(Context& context, std::string_view text, std::string_view quantity, Rng& range, OrderCheck check);

/// True when one of the numbers is negative.
[[nodiscard]] bool anyBelowZero(const Rng& range);

} // namespace kestrel
