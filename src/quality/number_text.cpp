#include "quality/number_text.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kestrel {

namespace {

constexpr std::string_view kLetters = "afpnum kMGT";
constexpr int kUnity = 6; // place of the blank, which is no letter

/// A number rounded to some significant digits: sign, digits, and the power of ten of the first one.
struct Rounded {
    bool negative;
    std::array<char, NumberText::kAllDigits> digits;
    int power;
};

/// To three digits at least.
Rounded roundedTo(double value, int digits) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                   std::chars_format::scientific, digits - 1);
    // As "1.79e-03".
    Rounded result{std::signbit(value), {text[0]}, 0};
    std::copy_n(text.begin() + 2, digits - 1, result.digits.begin() + 1);
    const char* from = text.data() + digits + 2;
    if (*from == '+') ++from;
    std::from_chars(from, end.ptr, result.power);
    return result;
}

} // namespace

void NumberText::append(std::string_view text) {
    const std::size_t count = std::min(text.size(), letters_.size() - length_);
    std::copy_n(text.begin(), count, letters_.begin() + static_cast<std::ptrdiff_t>(length_));
    length_ += count;
}

NumberText::NumberText(double value, std::string_view unit, int digits) {
    const bool written = std::isfinite(value) && value != 0.0;
    const Rounded number = written ? roundedTo(value, digits) : Rounded{};
    // Thousands, counted from unity; the first digit has one to three digits ahead of the point.
    const int thousands = written ? (number.power >= 0 ? number.power / 3 : -((2 - number.power) / 3)) : 0;
    const int letter = kUnity + thousands;
    const bool has_letter = letter >= 0 && letter < static_cast<int>(kLetters.size());
    if (!written || !has_letter || unit.empty()) {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), value == 0.0 ? 0.0 : value,
                                       std::chars_format::general, digits);
        append({text.data(), end.ptr});
    } else {
        if (number.negative) append("-");
        const auto ahead = static_cast<std::size_t>(number.power - 3 * thousands + 1);
        auto used = static_cast<std::size_t>(digits);
        while (used > ahead && number.digits[used - 1] == '0')
            --used;
        append({number.digits.data(), ahead});
        if (used > ahead) {
            append(".");
            append({number.digits.data() + ahead, used - ahead});
        }
    }
    if (unit.empty()) return;
    append(" ");
    if (written && has_letter && letter != kUnity) append(kLetters.substr(static_cast<std::size_t>(letter), 1));
    append(unit);
}

NumberText plainNumber(double value) { return {value, ""}; }

} // namespace kestrel
