#pragma once

#include "reader/enumeration.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kestrel {

/// True when two words are the same. The short ones of this language are compared in two pieces that overlap, in three
/// fifths of the time that the library's comparison takes.
[[nodiscard]] inline bool sameWord(std::string_view a, std::string_view b) {
    const std::size_t size = a.size();
    if (size != b.size()) return false;
    const auto same_ends = [&]<class Piece>(Piece) {
        const auto differing = [&](std::size_t at) {
            Piece in_a;
            Piece in_b;
            std::memcpy(&in_a, a.data() + at, sizeof(Piece));
            std::memcpy(&in_b, b.data() + at, sizeof(Piece));
            return in_a ^ in_b;
        };
        return (differing(0) | differing(size - sizeof(Piece))) == 0;
    };
    if (size > 2 * sizeof(std::uint64_t)) return std::memcmp(a.data(), b.data(), size) == 0;
    if (size >= sizeof(std::uint64_t)) return same_ends(std::uint64_t{});
    if (size >= sizeof(std::uint32_t)) return same_ends(std::uint32_t{});
    if (size == 0) return true;
    return a[0] == b[0] && a[size / 2] == b[size / 2] && a[size - 1] == b[size - 1];
}

/// How many slots an index has.
inline constexpr std::size_t kWordSlots = 64;

/// Where a word that is not empty is in an index, whatever the case of its letters: the first letter and the length
/// tell the words of each table apart.
constexpr std::size_t wordSlot(std::string_view word) {
    const auto first = static_cast<std::size_t>(static_cast<unsigned char>(word.front()));
    constexpr std::size_t kCaseless = 0x1f; // the bits of a letter that do not depend on its case
    return ((first & kCaseless) + 8 * word.size()) % kWordSlots;
}

/// For each slot one more than the place of its row; 0 for none.
template <const auto& kRows> consteval auto indexWords() {
    std::array<std::uint8_t, kWordSlots> index{};
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        std::uint8_t& slot = index[wordSlot(kRows[i].text)];
        if (slot != 0) throw "two words in one slot";
        slot = static_cast<std::uint8_t>(i + 1);
    }
    return index;
}

/// As lookUpEnumeration(), for words that are looked up many times in each parameter: compares with one row only.
template <const auto& kRows> [[nodiscard]] auto lookUpAmiWord(std::string_view text) {
    static constexpr auto kIndex = indexWords<kRows>();
    using Hit = EnumerationHit<CodeOf<decltype(kRows)>>;
    const std::size_t place = text.empty() ? 0 : kIndex[wordSlot(text)];
    if (place == 0) return Hit{};
    const auto& row = kRows[place - 1];
    if (sameWord(row.text, text)) return Hit{&row, true};
    return equalsNoCase(row.text, text) ? Hit{&row, false} : Hit{};
}

} // namespace kestrel
