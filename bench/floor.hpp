#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel::bench {

/// How much of the least work on a file is done.
enum class FloorWork : std::uint8_t {
    convert, ///< lines found, items split off, every numeric item converted
    print    ///< the same, and every number printed again with six digits
};

/// What the least work found. Equal for equal texts, whoever does the work.
struct FloorResult {
    std::uint64_t lines = 0;
    std::uint64_t items = 0;
    std::uint64_t numbers = 0; ///< items that begin with a decimal number
    std::uint64_t printed = 0; ///< characters of the numbers that were printed
    double sum = 0.0;          ///< of the numbers

    bool operator==(const FloorResult&) const = default;
};

/// The least that a checker of this text has to do. Nothing is kept.
[[nodiscard]] FloorResult floorOf(std::string_view text, FloorWork work);

/// Reads a file and does the least work on it; throws when it cannot be read.
[[nodiscard]] FloorResult floorOfFile(const std::string& path, FloorWork work);

/// The same result by the plainest means there are, to check the fast way against.
[[nodiscard]] FloorResult plainFloorOf(std::string_view text, FloorWork work);

} // namespace kestrel::bench
