#include "floor.hpp"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace kestrel::bench {

namespace {

constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }

constexpr bool beginsNumber(char c) { return (c >= '0' && c <= '9') || c == '-' || c == '.'; }

/// Room for many numbers, used again when it is full.
struct PrintRoom {
    std::array<char, 65536> text{};
    std::size_t used = 0;
};

std::size_t print(PrintRoom& room, double value) {
    constexpr std::size_t kLongest = 32;
    if (room.text.size() - room.used < kLongest) room.used = 0;
    char* const from = room.text.data() + room.used;
    char* const end =
        std::to_chars(from, room.text.data() + room.text.size(), value, std::chars_format::general, 6).ptr;
    const auto length = static_cast<std::size_t>(end - from);
    room.used += length;
    return length;
}

template <FloorWork Work> void scanLine(std::string_view line, PrintRoom& room, FloorResult& result) {
    const char* at = line.data();
    const char* const end = at + line.size();
    for (;;) {
        while (at != end && isBlank(*at))
            ++at;
        if (at == end) return;
        const char* const item = at;
        while (at != end && !isBlank(*at))
            ++at;
        ++result.items;
        if (!beginsNumber(*item)) continue;
        double value = 0.0;
        if (std::from_chars(item, at, value).ec != std::errc{}) continue;
        ++result.numbers;
        result.sum += value;
        if constexpr (Work == FloorWork::print) result.printed += print(room, value);
    }
}

template <FloorWork Work> FloorResult scan(std::string_view text) {
    const auto room = std::make_unique<PrintRoom>();
    FloorResult result;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        ++result.lines;
        scanLine<Work>(line, *room, result);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return result;
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

FloorResult floorOf(std::string_view text, FloorWork work) {
    return work == FloorWork::print ? scan<FloorWork::print>(text) : scan<FloorWork::convert>(text);
}

FloorResult floorOfFile(const std::string& path, FloorWork work) {
    const auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    const auto bytes = std::make_unique_for_overwrite<char[]>(size);
    if (!file || std::fread(bytes.get(), 1, size, file.get()) != size) throw std::runtime_error("cannot read " + path);
    return floorOf({bytes.get(), size}, work);
}

FloorResult plainFloorOf(std::string_view text, FloorWork work) {
    FloorResult result;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        ++result.lines;
        std::istringstream items(line);
        for (std::string item; items >> item;) {
            ++result.items;
            char* end = nullptr;
            const double value = std::strtod(item.c_str(), &end);
            if (end == item.c_str() || !beginsNumber(item.front())) continue;
            ++result.numbers;
            result.sum += value;
            std::array<char, 64> room{};
            if (work == FloorWork::print)
                result.printed += static_cast<std::uint64_t>(std::snprintf(room.data(), room.size(), "%g", value));
        }
    }
    return result;
}

} // namespace kestrel::bench
