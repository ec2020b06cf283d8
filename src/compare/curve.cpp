#include "compare/curve.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kestrel {

namespace {

/// What is computed by another way is not another number.
constexpr double kRounding = 1e-9;

/// Walks along a curve, from left to right.
class Walker {
public:
    Walker(Curve curve, double offset, double snap) : curve_(curve), offset_(offset), snap_(snap) {}

    /// The x of the next row right of the place, infinite behind the last.
    [[nodiscard]] double next() const { return next_ < curve_.size() ? xOf(next_) : HUGE_VAL; }

    /// Goes to a place that is not left of the one before and not outside of the curve.
    void goTo(double x) {
        while (next_ < curve_.size() && xOf(next_) <= x + snap_)
            ++next_;
        at_ = x;
    }

    [[nodiscard]] double value() const {
        if (isAtRow()) return curve_[next_ == 0 ? 0 : next_ - 1].y;
        const Point& left = curve_[next_ - 1];
        const Point& right = curve_[next_];
        return left.y + (right.y - left.y) * ((at_ - offset_ - left.x) / (right.x - left.x));
    }

    /// How far the curve may lie from the line between two rows. One that bends to the same side all along lies between
    /// that line and those of its neighbours, which meet beyond it; of others nothing is known.
    [[nodiscard]] double bend() const {
        if (isAtRow() || next_ < 2 || next_ + 1 >= curve_.size()) return 0.0;
        const double slope = slopeBehind(next_ - 1);
        const double left = slopeBehind(next_ - 2) - slope;
        const double right = slope - slopeBehind(next_);
        if ((left > 0.0) != (right > 0.0)) return 0.0;
        return std::min(std::abs(left) * (at_ - xOf(next_ - 1)), std::abs(right) * (xOf(next_) - at_));
    }

private:
    [[nodiscard]] double xOf(std::size_t row) const { return curve_[row].x + offset_; }
    [[nodiscard]] bool isAtRow() const { return next_ == 0 || next_ == curve_.size() || at_ - xOf(next_ - 1) <= snap_; }
    [[nodiscard]] double slopeBehind(std::size_t row) const {
        return (curve_[row + 1].y - curve_[row].y) / (curve_[row + 1].x - curve_[row].x);
    }

    Curve curve_;
    double offset_;
    double snap_; // rows that are no farther away are at the place
    std::size_t next_ = 0;
    double at_ = 0.0;
};

/// The largest magnitude between two places, which are not outside of the curve.
double largestMagnitude(Curve curve, double low, double high, double snap) {
    Walker walker(curve, 0.0, snap);
    double most = 0.0;
    for (double x = low;; x = std::min(walker.next(), high)) {
        walker.goTo(x);
        most = std::max(most, std::abs(walker.value()));
        if (x >= high) return most;
    }
}

/// What both curves have, as the old one counts it.
struct Overlap {
    double low;
    double high;
    double snap;
};

std::optional<Overlap> overlapOf(Curve was, Curve is, double later) {
    if (was.empty() || is.empty()) return std::nullopt;
    const double low = std::max(was.front().x, is.front().x - later);
    const double high = std::min(was.back().x, is.back().x - later);
    const double snap = kRounding * (was.back().x - was.front().x);
    if (!(low <= high + snap)) return std::nullopt;
    return Overlap{low, std::max(low, high), snap};
}

/// The lowest and the highest value.
struct Levels {
    double low;
    double high;
};
Levels levelsOf(Curve curve) {
    const auto [low, high] = std::ranges::minmax_element(curve, {}, &Point::y);
    return {low->y, high->y};
}

/// When the curve first comes from the side of its first value to a level.
std::optional<double> firstCrossing(Curve curve, double level) {
    const bool from_below = curve.front().y < level;
    for (std::size_t i = 1; i < curve.size(); ++i) {
        const Point& left = curve[i - 1];
        const Point& right = curve[i];
        if ((right.y >= level) != from_below) continue;
        return right.y == left.y ? right.x : left.x + (right.x - left.x) * ((level - left.y) / (right.y - left.y));
    }
    return std::nullopt;
}

/// How far two curves are from each other at most.
double misfit(Curve was, Curve is, double later) {
    const auto difference = differenceOf(was, is, {.share = 0.0, .nothing = 0.0, .between_rows = true}, later);
    return difference ? std::abs(difference->is - difference->was) : 0.0;
}

} // namespace

std::optional<CurveDifference> differenceOf(Curve was, Curve is, const CurveTolerance& tolerance, double later) {
    const std::optional<Overlap> range = overlapOf(was, is, later);
    if (!range) return std::nullopt;
    const double scale = largestMagnitude(was, range->low, range->high, range->snap);
    const double allowed = std::max({tolerance.share * scale, tolerance.nothing, kRounding * scale});
    Walker old_walker(was, 0.0, range->snap);
    Walker new_walker(is, -later, range->snap);
    std::optional<CurveDifference> largest;
    for (double x = range->low;;) {
        old_walker.goTo(x);
        new_walker.goTo(x);
        const CurveDifference here{x, old_walker.value(), new_walker.value(), scale};
        const double size = std::abs(here.is - here.was);
        const double bend = tolerance.between_rows ? old_walker.bend() + new_walker.bend() : 0.0;
        const bool is_larger = !largest || size > std::abs(largest->is - largest->was);
        if (size - bend > allowed && is_larger) largest = here;
        if (x >= range->high) break;
        x = std::min({old_walker.next(), new_walker.next(), range->high});
    }
    return largest;
}

std::optional<double> shiftOf(Curve was, Curve is) {
    if (was.empty() || is.empty()) return std::nullopt;
    const Levels old_levels = levelsOf(was);
    const Levels new_levels = levelsOf(is);
    const double low = std::max(old_levels.low, new_levels.low);
    const double high = std::min(old_levels.high, new_levels.high);
    if (!(low < high)) return std::nullopt;
    // When both are at the same level; the best offset lies between those of the levels.
    constexpr std::array<double, 5> kParts{0.1, 0.3, 0.5, 0.7, 0.9};
    std::vector<double> offsets;
    for (const double part : kParts) {
        const double level = low + part * (high - low);
        const std::optional<double> before = firstCrossing(was, level);
        const std::optional<double> now = firstCrossing(is, level);
        if (before && now) offsets.push_back(*now - *before);
    }
    if (offsets.empty()) return std::nullopt;
    const auto [first, last] = std::ranges::minmax(offsets);
    offsets.push_back((first + last) / 2);
    return *std::ranges::min_element(offsets, {}, [&](double later) { return misfit(was, is, later); });
}

} // namespace kestrel
