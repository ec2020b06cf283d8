#include "base/text_hash.hpp"

#include <cstring>

namespace kestrel {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t kOdd1 = 0x9E3779B97F4A7C15;
constexpr std::uint64_t kOdd2 = 0xD1B54A32D192ED03;

/// Multiplies and folds the halves of the product, so that every bit of either factor reaches every bit of the result.
constexpr std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

template <class Word> std::uint64_t wordAt(const char* text) {
    Word word = 0;
    std::memcpy(&word, text, sizeof word);
    return word;
}

/// All of at most eight characters in one number; which of them are in it twice depends on their number only.
std::uint64_t shortText(const char* text, std::size_t length) {
    if (length >= 4) return wordAt<std::uint32_t>(text) << 32 | wordAt<std::uint32_t>(text + length - 4);
    if (length == 0) return 0;
    const auto at = [text](std::size_t place) { return std::uint64_t{static_cast<unsigned char>(text[place])}; };
    return at(0) << 16 | at(length / 2) << 8 | at(length - 1);
}

} // namespace

HashSeed::HashSeed() {
    static const char kInProgram = 0;
    const char on_stack = 0;
    // Systems load programs and place stacks and heaps at random.
    const auto place = [](const void* at) { return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(at)); };
    value_ = fold(fold(place(&kInProgram) ^ kOdd1, place(&on_stack) ^ kOdd2), place(this) ^ kOdd1) | 1;
}

std::uint64_t HashSeed::hashOf(std::string_view text) const {
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    // The state depends on the seed before any character does, and is multiplied by it with every word: without it no
    // two texts are known to meet.
    std::uint64_t state = fold(value_, kOdd1 ^ text.size());
    const char* at = text.data();
    std::size_t left = text.size();
    for (; left > kWord; at += kWord, left -= kWord) {
        state = fold(state ^ wordAt<std::uint64_t>(at), value_ ^ kOdd2);
    }
    state = fold(state ^ shortText(at, left), value_ ^ kOdd1);
    return fold(state ^ value_, kOdd2);
}

} // namespace kestrel
