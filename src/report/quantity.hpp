#pragma once

#include <string>
#include <string_view>

namespace kestrel {

/// A prefix of units: what it multiplies by, and its letter.
struct Prefix {
    double factor;
    std::string_view letter;
};

/// The prefix that leaves one to three digits ahead of the point, from femto to tera; none for 0 and what is beyond.
[[nodiscard]] const Prefix& prefixOf(double value);

/// Appends a number with its unit, as "-3.3 V", "2.9 nH": at most `digits` significant ones. Units such as "%" and
/// degrees take no prefix.
void appendQuantity(std::string& text, double value, std::string_view unit, int digits = 6);
[[nodiscard]] std::string quantityText(double value, std::string_view unit, int digits = 6);

/// The sign of negative numbers.
inline constexpr std::string_view kMinus = "\u2212";
inline constexpr std::string_view kOhm = "\u03a9";
inline constexpr std::string_view kCelsius = "\u00b0C";

} // namespace kestrel
