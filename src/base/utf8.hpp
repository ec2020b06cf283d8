#pragma once

#include <cstdint>
#include <string_view>

namespace kestrel {

/// One character of a text that may be UTF-8, or one byte that does not begin any.
struct Character {
    std::string_view bytes;
    char32_t code; ///< U+FFFD when not valid
    bool valid;

    /// True for the characters that may steer a terminal: the control characters below the blank, DEL, and those from
    /// U+0080 to U+009F.
    [[nodiscard]] constexpr bool isControl() const { return code < 0x20 || (code >= 0x7f && code < 0xa0); }
};

/// Takes the first character off a text that is not empty. Overlong forms, surrogates and what is beyond U+10FFFF are
/// not valid; each byte of them counts by itself.
[[nodiscard]] Character takeCharacter(std::string_view& text);

inline constexpr std::string_view kReplacement = "\xef\xbf\xbd"; ///< U+FFFD in UTF-8

} // namespace kestrel
