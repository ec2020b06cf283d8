// Takes memory as the stores do and writes to every page, nothing else: kestrel_touch BYTES
#include "base/large_memory.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <vector>

int main(int argc, char** argv) {
    std::size_t left = 0;
    const std::string_view number(argc == 2 ? argv[1] : "");
    const auto end = std::from_chars(number.data(), number.data() + number.size(), left);
    if (end.ptr != number.data() + number.size() || left == 0) {
        std::fputs("usage: kestrel_touch BYTES\n", stderr);
        return 1;
    }
    constexpr std::size_t kPiece = std::size_t{8} << 20;
    constexpr std::size_t kPage = 4096;
    std::vector<kestrel::Memory> pieces;
    while (left != 0) {
        std::size_t size = std::min(left, kPiece);
        left -= size;
        pieces.push_back(kestrel::allocateLarge(size));
        for (std::size_t at = 0; at < size; at += kPage)
            pieces.back()[at] = std::byte{1};
    }
    return 0;
}
