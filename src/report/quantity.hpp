#pragma once

#include "quality/number_text.hpp"

#include <string>
#include <string_view>

namespace kestrel {

inline constexpr std::string_view kOhm = "\u03a9";

/// Appends a number with its unit as pages have them, with as many significant digits at most.
inline void appendQuantity(std::string& text, double value, std::string_view unit, int digits = 6) {
    text.append(NumberText(value, unit, digits, NumberStyle::printed));
}
[[nodiscard]] inline std::string quantityText(double value, std::string_view unit, int digits = 6) {
    return std::string(NumberText(value, unit, digits, NumberStyle::printed));
}

/// A text of a message with true minus signs ahead of its numbers; what it quotes stays as it reads.
[[nodiscard]] inline std::string withMinusSigns(std::string_view message) {
    std::string text;
    char quote = 0;
    char before = ' ';
    for (std::size_t i = 0; i < message.size(); ++i) {
        const char c = message[i];
        if (quote == 0 ? c == '"' || c == '\'' : c == quote) quote = quote == 0 ? c : '\0';
        const bool is_number = i + 1 < message.size() && message[i + 1] >= '0' && message[i + 1] <= '9';
        if (c == '-' && quote == 0 && is_number && (before == ' ' || before == '(')) {
            text.append(kMinus);
        } else {
            text.push_back(c);
        }
        before = c;
    }
    return text;
}

} // namespace kestrel
