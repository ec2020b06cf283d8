#pragma once

#include "base/text.hpp"

#include <cstddef>
#include <string_view>

namespace kestrel {

/// `text` from its first character that is neither a space nor a TAB, however many there are.
constexpr std::string_view skipBlanks(std::string_view text) {
    std::size_t skipped = 0;
    while (skipped < text.size() && isBlank(text[skipped])) {
        ++skipped;
    }
    return text.substr(skipped);
}

/// Takes the next token off the front of `text`, which ends at a space or TAB; empty at the end of the text.
constexpr std::string_view takeToken(std::string_view& text) {
    text = skipBlanks(text);
    std::size_t length = 0;
    while (length < text.size() && !isBlank(text[length])) {
        ++length;
    }
    const std::string_view token = text.substr(0, length);
    text.remove_prefix(length);
    return token;
}

} // namespace kestrel
