#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// Numbers as engineers write them: three significant digits, or as many as are asked for, without trailing zeros, a
/// power of a thousand as its letter, and the unit: "1.79 V", "850 uA", "3.3 pF", "0 V".
namespace kestrel {

/// Such a text. Takes no memory of its own, so that it can be made where it is used.
class NumberText {
public:
    NumberText(double value, std::string_view unit, int digits = kFewDigits);
    static constexpr int kFewDigits = 3;
    static constexpr int kAllDigits = 17; ///< no two numbers have the same text
    operator std::string_view() const { return {letters_.data(), length_}; }

private:
    void append(std::string_view text);

    std::array<char, 40> letters_{};
    std::size_t length_ = 0;
};

[[nodiscard]] inline NumberText volts(double value) { return {value, "V"}; }
[[nodiscard]] inline NumberText amperes(double value) { return {value, "A"}; }
[[nodiscard]] inline NumberText ohms(double value) { return {value, "ohm"}; }
[[nodiscard]] inline NumberText farads(double value) { return {value, "F"}; }
[[nodiscard]] inline NumberText henries(double value) { return {value, "H"}; }
[[nodiscard]] inline NumberText seconds(double value) { return {value, "s"}; }
/// A slew, given in volts per second.
[[nodiscard]] inline NumberText slew(double value) { return {value * 1e-9, "V/ns"}; }
/// A level of a DC solution or of a waveform: what is below a microvolt is 0.
[[nodiscard]] inline NumberText level(double value) {
    constexpr double kNothing = 1e-6;
    return volts(value < kNothing && value > -kNothing ? 0.0 : value);
}
/// A number without a unit and without letters for powers, to three significant digits.
[[nodiscard]] NumberText plainNumber(double value);

} // namespace kestrel
