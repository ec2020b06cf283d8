#include "reader/items.hpp"

#include "reader/context.hpp"

#include <bit>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

namespace {

/// The first character from `at` on that is no white space. Too much of that is an assertion failure outside long-line
/// mode.
const char* skipSpaces(const Context& context, const char* at, const char* end) {
    const char* const begin = at;
    while (at != end && isSpace(*at)) {
        ++at;
    }
    if (at - begin > kMaxSkip && !context.parse.long_lines) assertionFailed(context.out, here());
    return at;
}

/// Where the item that begins at `at`, which is not the end, ends. The split character is an item of length 1.
const char* itemEnd(const char* at, const char* end, char split) {
    const char* const begin = at;
    while (at != end && *at != ' ' && *at != '\t' && *at != split) {
        ++at;
    }
    return at == begin ? at + 1 : at;
}

/// Without a split character the blank takes its place: it ends an item anyway and never begins one.
constexpr char stopFor(char split) { return split == '\0' ? ' ' : split; }

/// Cuts a line into items one character after the other, also for processors without wide compares.
ItemList splitByCharacters(const Context& context, std::string_view text, int max, char split) {
    const char stop = stopFor(split);
    const char* const end = text.data() + text.size();
    ItemList list;
    for (const char* at = skipSpaces(context, text.data(), end); at != end; at = skipSpaces(context, at, end)) {
        const char* const item = at;
        at = itemEnd(item, end, stop);
        list.add({item, at}, max);
    }
    return list;
}

#if defined(__SSE2__)
/// What ends items among sixteen characters, a bit for each, the first in the lowest.
struct Stops {
    std::uint32_t blanks;
    std::uint32_t splits;
};

Stops stopsOfSixteen(const char* at, char split) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const auto bits_of = [characters](char c) {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_set1_epi8(c))));
    };
    return {bits_of(' ') | bits_of('\t'), split == '\0' ? 0 : bits_of(split)};
}

/// The same for the characters of a text from `at` on, without reading outside of it. What is beyond its end counts as
/// blank.
Stops stopsAt(std::string_view text, std::size_t at, char split) {
    constexpr std::size_t kStep = 16;
    const std::size_t left = text.size() - at;
    if (left >= kStep) return stopsOfSixteen(text.data() + at, split);
    if (at != 0) {
        // The last sixteen characters, without those that have been looked at.
        const auto [blanks, splits] = stopsOfSixteen(text.data() + text.size() - kStep, split);
        return {(blanks | 0xFFFF0000U) >> (kStep - left), splits >> (kStep - left)};
    }
    std::array<char, kStep> padded;
    padded.fill(' ');
    text.copy(padded.data(), kStep);
    return stopsOfSixteen(padded.data(), split);
}

/// Finds what ends items sixteen characters at a time, which is twice as quick as looking at each character.
ItemList splitWide(const Context& context, std::string_view text, int max, char split) {
    constexpr std::size_t kStep = 16;
    ItemList list;
    bool in_item = false;
    std::size_t item = 0; // where the item begins that is being read
    std::size_t gap = 0;  // else where the blanks begin
    const auto end_gap = [&](std::size_t at) {
        if (at - gap > static_cast<std::size_t>(kMaxSkip) && !context.parse.long_lines) {
            assertionFailed(context.out, here());
        }
    };
    for (std::size_t at = 0; at < text.size(); at += kStep) {
        const auto [blanks, splits] = stopsAt(text, at, split);
        const std::uint32_t stops = blanks | splits;
        // Where items begin and end, and each split character.
        std::uint32_t marks = ((stops ^ (stops << 1 | (in_item ? 0U : 1U))) | splits) & 0xFFFF;
        for (; marks != 0; marks &= marks - 1) {
            const auto bit = static_cast<unsigned>(std::countr_zero(marks));
            const std::size_t place = at + bit;
            if (in_item) { // every mark ends one
                list.add(text.substr(item, place - item), max);
                in_item = false;
                gap = place;
            }
            if ((blanks >> bit & 1) != 0) continue;
            if (text[place] < ' ') return splitByCharacters(context, text, max, split); // other white space
            end_gap(place);
            if ((splits >> bit & 1) != 0) {
                list.add(text.substr(place, 1), max);
                gap = place + 1;
            } else {
                in_item = true;
                item = place;
            }
        }
    }
    if (in_item) {
        list.add(text.substr(item), max);
    } else {
        end_gap(text.size());
    }
    return list;
}
#else
ItemList splitWide(const Context& context, std::string_view text, int max, char split) {
    return splitByCharacters(context, text, max, split);
}
#endif

} // namespace

std::string_view skipWhiteSpace(const Context& context, std::string_view text) {
    const char* const end = text.data() + text.size();
    return {skipSpaces(context, text.data(), end), end};
}

ItemList splitItems(const Context& context, std::string_view text, int max, char split) {
    assert(max <= kMaxItems);
    return splitWide(context, text, max, split);
}

std::string_view takeItem(const Context& context, std::string_view& text, char split) {
    text = skipWhiteSpace(context, text);
    if (text.empty()) return text;
    const char* const end = text.data() + text.size();
    const std::string_view item(text.data(), itemEnd(text.data(), end, stopFor(split)));
    text.remove_prefix(item.size());
    return item;
}

} // namespace kestrel
