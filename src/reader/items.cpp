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

/// Too much white space ahead of an item is an assertion failure outside long-line mode.
void checkGap(const Context& context, const char* begin, const char* end) {
    if (end - begin > kMaxSkip && !context.parse.long_lines)
        assertionFailed(context.diagnostics, here(), kTooMuchSpace);
}

/// The first character from `at` on that is no white space.
const char* skipSpaces(const Context& context, const char* at, const char* end) {
    const char* const begin = at;
    while (at != end && isSpace(*at)) {
        ++at;
    }
    checkGap(context, begin, at);
    return at;
}

/// Where the item that begins at `at`, which is not the end, ends. The split character is an item of length 1.
const char* itemEnd(const char* at, const char* end, char split) {
    const char* const begin = at;
    while (at != end && !isBlank(*at) && *at != split) {
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
        list.add(item, at, max);
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

/// Cuts a line where sixteen characters at a time are looked at, which is twice as quick as looking at each.
template <bool HasSplit>
ItemList splitBySixteen(const Context& context, std::string_view text, int max, [[maybe_unused]] char split) {
    constexpr std::size_t kStep = 16;
    ItemList list;
    const char* const begin = text.data();
    const char* item = nullptr; // where the item begins that is being read; null between items
    const char* gap = begin;    // where the blanks began that are ahead of it
    for (std::size_t at = 0; at < text.size(); at += kStep) {
        const auto [blanks, splits] = stopsAt(text, at, HasSplit ? split : '\0');
        const std::uint32_t stops = HasSplit ? blanks | splits : blanks;
        // Where items begin and end, and each split character.
        std::uint32_t marks = stops ^ (stops << 1 | (item == nullptr ? 1U : 0U));
        if constexpr (HasSplit) marks |= splits;
        for (marks &= 0xFFFF; marks != 0; marks &= marks - 1) {
            const int bit = std::countr_zero(marks);
            const char* const place = begin + at + bit;
            if (item != nullptr) { // every mark ends one
                list.add(item, place, max);
                item = nullptr;
                gap = place;
                if (!HasSplit || (splits >> bit & 1) == 0) continue;
            } else if (HasSplit && (blanks >> bit & 1) != 0) {
                continue;
            }
            if (*place < ' ') return splitByCharacters(context, text, max, split); // other white space
            checkGap(context, gap, place);
            if (HasSplit && (splits >> bit & 1) != 0) {
                list.add(place, place + 1, max);
                gap = place + 1;
            } else {
                item = place;
            }
        }
    }
    const char* const end = begin + text.size();
    if (item != nullptr) {
        list.add(item, end, max);
    } else {
        checkGap(context, gap, end);
    }
    return list;
}

ItemList splitWide(const Context& context, std::string_view text, int max, char split) {
    return split == '\0' ? splitBySixteen<false>(context, text, max, split)
                         : splitBySixteen<true>(context, text, max, split);
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
    return context.short_paths ? splitWide(context, text, max, split) : splitByCharacters(context, text, max, split);
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
