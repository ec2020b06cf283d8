#pragma once

#include "quality/iv_table.hpp"

#include <optional>
#include <span>
#include <vector>

/// Tables of a corner as lines over voltage or time, and how two of them differ.
namespace kestrel {

/// Rows that have both numbers by rising x; linear between them.
using Curve = std::span<const Point>;

/// Up to where two curves are the same.
struct CurveTolerance {
    double share;   ///< of the largest magnitude of the old one, over what both have or over all of it
    double nothing; ///< differences up to this are none, in the unit of y; of small curves only less is
    /// Whether what lies between two rows is only known as far as their neighbours show how the curve bends: at a knee
    /// other rows give other lines.
    bool between_rows;
    /// Whether all of the old curve gives the scale: what both have of an edge may be what comes ahead of it.
    bool of_whole;
};

/// Whether a difference is beyond the tolerance; the scales are the largest magnitudes of the old and the new curve.
[[nodiscard]] bool isBeyond(const CurveTolerance& tolerance, double size, double old_scale, double new_scale);

/// The largest difference.
struct CurveDifference {
    double x; ///< as the old one counts it
    double was;
    double is;
    double scale; ///< the largest magnitude of the old one, as the tolerance wants it
};

/// Where the new curve, which comes `later` by so much, differs most from the old one over the range that both have;
/// nothing when that is within the tolerance.
[[nodiscard]] std::optional<CurveDifference> differenceOf(Curve was, Curve is, const CurveTolerance& tolerance,
                                                          double later = 0.0);

/// How far the lowest values of two curves are apart, or the highest: no shift makes them differ by less.
[[nodiscard]] double levelDifference(Curve was, Curve is);

/// The new curve drawn out or in to go from the lowest to the highest value of the old one; empty where one of them
/// stays at one level. `room` holds it.
[[nodiscard]] Curve atLevelsOf(Curve was, Curve is, std::vector<Point>& room);

/// By how much later the new curve comes, so that both fit best; nothing when no level is crossed by both.
[[nodiscard]] std::optional<double> shiftOf(Curve was, Curve is);

/// A shift with as few digits as fit: the curves may be farther apart by `more` of the old one's largest magnitude.
[[nodiscard]] double roundedShift(Curve was, Curve is, double shift, double more);

/// How much higher the new curve is, where it is higher by the same everywhere: the differences are within the
/// tolerance of each other, and beyond it of nothing.
[[nodiscard]] std::optional<double> levelOffsetOf(Curve was, Curve is, const CurveTolerance& tolerance);

} // namespace kestrel
