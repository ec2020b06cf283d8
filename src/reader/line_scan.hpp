#pragma once

#include <cstddef>

namespace kestrel {

/// What one look at a line finds.
struct LineScan {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t length = 0;      ///< characters ahead of the line feed
    std::size_t comment = kNone; ///< where the first comment character is
    std::size_t odd = kNone;     ///< where the first control character other than TAB, or one beyond ASCII, is
    bool has_tab = false;
};

/// Bytes behind a line feed that scanLine() may read.
inline constexpr std::size_t kScanPadding = 16;

/// Looks at a line up to its line feed, which must be there, with kScanPadding readable bytes behind it. The line is
/// looked at sixteen bytes at a time where the processor can: lines used to be a quarter of the time.
[[nodiscard]] LineScan scanLine(const char* line, char comment);

/// The same eight bytes at a time, for processors without wide compares.
[[nodiscard]] LineScan scanLineByWords(const char* line, char comment);

} // namespace kestrel
