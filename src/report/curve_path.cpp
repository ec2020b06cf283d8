#include "report/curve_path.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrel {

namespace {

/// A place in the frame.
struct Place {
    std::int32_t x;
    std::int32_t y;

    friend bool operator==(const Place&, const Place&) = default;
};

/// Writes the moves of one line. The last place waits to see whether the next lies in its direction.
class Pen {
public:
    explicit Pen(const Coordinates::Steps& path) : path_(path) {}

    void moveTo(Place place) {
        if (is_down_ && end() == place) return;
        lift();
        path_.begin("M", place.x);
        path_.step(place.y);
        last_ = place;
        is_down_ = true;
        is_dot_ = true;
        has_letter_ = false;
    }

    void lineTo(Place place) {
        const Place from = end();
        const std::int32_t x = place.x - from.x;
        const std::int32_t y = place.y - from.y;
        if (x == 0 && y == 0) return;
        // Both are at most as large as the frame, and so their products fit.
        if (step_.x * y == step_.y * x && step_.x * x + step_.y * y > 0) {
            step_.x += x;
            step_.y += y;
            return;
        }
        writeStep();
        step_ = {x, y};
    }

    /// Ends the line; one of a single place is a dot, which round ends make visible.
    void lift() {
        if (!is_down_) return;
        writeStep();
        if (is_dot_) path_.begin("h", 0);
        is_dot_ = false;
    }

    [[nodiscard]] const Coordinates::Steps& path() const { return path_; }

private:
    [[nodiscard]] Place end() const { return {last_.x + step_.x, last_.y + step_.y}; }

    void writeStep() {
        if (step_.x == 0 && step_.y == 0) return;
        if (has_letter_) {
            path_.step(step_.x);
        } else {
            path_.begin("l", step_.x);
        }
        path_.step(step_.y);
        has_letter_ = true;
        last_ = end();
        step_ = {0, 0};
        is_dot_ = false;
    }

    Coordinates::Steps path_;
    Place last_{0, 0}; ///< up to where it is written
    Place step_{0, 0}; ///< from there to where the line is
    bool is_down_ = false;
    bool is_dot_ = false;
    bool has_letter_ = false;
};

/// What is left of a piece of a line between two bounds of one coordinate, as parts of the piece.
bool cutPiece(double from, double to, double bound, double& begin, double& end) {
    if (from > bound && to > bound) return false;
    if (from > bound) {
        begin = std::max(begin, (from - bound) / (from - to));
    } else if (to > bound) {
        end = std::min(end, (from - bound) / (from - to));
    }
    return true;
}

Place placeOf(const Point& at) { return {rounded(at.x), rounded(at.y)}; }

bool isInside(const Point& at) { return at.x >= 0 && at.x <= kFrameWidth && at.y >= 0 && at.y <= kFrameHeight; }

/// Draws what is inside the frame of a piece of a line that is not inside as a whole.
void drawCut(Pen& pen, const Point& from, const Point& to) {
    double begin = 0.0;
    double end = 1.0;
    if (!cutPiece(from.x, to.x, kFrameWidth, begin, end) || !cutPiece(-from.x, -to.x, 0, begin, end) ||
        !cutPiece(from.y, to.y, kFrameHeight, begin, end) || !cutPiece(-from.y, -to.y, 0, begin, end) || begin > end)
        return;
    const auto at = [&](double part) {
        return placeOf({std::clamp(from.x + (to.x - from.x) * part, 0.0, double{kFrameWidth}),
                        std::clamp(from.y + (to.y - from.y) * part, 0.0, double{kFrameHeight})});
    };
    pen.moveTo(at(begin));
    pen.lineTo(at(end));
}

} // namespace

std::vector<Point> thinned(std::span<const Point> points, const Span& x) {
    if (points.size() <= kMostPoints) return {points.begin(), points.end()};
    constexpr double kColumnsOfPoints = kMostPoints / 4;
    std::vector<Point> kept;
    kept.reserve(kMostPoints);
    const auto columnOf = [&](const Point& point) {
        const double column = (point.x - x.low) / x.length() * kColumnsOfPoints;
        return std::clamp(std::floor(column), 0.0, kColumnsOfPoints - 1);
    };
    for (std::size_t first = 0; first < points.size();) {
        const double column = columnOf(points[first]);
        std::size_t lowest = first;
        std::size_t highest = first;
        std::size_t last = first;
        for (std::size_t i = first + 1; i < points.size() && columnOf(points[i]) == column; ++i) {
            if (points[i].y < points[lowest].y) lowest = i;
            if (points[i].y > points[highest].y) highest = i;
            last = i;
        }
        std::array places{first, std::min(lowest, highest), std::max(lowest, highest), last};
        const auto end = std::unique(places.begin(), places.end());
        for (auto place = places.begin(); place != end; ++place)
            kept.push_back(points[*place]);
        first = last + 1;
    }
    return kept;
}

void appendPath(Coordinates& path, std::span<const Point> points, const Frame& frame) {
    const double across = kFrameWidth / frame.x.length();
    const double down = kFrameHeight / frame.y.length();
    const auto in_frame = [&](const Point& point) {
        return Point{(point.x - frame.x.low) * across, (frame.y.high - point.y) * down};
    };
    Pen pen(path.beginSteps(4 * points.size()));
    Point before{};
    enum class Before : std::uint8_t { none, inside, outside } state = Before::none;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point at = in_frame(points[i]);
        const bool is_inside = isInside(at);
        if (!is_inside && !(canBeDrawn(points[i].x) && canBeDrawn(points[i].y))) continue;
        if (state == Before::none) {
            if (is_inside) pen.moveTo(placeOf(at));
        } else if (is_inside && state == Before::inside) {
            pen.lineTo(placeOf(at));
        } else {
            drawCut(pen, before, at);
        }
        before = at;
        state = is_inside ? Before::inside : Before::outside;
        if (!is_inside) continue;
        // Most lines are inside as a whole. A pen that nobody else sees is kept in registers.
        Pen quick = pen;
        for (; i + 1 < points.size(); ++i) {
            const Point next = in_frame(points[i + 1]);
            if (!isInside(next)) break;
            quick.lineTo(placeOf(next));
            before = next;
        }
        pen = quick;
    }
    pen.lift();
    path.endSteps(pen.path());
}

} // namespace kestrel
