#pragma once

#include "base/powers.hpp"
#include "base/text.hpp"
#include "reader/values.hpp"

#include <array>
#include <cfloat>
#include <cstdint>

namespace kestrel {

/// Reads the decimal number at the front of a text by a short way, for the numbers that people write: at most 18 digits
/// that make an integer of at most 53 bits, and a power of ten within 22 either way. Both are exact as doubles, so that
/// one multiplication or division rounds right. Returns where the number ends, or null for a text that has to go the
/// long way, which gives the same value wherever this one gives any. Half of the time of reading a table was
/// std::from_chars. `end` is std::unreachable_sentinel where a character that no number has is known to follow, here
/// and below.
template <class End> [[nodiscard]] const char* readShortDecimal(const char* at, End end, double& value) {
    if constexpr (FLT_EVAL_METHOD != 0) return nullptr; // there results are rounded twice
    constexpr std::uint64_t kMostExact = std::uint64_t{1} << DBL_MANT_DIG;
    constexpr std::ptrdiff_t kMostDigits = 18; // no more fit into the integer whatever they are
    constexpr std::ptrdiff_t kMostPower = kLargestExactPower;

    std::uint64_t digits = 0;
    const auto take_digits = [&at, end, &digits] {
        const char* const first = at;
        for (; at != end && isDigit(*at); ++at) {
            digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
        }
        return at - first;
    };
    const bool negative = at != end && *at == '-';
    if (negative || (at != end && *at == '+')) ++at;
    std::ptrdiff_t count = take_digits();
    std::ptrdiff_t power = 0;
    if (at != end && *at == '.') {
        ++at;
        power = -take_digits();
        count -= power;
    }
    if (count == 0 || count > kMostDigits || digits > kMostExact) return nullptr;
    if (at != end && (*at == 'e' || *at == 'E')) {
        ++at;
        const bool down = at != end && *at == '-';
        if (down || (at != end && *at == '+')) ++at;
        std::ptrdiff_t exponent = 0;
        const char* const first = at;
        for (; at != end && isDigit(*at); ++at) {
            exponent = exponent * 10 + (*at - '0');
            if (exponent > 2 * kMostPower) return nullptr;
        }
        if (at == first) return nullptr; // what looks like an exponent is a unit
        power += down ? -exponent : exponent;
    }
    if (power < -kMostPower || power > kMostPower) return nullptr;
    const auto whole = static_cast<double>(digits);
    const double magnitude = power < 0 ? whole / kExactPowers[static_cast<std::size_t>(-power)]
                                       : whole * kExactPowers[static_cast<std::size_t>(power)];
    value = negative ? -magnitude : magnitude;
    return at;
}

/// What a letter behind a number multiplies it with, by its code: 1 for one that is a unit.
inline constexpr std::array<double, 128> kScaleFactors = [] {
    std::array<double, 128> factors{};
    factors.fill(1.0);
    factors['T'] = 1e12;
    factors['G'] = 1e9;
    factors['M'] = 1e6;
    factors['k'] = 1e3;
    factors['m'] = 1e-3;
    factors['u'] = 1e-6;
    factors['n'] = 1e-9;
    factors['p'] = 1e-12;
    factors['f'] = 1e-15;
    return factors;
}();
[[nodiscard]] inline double scaleFactor(char letter) { return kScaleFactors[static_cast<unsigned char>(letter)]; }

/// Reads the scaled number at the front of a text when it is a plain one: a number of the short way, with or without
/// letters behind it. Returns where it ends, or null for any other.
template <class End> [[nodiscard]] const char* readPlainNumber(const char* at, End end, double& value) {
    at = readShortDecimal(at, end, value);
    if (at == nullptr || at == end || !isAlpha(*at)) return at;
    value *= scaleFactor(*at);
    while (at != end && isAlpha(*at)) {
        ++at;
    }
    return at;
}

/// The same for a cell, which may also be "NA".
template <class End> [[nodiscard]] const char* readPlainCell(const char* at, End end, Cell& cell) {
    double value = 0.0;
    if (const char* const number_end = readPlainNumber(at, end, value)) {
        cell = Cell(value);
        return number_end;
    }
    if (at == end || toUpper(*at) != 'N') return nullptr;
    ++at;
    if (at == end || toUpper(*at) != 'A') return nullptr;
    cell = Cell::na();
    return at + 1;
}

} // namespace kestrel
