// Does the least work on a file, in a process of its own: kestrel_floor FILE [print]
#include "floor.hpp"

#include <cstdio>
#include <exception>
#include <string_view>

int main(int argc, char** argv) {
    using namespace kestrel::bench;
    const bool prints = argc == 3 && std::string_view(argv[2]) == "print";
    if (argc != 2 && !prints) {
        std::fputs("usage: kestrel_floor FILE [print]\n", stderr);
        return 1;
    }
    try {
        const FloorResult result = floorOfFile(argv[1], prints ? FloorWork::print : FloorWork::convert);
        std::printf("%llu lines, %llu items, %llu numbers, %llu characters printed, sum %.17g\n",
                    static_cast<unsigned long long>(result.lines), static_cast<unsigned long long>(result.items),
                    static_cast<unsigned long long>(result.numbers), static_cast<unsigned long long>(result.printed),
                    result.sum);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestrel_floor: %s\n", failure.what());
        return 2;
    }
}
