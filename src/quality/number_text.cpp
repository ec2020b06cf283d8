#include "quality/number_text.hpp"

#include "base/general_form.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 11> kLetters{"a", "f", "p", "n", "u", "m", "", "k", "M", "G", "T"};
constexpr int kUnity = 6; // place of the one without a letter
constexpr int kMicro = 4;

constexpr std::size_t kMostAhead = 3; // of the point

/// A number that is neither 0 nor infinite, rounded to some significant digits: the digits, with zeros behind them, and
/// the power of ten of the first one.
struct Rounded {
    std::array<char, kMostAhead + NumberText::kAllDigits> digits;
    int power = 0;

    Rounded() { digits.fill('0'); }
};

Rounded roundedTo(double value, int digits) {
    constexpr int kMostOfShortWay = 6;
    RoundedDigits rounded;
    if (digits <= kMostOfShortWay && roundToDigits(std::fabs(value), digits, rounded)) {
        Rounded result;
        result.power = rounded.exponent;
        for (int place = digits - 1; place >= 0; --place, rounded.digits /= 10)
            result.digits[static_cast<std::size_t>(place)] = static_cast<char>('0' + rounded.digits % 10);
        return result;
    }
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                   std::chars_format::scientific, digits - 1);
    // As "1.79e-03", or "2e-03".
    Rounded result;
    result.digits.front() = text.front();
    if (digits > 1) std::copy_n(text.begin() + 2, digits - 1, result.digits.begin() + 1);
    const char* from = text.data() + (digits > 1 ? digits + 2 : 2);
    if (*from == '+') ++from;
    std::from_chars(from, end.ptr, result.power);
    return result;
}

bool takesLetters(std::string_view unit) { return !unit.empty() && unit != kCelsius && unit != "%"; }

/// The letter for a number whose first digit has this power of ten; null where there is none.
std::optional<UnitPrefix> prefixOfPower(int power, NumberStyle style) {
    const int thousands = power >= 0 ? power / 3 : -((2 - power) / 3);
    const int place = kUnity + thousands;
    if (place < 0 || place >= static_cast<int>(kLetters.size())) return std::nullopt;
    const bool is_micro = place == kMicro && style == NumberStyle::printed;
    return UnitPrefix{3 * thousands, is_micro ? "\u00b5" : kLetters[static_cast<std::size_t>(place)]};
}

} // namespace

UnitPrefix prefixOf(double value, NumberStyle style, int digits) {
    if (!std::isfinite(value) || value == 0.0) return {};
    return prefixOfPower(roundedTo(value, digits).power, style).value_or(UnitPrefix{});
}

void NumberText::append(std::string_view text) {
    const std::size_t count = std::min(text.size(), letters_.size() - length_);
    std::copy_n(text.begin(), count, letters_.begin() + static_cast<std::ptrdiff_t>(length_));
    length_ += count;
}

NumberText::NumberText(double value, std::string_view unit, int digits, NumberStyle style) {
    const bool printed = style == NumberStyle::printed;
    if (value < 0.0) append(printed ? kMinus : "-");
    const double size = std::fabs(value);
    std::optional<UnitPrefix> prefix;
    constexpr double kSmallestPlain = 1.0; // of numbers without letters that are written in the same way
    constexpr double kBeyondPlain = 1000.0;
    const bool takes_letters = takesLetters(unit);
    if (std::isfinite(value) && value != 0.0 && (takes_letters || (size >= kSmallestPlain && size < kBeyondPlain))) {
        const Rounded number = roundedTo(size, digits);
        if (takes_letters) {
            prefix = prefixOfPower(number.power, style);
        } else if (number.power < std::min(digits, static_cast<int>(kMostAhead))) {
            prefix = UnitPrefix();
        }
        if (prefix) {
            const auto ahead = static_cast<std::size_t>(number.power - prefix->power + 1);
            auto used = static_cast<std::size_t>(digits);
            while (used > ahead && number.digits[used - 1] == '0')
                --used;
            // A size that is known is copied without a call; what is too much is overwritten.
            char* const to = letters_.data() + length_;
            std::memcpy(to, number.digits.data(), kMostAhead);
            length_ += ahead;
            if (used > ahead) {
                to[ahead] = '.';
                std::memcpy(to + ahead + 1, number.digits.data() + ahead, kAllDigits);
                length_ += 1 + used - ahead;
            }
        }
    }
    if (!prefix && printed && !std::isfinite(value)) {
        append(std::isnan(value) ? "?" : "\u221e");
    } else if (!prefix) {
        std::array<char, 32> text;
        const auto end =
            std::to_chars(text.data(), text.data() + text.size(), size, std::chars_format::general, digits);
        append({text.data(), end.ptr});
    }
    if (unit.empty()) return;
    append(printed ? "\u00a0" : " ");
    if (prefix) append(prefix->letter);
    append(unit);
}

NumberText plainNumber(double value) { return {value, ""}; }

} // namespace kestrel
