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

void appendWrapped(std::string& to, std::string_view text, std::size_t width, std::size_t indent) {
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const bool is_kept = line.starts_with(' ');
        do {
            std::size_t end = is_kept || line.size() + indent <= width ? line.size() : line.rfind(' ', width - indent);
            if (end == std::string_view::npos) end = std::min(line.find(' '), line.size());
            if (end > 0) to.append(indent, ' ').append(stripTrailing(line.substr(0, end)));
            to.push_back('\n');
            line.remove_prefix(std::min(end + 1, line.size()));
        } while (!line.empty());
    }
}

void lowerCase(std::string& text) { std::ranges::transform(text, text.begin(), toLower); }

void upperCase(std::string& text) { std::ranges::transform(text, text.begin(), toUpper); }

} // namespace kestrel
