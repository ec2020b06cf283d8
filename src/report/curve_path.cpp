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
    /// `points` are the most places that it goes to.
    Pen(Coordinates& path, std::size_t points) : path_(path, 4 * points + 4) {}
    Pen(const Pen&) = delete;
    Pen& operator=(const Pen&) = delete;
    ~Pen() { lift(); }

    void moveTo(Place place) {
        if (is_down_ && end() == place) return;
        lift();
        path_.letter("M");
        path_.step(place.x);
        path_.step(place.y);
        last_ = place;
        is_down_ = true;
        is_dot_ = true;
        letter_ = false;
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

private:
    [[nodiscard]] Place end() const { return {last_.x + step_.x, last_.y + step_.y}; }

    void writeStep() {
        if (step_.x == 0 && step_.y == 0) return;
        if (!letter_) path_.letter("l");
        letter_ = true;
        path_.step(step_.x);
        path_.step(step_.y);
        last_ = end();
        step_ = {0, 0};
        is_dot_ = false;
    }

    /// A line of one place is a dot, which round ends make visible.
    void lift() {
        if (!is_down_) return;
        writeStep();
        if (is_dot_) {
            path_.letter("h");
            path_.step(0);
        }
        is_dot_ = false;
    }

    Coordinates::Steps path_;
    Place last_{0, 0}; ///< up to where it is written
    Place step_{0, 0}; ///< from there to where the line is
    bool is_down_ = false;
    bool is_dot_ = false;
    bool letter_ = false;
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
    Pen pen(path, points.size());
    const double across = kFrameWidth / frame.x.length();
    const double down = kFrameHeight / frame.y.length();
    Point before{};
    enum class Before : std::uint8_t { none, inside, outside } state = Before::none;
    for (const Point& point : points) {
        if (!canBeDrawn(point.x) || !canBeDrawn(point.y)) continue;
        const Point at{(point.x - frame.x.low) * across, (frame.y.high - point.y) * down};
        const bool is_inside = isInside(at);
        if (is_inside && state == Before::inside) {
            pen.lineTo(placeOf(at));
        } else if (state != Before::none) {
            drawCut(pen, before, at);
        } else if (is_inside) {
            pen.moveTo(placeOf(at));
        }
        before = at;
        state = is_inside ? Before::inside : Before::outside;
    }
}

} // namespace kestrel
