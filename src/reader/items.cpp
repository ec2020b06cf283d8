#include "reader/items.hpp"

#include "reader/context.hpp"

#include <bit>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

namespace {

constexpr std::string_view kTooMuchSpace = "More than 120 blanks in a row; the check ends here.";

/// The first character from `at` on that is no white space. Too much of that is an assertion failure outside long-line
/// mode.
const char* skipSpaces(const Context& context, const char* at, const char* end) {
    const char* const begin = at;
    while (at != end && isSpace(*at)) {
        ++at;
    }
    if (at - begin > kMaxSkip && !context.parse.long_lines) assertionFailed(context.diagnostics, here(), kTooMuchSpace);
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
/// Which of the sixteen characters at `at` are blanks or TABs, the first in the lowest bit.
std::uint32_t blanksOfSixteen(const char* at) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m128i blanks =
        _mm_or_si128(_mm_cmpeq_epi8(characters, _mm_set1_epi8(' ')), _mm_cmpeq_epi8(characters, _mm_set1_epi8('\t')));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(blanks));
}

/// Finds blanks sixteen characters at a time, and items where blanks begin and end: twice as quick as looking at each
/// character. Nothing outside of the text is read.
ItemList splitAtBlanks(const Context& context, std::string_view text, int max) {
    constexpr std::size_t kStep = 16;
    constexpr std::uint32_t kAll = 0xFFFF;
    ItemList list;
    std::size_t item = 0;           // where the item begins that is being read
    std::size_t gap = 0;            // where the blanks begin that are being read
    std::uint32_t blank_before = 1; // whether the last character looked at was a blank
    const auto end_gap = [&](std::size_t at) {
        if (at - gap > static_cast<std::size_t>(kMaxSkip) && !context.parse.long_lines)
            assertionFailed(context.diagnostics, here(), kTooMuchSpace);
    };
    for (std::size_t at = 0; at < text.size(); at += kStep) {
        const std::size_t left = text.size() - at;
        std::uint32_t blanks = kAll;
        if (left >= kStep) {
            blanks = blanksOfSixteen(text.data() + at);
        } else if (at != 0) {
            // The last sixteen characters, without those that have been looked at.
            blanks = (blanksOfSixteen(text.data() + text.size() - kStep) | kAll << kStep) >> (kStep - left);
        } else {
            std::array<char, kStep> padded;
            padded.fill(' ');
            text.copy(padded.data(), kStep);
            blanks = blanksOfSixteen(padded.data());
        }
        // Every character that is not as the one before it begins an item or ends one.
        std::uint32_t edges = (blanks ^ (blanks << 1 | blank_before)) & kAll;
        for (; edges != 0; edges &= edges - 1) {
            const std::size_t place = at + static_cast<std::size_t>(std::countr_zero(edges));
            if ((blanks >> (place - at) & 1) == 0) {
                if (text[place] < ' ') return splitByCharacters(context, text, max, '\0'); // other white space
                end_gap(place);
                item = place;
            } else {
                list.add(text.substr(item, place - item), max);
                gap = place;
            }
        }
        blank_before = blanks >> (kStep - 1) & 1;
    }
    if (blank_before == 0) {
        list.add(text.substr(item), max);
    } else {
        end_gap(text.size());
    }
    return list;
}
#else
ItemList splitAtBlanks(const Context& context, std::string_view text, int max) {
    return splitByCharacters(context, text, max, '\0');
}
#endif

} // namespace

std::string_view skipWhiteSpace(const Context& context, std::string_view text) {
    const char* const end = text.data() + text.size();
    return {skipSpaces(context, text.data(), end), end};
}

ItemList splitItems(const Context& context, std::string_view text, int max, char split) {
    assert(max <= kMaxItems);
    return split == '\0' ? splitAtBlanks(context, text, max) : splitByCharacters(context, text, max, split);
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
