#pragma once

#include "diagnostics/catalog.hpp"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace kestrel {

/// What a conversion of a message text takes: %s, %c, %d, %u or %x, and %g or %e, in this order.
enum class ArgKind : std::uint8_t { text, character, integer, unsignedInteger, real };

/// The kind as which a C++ type is passed to a message. A C string, a bool or a pointer is none.
template <class T> consteval ArgKind argKind() {
    using U = std::remove_cvref_t<T>;
    static_assert(!std::is_same_v<U, bool>, "a message takes no bool");
    static_assert(!std::is_pointer_v<U>, "a message takes no pointer; pass a view");
    if constexpr (std::is_same_v<U, char>) {
        return ArgKind::character;
    } else if constexpr (std::is_floating_point_v<U>) {
        return ArgKind::real;
    } else if constexpr (std::is_integral_v<U>) {
        return std::is_signed_v<U> ? ArgKind::integer : ArgKind::unsignedInteger;
    } else {
        static_assert(std::convertible_to<U, std::string_view>, "not an argument of a message");
        return ArgKind::text;
    }
}

/// One argument of a message; text is viewed, not copied.
class Arg {
public:
    template <class T>
    requires(!std::is_same_v<T, Arg>) explicit constexpr Arg(const T& value) : kind(argKind<T>()) {
        if constexpr (argKind<T>() == ArgKind::text) {
            text = value;
        } else if constexpr (argKind<T>() == ArgKind::real) {
            real = value;
        } else if constexpr (argKind<T>() == ArgKind::character) {
            character = value;
        } else {
            integer = static_cast<std::int64_t>(value);
        }
    }

    ArgKind kind;
    char character = 0;
    std::int64_t integer = 0;
    double real = 0.0;
    std::string_view text;
};

namespace message_check {

// Declared only: the check calls one of them when a message is wrong, and the compiler quotes its name.
void noSuchMessageCode();
void messageIsReserved();
void tooFewArgumentsForMessageText();
void tooManyArgumentsForMessageText();
void wrongArgumentTypeForMessageText();
void unknownConversionInMessageText();

/// The kind that a conversion letter takes.
constexpr ArgKind kindOfConversion(char letter) {
    switch (letter) {
    case 's': return ArgKind::text;
    case 'c': return ArgKind::character;
    case 'd': return ArgKind::integer;
    case 'u':
    case 'x': return ArgKind::unsignedInteger;
    case 'g':
    case 'e': return ArgKind::real;
    default: unknownConversionInMessageText(); return ArgKind::text;
    }
}

/// Compares the conversions of `text` with the kinds of the arguments.
template <ArgKind... Kinds> constexpr void checkText(std::string_view text) {
    constexpr std::size_t kCount = sizeof...(Kinds);
    const ArgKind kinds[kCount + 1] = {Kinds..., ArgKind::text};
    std::size_t used = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') continue;
        if (++i == text.size()) unknownConversionInMessageText();
        const ArgKind wanted = kindOfConversion(text[i]);
        if (used == kCount) return tooFewArgumentsForMessageText();
        if (kinds[used++] != wanted) wrongArgumentTypeForMessageText();
    }
    if (used != kCount) tooManyArgumentsForMessageText();
}

/// Every conversion of the catalog is one that the renderer knows; asserted once, where the renderer is.
consteval bool allConversionsKnown() {
    for (const MessageRow& row : kCatalog) {
        for (std::size_t i = 0; i < row.text.size(); ++i) {
            if (row.text[i] == '%') kindOfConversion(row.text[++i]);
        }
    }
    return true;
}

} // namespace message_check

/// The place of `code` in the catalog, or the catalog's size when there is none.
constexpr std::size_t catalogIndex(MessageCode code) {
    std::size_t low = 0;
    std::size_t high = kCatalog.size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (kCatalog[middle].code == code) return middle;
        if (code < kCatalog[middle].code) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return kCatalog.size();
}

inline constexpr std::string_view kReservedText = "Reserved.";

/// A catalog row proved to take arguments of `Kinds`; made from a code when compiled. A code that is not in the
/// catalog, a reserved one, or one whose text takes other arguments does not compile.
template <ArgKind... Kinds> struct CheckedMessage {
    consteval CheckedMessage(MessageCode code) : row(static_cast<std::uint16_t>(catalogIndex(code))) {
        if (row == kCatalog.size()) message_check::noSuchMessageCode();
        if (kCatalog[row].text == kReservedText) message_check::messageIsReserved();
        message_check::checkText<Kinds...>(kCatalog[row].text);
    }
    std::uint16_t row;
};

/// A free text proved to take arguments of `Kinds`.
template <ArgKind... Kinds> struct CheckedText {
    template <std::size_t Size> consteval CheckedText(const char (&literal)[Size]) : text(literal, Size - 1) {
        message_check::checkText<Kinds...>(text);
    }
    std::string_view text;
};

} // namespace kestrel
