#pragma once

#include "quality/number_text.hpp"

#include <string>
#include <string_view>

namespace kestrel {

inline constexpr std::string_view kOhm = "\u03a9";

/// Appends a number with its unit as pages have them, with as many significant digits at most.
inline void appendQuantity(std::string& text, double value, std::string_view unit, int digits = 6) {
    text.append(NumberText(value, unit, digits, NumberStyle::printed));
}
[[nodiscard]] inline std::string quantityText(double value, std::string_view unit, int digits = 6) {
    return std::string(NumberText(value, unit, digits, NumberStyle::printed));
}

} // namespace kestrel
