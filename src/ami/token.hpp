#pragma once

#include "base/text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace kestrel {

enum class TokenKind : std::uint8_t { open, close, word, string, end };

struct Token {
    TokenKind kind;
    std::string_view text; ///< of a string: what is between its quotes

    /// A word or a string.
    [[nodiscard]] bool isText() const { return kind == TokenKind::word || kind == TokenKind::string; }
};

/// By character: true of what ends a word.
inline constexpr std::array<bool, 256> kEndsWord = [] {
    std::array<bool, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const char c = static_cast<char>(i);
        table[i] = isSpace(c) || c == '(' || c == ')' || c == '"';
    }
    return table;
}();

/// The word at the beginning of a text.
[[nodiscard]] inline std::string_view firstWord(std::string_view text) {
    const auto end = std::ranges::find_if(text, [](char c) { return kEndsWord[static_cast<unsigned char>(c)]; });
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

/// Cuts a text into tokens, one after the other.
class Scanner {
public:
    Scanner() = default;
    explicit Scanner(std::string_view text) : rest_(text) {}

    Token next() {
        const auto blanks = static_cast<std::size_t>(std::ranges::find_if_not(rest_, isSpace) - rest_.begin());
        take(blanks);
        if (rest_.empty()) return {TokenKind::end, rest_};
        switch (rest_.front()) {
        case '(': return {TokenKind::open, take(1)};
        case ')': return {TokenKind::close, take(1)};
        case '"': {
            take(1);
            const std::string_view text = take(std::min(rest_.find('"'), rest_.size()));
            take(std::min<std::size_t>(1, rest_.size())); // a string that is left open has no second quote
            return {TokenKind::string, text};
        }
        default: return {TokenKind::word, take(firstWord(rest_).size())};
        }
    }

    /// What was not cut yet.
    [[nodiscard]] std::string_view rest() const { return rest_; }

private:
    std::string_view take(std::size_t count) {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

    std::string_view rest_;
};

} // namespace kestrel
