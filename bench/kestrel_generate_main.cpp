// Writes a generated file: kestrel_generate KIND SIZE FILE
#include "sample_file.hpp"

#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>
#include <system_error>

namespace {

using namespace kestrel::bench;

constexpr std::string_view kMegabytes = "MB";

/// The count that a size stands for: "2000" things or a file of "50MB".
std::optional<std::size_t> countOf(const SampleKind& kind, std::string_view size) {
    const bool in_megabytes = size.ends_with(kMegabytes);
    if (in_megabytes) size.remove_suffix(kMegabytes.size());
    std::size_t number = 0;
    const auto end = std::from_chars(size.data(), size.data() + size.size(), number);
    constexpr std::size_t kMost = 10000000;
    if (end.ec != std::errc{} || end.ptr != size.data() + size.size() || number == 0 || number > kMost)
        return std::nullopt;
    return in_megabytes ? countForSize(kind, number * 1000000) : number;
}

int usage() {
    std::fputs(
        "usage: kestrel_generate KIND SIZE FILE\n"
        "SIZE is a count, or the size of the file with \"MB\" behind it. Kinds:\n",
        stderr);
    for (const SampleKind& kind : sampleKinds()) {
        std::fprintf(stderr, "  %-15s %s, for example %zu\n", std::string(kind.name).c_str(),
                     std::string(kind.counted).c_str(), kind.usual_count);
    }
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 4) return usage();
        const SampleKind* const kind = findSampleKind(argv[1]);
        if (kind == nullptr) return usage();
        const std::optional<std::size_t> count = countOf(*kind, argv[2]);
        if (!count) return usage();
        const SampleFile file = writeSample(*kind, *count, argv[3]);
        std::printf("%zu bytes in %s\n", file.bytes, file.path.c_str());
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestrel_generate: %s\n", failure.what());
        return 2;
    }
}
