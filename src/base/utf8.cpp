#include "base/utf8.hpp"

#include <cstddef>

namespace kestrel {

namespace {

constexpr std::uint8_t byteOf(char c) { return static_cast<std::uint8_t>(c); }

/// The bytes that follow a first byte, by its high bits; 0 for one that begins no longer character.
constexpr std::size_t followers(std::uint8_t first) {
    if (first >= 0xf0 && first < 0xf8) return 3;
    if (first >= 0xe0 && first < 0xf0) return 2;
    if (first >= 0xc0 && first < 0xe0) return 1;
    return 0;
}

constexpr bool isCode(char32_t code, std::size_t following) {
    constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    return code >= kLeast[following] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
}

} // namespace

Character takeCharacter(std::string_view& text) {
    constexpr char32_t kUnknown = 0xfffd;
    const std::uint8_t first = byteOf(text.front());
    const std::size_t following = followers(first);
    bool valid = first < 0x80;
    char32_t code = valid ? first : kUnknown;
    if (following > 0 && text.size() > following) {
        code = first & (0x3fU >> following);
        valid = true;
        for (const char c : text.substr(1, following)) {
            valid = valid && (byteOf(c) & 0xc0U) == 0x80;
            code = code << 6U | (byteOf(c) & 0x3fU);
        }
        valid = valid && isCode(code, following);
    }
    const std::string_view bytes = text.substr(0, valid ? following + 1 : 1);
    text.remove_prefix(bytes.size());
    return {bytes, valid ? code : kUnknown, valid};
}

} // namespace kestrel
