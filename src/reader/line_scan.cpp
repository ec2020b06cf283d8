#include "reader/line_scan.hpp"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

namespace {

/// Where some characters are among the next ones of a line: a bit for each character, the lowest for the first.
template <class Bits> struct Marks {
    Bits feed;    ///< line feeds
    Bits tab;     ///< TABs
    Bits comment; ///< comment characters
    Bits odd;     ///< control characters, TAB and line feed included, and those beyond ASCII
};

/// Goes through a line by blocks of characters, which `Block` marks.
template <class Block> LineScan scanBlocks(const char* line, char comment) {
    using Bits = typename Block::Bits;
    const Block block(comment);
    LineScan scan;
    for (std::size_t at = 0;; at += Block::kCharacters) {
        const Marks<Bits> marks = block.marksOf(line + at);
        const Bits within = marks.feed != 0 ? static_cast<Bits>((marks.feed & (~marks.feed + 1U)) - 1U) : ~Bits{0};
        const auto note_first = [&](std::size_t& place, Bits found) {
            if (place == LineScan::kNone && (found & within) != 0) place = at + Block::placeOf(found);
        };
        note_first(scan.comment, marks.comment);
        if ((marks.odd & within) != 0) {
            scan.has_tab = scan.has_tab || (marks.tab & within) != 0;
            note_first(scan.odd, marks.odd & ~marks.tab);
        }
        if (marks.feed != 0) {
            scan.length = at + Block::placeOf(marks.feed);
            return scan;
        }
    }
}

/// Eight characters as one number, the first in its lowest byte; marks are the highest bits of the bytes.
class WordBlock {
public:
    using Bits = std::uint64_t;
    static constexpr std::size_t kCharacters = sizeof(Bits);

    explicit WordBlock(char comment) : comment_(repeated(comment)) {}

    [[nodiscard]] Marks<Bits> marksOf(const char* at) const {
        Bits word = 0;
        std::memcpy(&word, at, sizeof word);
        if constexpr (std::endian::native == std::endian::big) word = reversed(word);
        const Bits feed = sameBytes(word, repeated('\n'));
        return {feed, sameBytes(word, repeated('\t')), sameBytes(word, comment_), oddBytes(word)};
    }

    [[nodiscard]] static std::size_t placeOf(Bits marks) {
        return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
    }

private:
    static constexpr Bits kOnes = 0x0101010101010101;
    static constexpr Bits kHigh = kOnes * 0x80;

    static constexpr Bits repeated(char c) { return kOnes * static_cast<unsigned char>(c); }

    static constexpr Bits reversed(Bits word) {
        Bits result = 0;
        for (std::size_t i = 0; i < sizeof word; ++i, word >>= 8) {
            result = result << 8 | (word & 0xFF);
        }
        return result;
    }

    /// Marks the bytes that are 0, and no others: no byte's sum reaches into the next one.
    static constexpr Bits zeroBytes(Bits word) { return ~(((word & ~kHigh) + ~kHigh) | word | ~kHigh); }
    static constexpr Bits sameBytes(Bits word, Bits pattern) { return zeroBytes(word ^ pattern); }

    /// Marks bytes below the blank and those beyond ASCII.
    static constexpr Bits oddBytes(Bits word) {
        const Bits from_blank =
            (word & ~kHigh) + kOnes * (0x80 - ' '); // its high bits: seven bits that make a blank or more
        return (~from_blank | word) & kHigh;
    }

    Bits comment_;
};

#if defined(__SSE2__)
/// Sixteen characters in one register.
class WideBlock {
public:
    using Bits = std::uint32_t;
    static constexpr std::size_t kCharacters = 16;

    explicit WideBlock(char comment) : comment_(_mm_set1_epi8(comment)) {}

    [[nodiscard]] Marks<Bits> marksOf(const char* at) const {
        const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const auto bits = [](__m128i marked) { return static_cast<Bits>(_mm_movemask_epi8(marked)); };
        return {bits(_mm_cmpeq_epi8(characters, _mm_set1_epi8('\n'))),
                bits(_mm_cmpeq_epi8(characters, _mm_set1_epi8('\t'))), bits(_mm_cmpeq_epi8(characters, comment_)),
                // Characters beyond ASCII are negative here.
                bits(_mm_cmplt_epi8(characters, _mm_set1_epi8(' ')))};
    }

    [[nodiscard]] static std::size_t placeOf(Bits marks) { return static_cast<std::size_t>(std::countr_zero(marks)); }

private:
    __m128i comment_;
};
#else
using WideBlock = WordBlock;
#endif

static_assert(WideBlock::kCharacters <= kScanPadding);

} // namespace

LineScan scanLine(const char* line, char comment) { return scanBlocks<WideBlock>(line, comment); }

LineScan scanLineByWords(const char* line, char comment) { return scanBlocks<WordBlock>(line, comment); }

} // namespace kestrel
