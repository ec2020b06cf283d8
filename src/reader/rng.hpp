#pragma once

#include "reader/values.hpp"

#include <array>
#include <string_view>

namespace kestrel {

struct Context;

/// The words for typical, minimum and maximum: of values that stand in the file, and of values that are missing.
inline constexpr std::array<std::string_view, 3> kCornerWords{"Typical", "Minimum", "Maximum"};
inline constexpr std::array<std::string_view, 3> kMissingCornerWords{"typical", "minimum", "maximum"};

/// Typical, minimum and maximum of one quantity, in its own unit.
struct Rng {
    Cell typ;
    Cell min;
    Cell max;
};

/// Whether a range reader warns (3903) of a typical value outside minimum and maximum.
enum class OrderCheck : bool { off, on };

/// Reads "typ min max". Reports 3901 and 3902 (wrong number of items), what readCell reports under "Typical", "Minimum"
/// and "Maximum", and 3903. True when every cell present could be read; `range` is filled as far as that went in any
/// case.
bool readRange(Context& context, std::string_view text, std::string_view quantity, Rng& range, OrderCheck check);

/// True when one of the numbers is negative.
[[nodiscard]] bool anyBelowZero(const Rng& range);

} // namespace kestrel
