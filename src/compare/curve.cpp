#include "compare/curve.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

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
        const double rise = curve_[row + 1].y - curve_[row].y;
        const double run = curve_[row + 1].x - curve_[row].x;
        return run == 0.0 ? std::copysign(HUGE_VAL, rise) : rise / run;
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

bool haveSameRows(Curve was, Curve is) { return std::ranges::equal(was, is, {}, &Point::x, &Point::x); }

double largestMagnitude(Curve curve) {
    double most = 0.0;
    for (const Point& point : curve)
        most = std::max(most, std::abs(point.y));
    return most;
}

/// The largest difference of curves that have rows at the same places, of which there is one.
CurveDifference differenceOfRows(Curve was, Curve is) {
    std::size_t largest = 0;
    double scale = 0.0;
    const auto size = [&](std::size_t row) { return std::abs(is[row].y - was[row].y); };
    for (std::size_t row = 0; row < was.size(); ++row) {
        scale = std::max(scale, std::abs(was[row].y));
        if (size(row) > size(largest)) largest = row;
    }
    return {was[largest].x, was[largest].y, is[largest].y, scale};
}

/// In curves that are small what is nothing is this part of the largest magnitude of both,
constexpr double kNothingOfLargest = 0.1;
/// but not less than this part of what is nothing in others.
constexpr double kLeastNothing = 1e-4;

/// By how much two curves may differ; `other` gives the largest magnitude of the new one, `scale` is that of the old.
template <class ScaleOf> double allowedOf(const CurveTolerance& tolerance, double scale, ScaleOf other) {
    const double allowed = std::max(tolerance.share, kRounding) * scale;
    if (tolerance.nothing <= allowed) return allowed;
    const double part = kNothingOfLargest * std::max(scale, other());
    return std::max(allowed, std::clamp(part, kLeastNothing * tolerance.nothing, tolerance.nothing));
}

/// Calls `use` with both curves at every row of either, and at the ends of what they have in common, until it returns
/// false.
template <class Use> void walkBoth(Curve was, Curve is, double later, const Overlap& range, Use use) {
    Walker old_walker(was, 0.0, range.snap);
    Walker new_walker(is, -later, range.snap);
    for (double x = range.low;; x = std::min({old_walker.next(), new_walker.next(), range.high})) {
        old_walker.goTo(x);
        new_walker.goTo(x);
        if (!use(x, old_walker, new_walker) || x >= range.high) return;
    }
}

/// How far two curves are from each other at most; no more is asked for once that is beyond the limit.
double misfit(Curve was, Curve is, double later, double limit) {
    const std::optional<Overlap> range = overlapOf(was, is, later);
    if (!range) return HUGE_VAL;
    double most = 0.0;
    walkBoth(was, is, later, *range, [&](double /*x*/, const Walker& before, const Walker& now) {
        most = std::max(most, std::abs(now.value() - before.value()));
        return most < limit;
    });
    return most;
}

/// The number with one digit, two or three: the first that fits, else the number itself.
template <class Fits> double roundedWhereFits(double number, Fits fits) {
    constexpr int kMostDigits = 3;
    for (int digits = 1; digits <= kMostDigits && number != 0.0; ++digits) {
        const double power = digits - 1 - std::floor(std::log10(std::abs(number)));
        const double scale = std::pow(10.0, std::abs(power)); // exact for most, as one below 1 is not
        const double rounded = power < 0 ? std::round(number / scale) * scale : std::round(number * scale) / scale;
        if (std::isfinite(rounded) && fits(rounded)) return rounded;
    }
    return number;
}

} // namespace

bool isBeyond(const CurveTolerance& tolerance, double size, double old_scale, double new_scale) {
    return size > allowedOf(tolerance, old_scale, [new_scale] { return new_scale; });
}

std::optional<CurveDifference> differenceOf(Curve was, Curve is, const CurveTolerance& tolerance, double later) {
    const std::optional<Overlap> range = overlapOf(was, is, later);
    if (!range) return std::nullopt;
    if (later == 0.0 && haveSameRows(was, is)) {
        const CurveDifference largest = differenceOfRows(was, is);
        const double allowed = allowedOf(tolerance, largest.scale, [is] { return largestMagnitude(is); });
        const bool is_one = std::abs(largest.is - largest.was) > allowed;
        return is_one ? std::optional(largest) : std::nullopt;
    }
    const double scale =
        tolerance.of_whole ? largestMagnitude(was) : largestMagnitude(was, range->low, range->high, range->snap);
    const double allowed = allowedOf(tolerance, scale, [&] {
        return largestMagnitude(is, std::max(range->low + later, is.front().x),
                                std::min(range->high + later, is.back().x), range->snap);
    });
    double least = allowed; // that the next one has to be beyond
    std::optional<CurveDifference> largest;
    walkBoth(was, is, later, *range, [&](double x, const Walker& before, const Walker& now) {
        const CurveDifference here{x, before.value(), now.value(), scale};
        const double size = std::abs(here.is - here.was);
        if (!(size > least)) return true;
        if (tolerance.between_rows && size - before.bend() - now.bend() <= allowed) return true;
        least = size;
        largest = here;
        return true;
    });
    return largest;
}

double levelDifference(Curve was, Curve is) {
    if (was.empty() || is.empty()) return 0.0;
    const Levels before = levelsOf(was);
    const Levels now = levelsOf(is);
    return std::max(std::abs(now.low - before.low), std::abs(now.high - before.high));
}

Curve atLevelsOf(Curve was, Curve is, std::vector<Point>& room) {
    if (was.empty() || is.empty()) return {};
    const Levels before = levelsOf(was);
    const Levels now = levelsOf(is);
    const double old_swing = before.high - before.low;
    const double new_swing = now.high - now.low;
    if (old_swing == 0.0 || new_swing == 0.0) return {};
    const double scale = old_swing / new_swing;
    if (!std::isfinite(scale) || scale == 0.0) return {};
    room.assign(is.begin(), is.end());
    for (Point& point : room)
        point.y = before.low + scale * (point.y - now.low);
    return room;
}

std::optional<double> shiftOf(Curve was, Curve is) {
    if (was.empty() || is.empty()) return std::nullopt;
    const Levels old_levels = levelsOf(was);
    const Levels new_levels = levelsOf(is);
    // When both are at the same part of their swings, which need not be the same, and when at the same level; the best
    // offset lies between those of the levels.
    constexpr std::array<double, 3> kParts{0.5, 0.1, 0.9};
    std::array<double, 2 * kParts.size() + 1> offsets{};
    std::size_t count = 0;
    const auto add = [&](double old_level, double new_level) {
        const std::optional<double> before = firstCrossing(was, old_level);
        const std::optional<double> now = firstCrossing(is, new_level);
        if (before && now) offsets[count++] = *now - *before;
    };
    for (const double part : kParts) {
        add(old_levels.low + part * (old_levels.high - old_levels.low),
            new_levels.low + part * (new_levels.high - new_levels.low));
    }
    const double low = std::max(old_levels.low, new_levels.low);
    const double high = std::min(old_levels.high, new_levels.high);
    if (!(low < high)) return std::nullopt;
    for (const double part : kParts)
        add(low + part * (high - low), low + part * (high - low));
    if (count == 0) return std::nullopt;
    const auto [first, last] = std::minmax_element(offsets.begin(), offsets.begin() + count);
    offsets[count++] = std::midpoint(*first, *last);
    constexpr double kClearlyLess = 1 - 1e-6;
    std::optional<double> best;
    double least = HUGE_VAL;
    for (std::size_t i = 0; i < count; ++i) {
        const double size = misfit(was, is, offsets[i], least);
        if (best && !(size < kClearlyLess * least)) continue;
        least = size;
        best = offsets[i];
    }
    return best;
}

double roundedShift(Curve was, Curve is, double shift, double more) {
    const double most = misfit(was, is, shift, HUGE_VAL) + std::max(more, kRounding) * largestMagnitude(was);
    return roundedWhereFits(shift, [&](double rounded) { return misfit(was, is, rounded, HUGE_VAL) <= most; });
}

std::optional<double> levelOffsetOf(Curve was, Curve is, const CurveTolerance& tolerance) {
    const std::optional<Overlap> range = overlapOf(was, is, 0.0);
    if (!range || was.size() < 2 || is.size() < 2 || !(range->high - range->low > range->snap)) return std::nullopt;
    // Most are no such curves, which the first rows show.
    const double most = largestMagnitude(was);
    const double most_allowed = allowedOf(tolerance, most, [is] { return largestMagnitude(is); });
    double scale = tolerance.of_whole ? most : 0.0;
    double new_scale = 0.0;
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    walkBoth(was, is, 0.0, *range, [&](double /*x*/, const Walker& before, const Walker& now) {
        const double old_value = before.value();
        const double new_value = now.value();
        scale = std::max(scale, std::abs(old_value));
        new_scale = std::max(new_scale, std::abs(new_value));
        low = std::min(low, new_value - old_value);
        high = std::max(high, new_value - old_value);
        return high - low <= most_allowed;
    });
    const double allowed = allowedOf(tolerance, scale, [new_scale] { return new_scale; });
    const double offset = std::midpoint(low, high);
    if (!(high - low <= allowed) || !(std::abs(offset) > allowed)) return std::nullopt;
    const double slack = std::max(allowed / 10, high - low);
    return roundedWhereFits(offset, [&](double rounded) { return std::abs(rounded - offset) <= slack; });
}

} // namespace kestrel
