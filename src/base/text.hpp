#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel {

/// True for the characters that the C library counts as white space.
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
/// The characters between the items of a line.
constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool isLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool isAlpha(char c) { return isUpper(c) || isLower(c); }
constexpr char toLower(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr char toUpper(char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

/// `text` without trailing white space, however much there is.
[[nodiscard]] std::string_view stripTrailing(std::string_view text);

/// `text` without white space at either end, unbounded.
[[nodiscard]] std::string_view trim(std::string_view text);

/// True when texts of equal length are the same but for the case of letters.
[[nodiscard]] bool isSameNoCase(std::string_view a, std::string_view b);

/// True when both texts are the same but for the case of letters.
[[nodiscard]] inline bool equalsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && isSameNoCase(a, b);
}

/// The order in which numbered names usually come: shorter ones first, those of one length by their characters.
[[nodiscard]] inline bool isBefore(std::string_view a, std::string_view b) {
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

/// True when the first `count` characters agree but for case, or both texts end together before that.
[[nodiscard]] bool prefixEqualsNoCase(std::string_view a, std::string_view b, std::size_t count);

/// Appends `text` in lines of at most `width` characters, each behind `indent` blanks. Its own lines begin anew; one
/// that begins with a blank is kept as it is, as is a word that is too long.
void appendWrapped(std::string& to, std::string_view text, std::size_t width, std::size_t indent = 0);

void lowerCase(std::string& text);
void upperCase(std::string& text);

} // namespace kestrel
