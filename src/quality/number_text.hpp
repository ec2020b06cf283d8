#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Numbers as engineers write them: three significant digits, or as many as are asked for, without trailing zeros, a
/// power of a thousand as its letter, and the unit: "1.79 V", "850 uA", "3.3 pF", "0 V".
namespace kestrel {

/// For messages and other plain text; or for pages, with the signs that print has for minus, micro and a blank at which
/// no line ends.
enum class NumberStyle : std::uint8_t { plain, printed };

inline constexpr std::string_view kMinus = "\u2212";    ///< of printed numbers
inline constexpr std::string_view kCelsius = "\u00b0C"; ///< takes no letters, as "%"

/// The letter of a unit that leaves one to three digits ahead of the point, from atto to tera, and the power of ten for
/// which it stands.
struct UnitPrefix {
    int power = 0;
    std::string_view letter{}; ///< none of 0 and what is beyond the letters
};
/// That of a value rounded to so many significant digits.
[[nodiscard]] UnitPrefix prefixOf(double value, NumberStyle style, int digits = 6);

/// Such a text. Takes no memory of its own, so that it can be made where it is used.
class NumberText {
public:
    NumberText(double value, std::string_view unit, int digits = kFewDigits, NumberStyle style = NumberStyle::plain);
    static constexpr int kFewDigits = 3;
    static constexpr int kAllDigits = 17; ///< no two numbers have the same text
    operator std::string_view() const { return {letters_.data(), length_}; }

private:
    void append(std::string_view text);

    std::array<char, 44> letters_{};
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
