// A fuzzer of one entry.

#include "entry.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using Random = std::minstd_rand;

std::size_t below(Random& random, std::size_t limit) { return limit == 0 ? 0 : random() % limit; }

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.emplace_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

/// Puts another number in the place of one in the line.
void changeNumber(std::string& line, Random& random) {
    constexpr std::array<std::string_view, 20> kNumbers{
        "0",  "-0",   "1",   "-1",    "NA",  "1e308", "-1e308", "1e-308", "1e400",      "5e-324",
        "1n", "-3.3", "0.1", "1e-12", "100", "120",   "1024",   "65535",  "4294967295", "1e16"};
    const std::size_t begin = line.find_first_of("0123456789", below(random, line.size()));
    if (begin == std::string::npos) return;
    const std::size_t end = std::min(line.find_first_not_of("0123456789.eE+-", begin), line.size());
    line.replace(begin, end - begin, kNumbers[below(random, kNumbers.size())]);
}

/// Changes lines as wholes, which is what the language is made of.
void changeLines(std::vector<std::string>& lines, Random& random) {
    const std::size_t at = below(random, lines.size());
    const std::size_t count = 1 + below(random, std::min<std::size_t>(lines.size() - at, 1 + below(random, 12)));
    const auto begin = lines.begin() + static_cast<std::ptrdiff_t>(at);
    const auto end = begin + static_cast<std::ptrdiff_t>(count);
    const std::vector<std::string> piece(begin, end);
    switch (below(random, 5)) {
    case 0: lines.erase(begin, end); break;
    case 1: lines.insert(end, piece.begin(), piece.end()); break;
    case 2: {
        const auto place = static_cast<std::ptrdiff_t>(below(random, lines.size() + 1));
        lines.insert(lines.begin() + place, piece.begin(), piece.end());
        break;
    }
    case 3: std::swap(lines[at], lines[below(random, lines.size())]); break;
    default: changeNumber(lines[at], random); break;
    }
}

const kestrel::fuzz::Entry& entry() {
    constexpr std::string_view kName = KESTREL_FUZZ_ENTRY;
    const auto entries = kestrel::fuzz::entries();
    return *std::ranges::find(entries, kName, &kestrel::fuzz::Entry::name);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    entry().run({reinterpret_cast<const char*>(data), size});
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t room,
                                               unsigned int seed) {
    Random random(seed);
    if (size == 0 || below(random, 3) != 0) return LLVMFuzzerMutate(data, size, room);
    std::vector<std::string> lines = linesOf({reinterpret_cast<const char*>(data), size});
    for (std::size_t i = 1 + below(random, 3); i > 0 && !lines.empty(); --i)
        changeLines(lines, random);
    std::string text;
    for (const std::string& line : lines)
        text.append(line);
    const std::size_t new_size = std::min(text.size(), room);
    std::copy_n(text.begin(), new_size, data);
    return new_size;
}
