#pragma once

#include "quality/iv_table.hpp"
#include "report/html.hpp"
#include "report/scale.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kestrel {

/// The frame of a picture, as its lines count it: whole numbers, y downward.
inline constexpr int kFrameWidth = 6000;
inline constexpr int kFrameHeight = 4000;

/// Where values are in the frame.
struct Frame {
    Span x;
    Span y;

    [[nodiscard]] double acrossOf(double value) const { return (value - x.low) * (kFrameWidth / x.length()); }
    [[nodiscard]] double downOf(double value) const { return (y.high - value) * (kFrameHeight / y.length()); }
};

/// Most points of a drawn line.
inline constexpr std::size_t kMostPoints = 1000;

/// The points of a line whose x does not fall, so many that none is missed: of each column of the picture the first,
/// the lowest, the highest and the last, in their order. A line of kMostPoints or less stays as it is.
[[nodiscard]] std::vector<Point> thinned(std::span<const Point> points, const Span& x);

/// Appends the moves of a path that draws the line, cut off at the frame; nothing when all of it is outside. Points in
/// a straight row are one move. What cannot be drawn is left out.
void appendPath(Coordinates& path, std::span<const Point> points, const Frame& frame);

/// The nearest whole number of a place in the frame, which is never negative.
[[nodiscard]] inline std::int32_t rounded(double place) {
    return static_cast<std::int32_t>(place + 0.5); // NOLINT(bugprone-incorrect-roundings): std::lround is a call
}

} // namespace kestrel
