#include "report/quantity.hpp"

#include "base/output.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrel {

namespace {

constexpr std::array<Prefix, 11> kPrefixes{{{1e-15, "f"},
                                            {1e-12, "p"},
                                            {1e-9, "n"},
                                            {1e-6, "\u00b5"},
                                            {1e-3, "m"},
                                            {1.0, ""},
                                            {1e3, "k"},
                                            {1e6, "M"},
                                            {1e9, "G"},
                                            {1e12, "T"},
                                            {1e15, ""}}};
constexpr std::size_t kNone = 5;
constexpr double kSmallest = 1e-15;
constexpr double kLargest = 1e15;

bool takesPrefix(std::string_view unit) { return unit != kCelsius && unit != "%"; }

/// The place of the prefix; that of none for what is beyond all of them.
std::size_t placeOfPrefix(double size) {
    if (!(size >= kSmallest * (1 - 1e-9)) || size >= kLargest) return kNone;
    std::size_t place = 0;
    // What lies below by no more than the error of a decimal fraction belongs to the larger prefix.
    while (place + 1 < kPrefixes.size() - 1 && size >= kPrefixes[place + 1].factor * (1 - 1e-9))
        ++place;
    return place;
}

/// A number that is not negative to so many significant digits, of which there are at most six.
double roundedTo(double number, int digits) {
    if (digits >= 6 || number >= 1000.0 || number < 0.1) return number;
    const int ahead = number < 1.0 ? 0 : number < 10.0 ? 1 : number < 100.0 ? 2 : 3;
    constexpr std::array<double, 6> kPowers{1.0, 10.0, 100.0, 1e3, 1e4, 1e5};
    const double power = kPowers[static_cast<std::size_t>(std::max(digits - ahead, 0))];
    return std::floor(number * power + 0.5) / power;
}

} // namespace

const Prefix& prefixOf(double value) { return kPrefixes[placeOfPrefix(std::abs(value))]; }

void appendQuantity(std::string& text, double value, std::string_view unit, int digits) {
    const double size = std::abs(value);
    if (std::signbit(value) && size != 0) text.append(kMinus);
    if (!std::isfinite(size)) {
        text.append(std::isnan(size) ? "?" : "\u221e").append("\u00a0").append(unit);
        return;
    }
    std::size_t place = takesPrefix(unit) ? placeOfPrefix(size) : kNone;
    double number = roundedTo(size / kPrefixes[place].factor, digits);
    // Rounding may carry it over.
    if (number >= 999.9995 && place + 2 < kPrefixes.size() && takesPrefix(unit) && size < kLargest) {
        ++place;
        number /= 1000.0;
    }
    appendGeneral(text, number);
    if (unit.empty() && kPrefixes[place].letter.empty()) return;
    text.append("\u00a0").append(kPrefixes[place].letter).append(unit);
}

std::string quantityText(double value, std::string_view unit, int digits) {
    std::string text;
    appendQuantity(text, value, unit, digits);
    return text;
}

} // namespace kestrel
