#include "base/text.hpp"

#include <algorithm>

namespace kestrel {

std::string_view stripTrailing(std::string_view text) {
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view trim(std::string_view text) {
    text = stripTrailing(text);
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

bool isSameNoCase(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, {}, toLower, toLower); }

bool prefixEqualsNoCase(std::string_view a, std::string_view b, std::size_t count) {
    return equalsNoCase(a.substr(0, count), b.substr(0, count));
}

void lowerCase(std::string& text) { std::ranges::transform(text, text.begin(), toLower); }

void upperCase(std::string& text) { std::ranges::transform(text, text.begin(), toUpper); }

} // namespace kestrel
