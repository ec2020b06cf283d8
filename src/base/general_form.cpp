#include "base/general_form.hpp"

#include "base/powers.hpp"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestrel {

namespace {

constexpr int kDigits = 6;

/// `magnitude` with the decimal point behind its last digit of `count`, if `exponent` is that of its first.
double scaled(double magnitude, int count, int exponent) {
    const int power = count - 1 - exponent;
    return power < 0 ? magnitude / kExactPowers[static_cast<std::size_t>(-power)]
                     : magnitude * kExactPowers[static_cast<std::size_t>(power)];
}

/// Powers of ten that are not exact are refused.
inline bool roundShort(double magnitude, int count, RoundedDigits& rounded) {
    constexpr double kSafe = 0.5 - 1e-9; // scaling errs by 2^-53 of a million at the most
    const double beyond = kExactPowers[static_cast<std::size_t>(count)];
    const int highest = kLargestExactPower + count - 2; // one less than there are, for the step below
    const int lowest = count - 1 - kLargestExactPower + 1;
    // The binary exponent tells the decimal one, or one below.
    const int binary = static_cast<int>(std::bit_cast<std::uint64_t>(magnitude) >> 52) - 1023;
    int exponent = (binary * 1233) >> 12;
    if (exponent < lowest || exponent >= highest) return false;
    double number = scaled(magnitude, count, exponent);
    if (number >= beyond) number = scaled(magnitude, count, ++exponent);
    const double whole = std::nearbyint(number);
    if (number < kExactPowers[static_cast<std::size_t>(count - 1)] || std::abs(number - whole) > kSafe) return false;
    rounded = {static_cast<std::uint32_t>(whole), exponent};
    if (whole == beyond) rounded = {rounded.digits / 10, exponent + 1};
    return true;
}

/// The digits without zeros at the end.
int significant(const std::array<char, kDigits>& digits) {
    int count = kDigits;
    while (digits[static_cast<std::size_t>(count) - 1] == '0') {
        --count;
    }
    return count;
}

char* append(char* to, const char* from, int count) {
    std::memcpy(to, from, static_cast<std::size_t>(count));
    return to + count;
}

char* appendZeros(char* to, int count) {
    std::memset(to, '0', static_cast<std::size_t>(count));
    return to + count;
}

} // namespace

bool roundToDigits(double magnitude, int count, RoundedDigits& rounded) {
    return roundShort(magnitude, count, rounded);
}

char* writeShortGeneralForm(char* to, double value) {
    if (std::signbit(value)) *to++ = '-';
    if (value == 0.0) {
        *to = '0';
        return to + 1;
    }
    RoundedDigits rounded;
    if (!roundShort(std::abs(value), kDigits, rounded)) return nullptr;
    std::array<char, kDigits> digits{};
    for (std::size_t i = kDigits; i > 0; --i, rounded.digits /= 10) {
        digits[i - 1] = static_cast<char>('0' + rounded.digits % 10);
    }
    const int count = significant(digits);
    const int exponent = rounded.exponent;
    if (exponent < -4 || exponent >= kDigits) {
        *to++ = digits[0];
        if (count > 1) *to++ = '.';
        to = append(to, digits.data() + 1, count - 1);
        *to++ = 'e';
        *to++ = exponent < 0 ? '-' : '+';
        const int power = std::abs(exponent); // of two digits, both of which are written
        *to++ = static_cast<char>('0' + power / 10);
        *to++ = static_cast<char>('0' + power % 10);
        return to;
    }
    if (exponent < 0) {
        to = append(to, "0.", 2);
        to = appendZeros(to, -exponent - 1);
        return append(to, digits.data(), count);
    }
    const int ahead = exponent + 1; // digits ahead of the point
    to = append(to, digits.data(), ahead);
    if (count <= ahead) return to;
    *to++ = '.';
    return append(to, digits.data() + ahead, count - ahead);
}

} // namespace kestrel
