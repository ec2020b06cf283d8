#pragma once

#include <cstdint>

namespace kestrel {

/// A number as some digits, of which the first is not 0, and the power of ten of that one.
struct RoundedDigits {
    std::uint32_t digits = 0;
    int exponent = 0;
};

/// Rounds a number above 0 to `count` digits, six at most, by a short way: it is scaled so that they are ahead of the
/// point, which errs by no more than a billionth. False for one that lies so near the middle of two results, or is so
/// large or small, that it has to go a long way.
[[nodiscard]] bool roundToDigits(double magnitude, int count, RoundedDigits& rounded);

/// Room for a number in general form.
inline constexpr int kGeneralFormRoom = 16;

/// Writes a number as "%g" prints it, by the short way. Returns where it ends, or null for one that has to go the long
/// way. Printing tables takes half of the time.
[[nodiscard]] char* writeShortGeneralForm(char* to, double value);

} // namespace kestrel
