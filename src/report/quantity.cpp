#include "report/quantity.hpp"

#include <array>
#include <charconv>
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
    std::array<char, 40> room{};
    const auto write = [&] {
        const auto end = std::to_chars(room.data(), room.data() + room.size(), size / kPrefixes[place].factor,
                                       std::chars_format::general, digits);
        return std::string_view(room.data(), static_cast<std::size_t>(end.ptr - room.data()));
    };
    std::string_view number = write();
    // Rounding may have carried it over.
    if (number == "1000" || number.starts_with("1e+")) {
        if (place != kNone || size < kLargest) {
            if (place + 2 < kPrefixes.size() && takesPrefix(unit)) ++place;
        }
        number = write();
    }
    text.append(number);
    if (unit.empty() && kPrefixes[place].letter.empty()) return;
    text.append("\u00a0").append(kPrefixes[place].letter).append(unit);
}

std::string quantityText(double value, std::string_view unit, int digits) {
    std::string text;
    appendQuantity(text, value, unit, digits);
    return text;
}

} // namespace kestrel
