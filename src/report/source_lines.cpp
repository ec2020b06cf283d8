#include "report/source_lines.hpp"

#include "reader/source.hpp"

#include <array>
#include <cstring>
#include <system_error>

namespace kestrel {

namespace {

constexpr std::size_t kMostOfLine = 160;

/// Appends what there is room for. A character that is cut off is left to whoever shows the line.
void append(std::string& line, const char* begin, std::size_t size) {
    if (line.size() < kMostOfLine) line.append(begin, std::min(size, kMostOfLine - line.size()));
}

} // namespace

SourceLines readLines(const std::string& path, const std::vector<std::uint32_t>& wanted,
                      std::filesystem::file_time_type since) {
    SourceLines lines;
    std::error_code failure;
    const auto changed = std::filesystem::last_write_time(path, failure);
    if (wanted.empty() || failure || changed > since) return lines;
    std::optional<ByteSource> source = ByteSource::open(path);
    if (!source) return lines;
    std::array<char, std::size_t{1} << 16> window;
    std::uint32_t number = 1;
    auto next = wanted.begin();
    std::string line;
    while (next != wanted.end()) {
        const std::size_t size = source->read(window.data(), window.size());
        if (size == 0) break;
        const char* at = window.data();
        const char* const end = at + size;
        while (at != end && next != wanted.end()) {
            const auto* const feed =
                static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
            const char* const stop = feed != nullptr ? feed : end;
            if (number == *next) append(line, at, static_cast<std::size_t>(stop - at));
            at = stop;
            if (feed == nullptr) break;
            ++at;
            if (number == *next) {
                lines.emplace_hint(lines.end(), number, std::move(line));
                line.clear();
                ++next;
            }
            ++number;
        }
    }
    if (next != wanted.end() && number == *next && !line.empty()) lines.emplace(number, std::move(line));
    for (auto& [at, text] : lines)
        if (text.ends_with('\r')) text.pop_back();
    return lines;
}

} // namespace kestrel
