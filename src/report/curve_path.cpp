#include "report/curve_path.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace kestrel {

namespace {

/// A place in the frame.
struct Place {
    std::int32_t x;
    std::int32_t y;
};

/// Values as places, not yet rounded.
class Scale {
public:
    explicit Scale(const Frame& frame)
        : across_(kFrameWidth / frame.x.length()),
          down_(-kFrameHeight / frame.y.length()),
          left_(-frame.x.low * across_),
          top_(-frame.y.high * down_) {}

    [[nodiscard]] Point operator()(const Point& point) const {
        return {point.x * across_ + left_, point.y * down_ + top_};
    }

private:
    double across_;
    double down_;
    double left_;
    double top_;
};

Place placeOf(const Point& at) { return {rounded(at.x), rounded(at.y)}; }

/// The nearest place, or one beside the frame for what is outside, and for what is no number.
std::int32_t nearest(double at, std::int32_t size) {
    const double below = at < size + 1.0 ? at : size + 1.0;
    const double between = below > -1.0 ? below : -1.0;
    return static_cast<std::int32_t>(between + 1.5) - 1;
}
Place nearestPlace(const Point& at) { return {nearest(at.x, kFrameWidth), nearest(at.y, kFrameHeight)}; }

bool isInside(const Place& place) {
    return static_cast<std::uint32_t>(place.x) <= kFrameWidth && static_cast<std::uint32_t>(place.y) <= kFrameHeight;
}

/// Writes the moves of one line. The last step waits to see whether the next goes on in its direction.
class Pen {
public:
    explicit Pen(const Coordinates::Steps& path) : path_(path) {}

    void moveTo(Place place) {
        if (is_down_ && x_ == place.x && y_ == place.y) return;
        lift();
        path_.begin("M", place.x);
        path_.step(place.y);
        x_ = place.x;
        y_ = place.y;
        is_down_ = true;
        has_letter_ = false;
    }

    void lineTo(Place place) {
        const std::int32_t across = place.x - x_;
        const std::int32_t down = place.y - y_;
        if ((across | down) == 0) return;
        x_ = place.x;
        y_ = place.y;
        // Steps are at most as long as the frame, and so their products fit.
        if (across_ * down == down_ * across && across_ * across + down_ * down > 0) {
            across_ += across;
            down_ += down;
            return;
        }
        writeStep();
        across_ = across;
        down_ = down;
    }

    /// Draws on through the points as long as they are in the frame; returns how many were.
    std::size_t lineThrough(std::span<const Point> points, const Scale& scale) {
        Pen pen = *this; // which nobody else sees, and so is kept in registers
        const Scale places = scale;
        std::size_t count = 0;
        for (; count < points.size(); ++count) {
            const Place place = nearestPlace(places(points[count]));
            if (!isInside(place)) break;
            pen.lineTo(place);
        }
        *this = pen;
        return count;
    }

    /// Ends the line; one of a single place is a dot, which round ends make visible.
    void lift() {
        if (!is_down_) return;
        writeStep();
        if (!has_letter_) path_.begin("h", 0);
        across_ = down_ = 0;
        is_down_ = false;
    }

    [[nodiscard]] const Coordinates::Steps& path() const { return path_; }

private:
    void writeStep() {
        if ((across_ | down_) == 0) return;
        if (has_letter_) {
            path_.step(across_);
        } else {
            path_.begin("l", across_);
        }
        path_.step(down_);
        has_letter_ = true;
    }

    Coordinates::Steps path_;
    std::int32_t x_ = 0; ///< where the line is
    std::int32_t y_ = 0;
    std::int32_t across_ = 0; ///< the step that waits
    std::int32_t down_ = 0;
    bool is_down_ = false;
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
    constexpr double kColumnsOfPoints = double{kMostPoints} / 4;
    std::vector<Point> kept;
    kept.reserve(kMostPoints);
    const auto column_of = [&](const Point& point) {
        const double column = (point.x - x.low) / x.length() * kColumnsOfPoints;
        return std::clamp(std::floor(column), 0.0, kColumnsOfPoints - 1);
    };
    for (std::size_t first = 0; first < points.size();) {
        const double column = column_of(points[first]);
        std::size_t lowest = first;
        std::size_t highest = first;
        std::size_t last = first;
        for (std::size_t i = first + 1; i < points.size() && column_of(points[i]) == column; ++i) {
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
    const Scale scale(frame);
    Pen pen(path.beginSteps(4 * points.size()));
    std::optional<Point> before;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!canBeDrawn(points[i].x) || !canBeDrawn(points[i].y)) continue;
        const Point at = scale(points[i]);
        if (before) drawCut(pen, *before, at);
        const Place place = nearestPlace(at);
        if (isInside(place)) {
            pen.moveTo(place);                                  // unless the line got there
            i += pen.lineThrough(points.subspan(i + 1), scale); // most lines are inside as a whole
        }
        before = scale(points[i]);
    }
    pen.lift();
    path.endSteps(pen.path());
}

} // namespace kestrel
