#include "report/curve_path.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

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
    explicit Pen(std::string& path) : path_(path) {}
    Pen(const Pen&) = delete;
    Pen& operator=(const Pen&) = delete;
    ~Pen() { lift(); }

    void moveTo(Place place) {
        if (last_ && end() == place) return;
        lift();
        path_.push_back('M');
        appendStep(path_, place.x);
        appendStep(path_, place.y);
        last_ = place;
        is_dot_ = true;
        letter_ = false;
    }

    void lineTo(Place place) {
        const Place from = end();
        const std::int32_t x = place.x - from.x;
        const std::int32_t y = place.y - from.y;
        if (x == 0 && y == 0) return;
        const std::int64_t across = std::int64_t{step_.x} * y - std::int64_t{step_.y} * x;
        const std::int64_t along = std::int64_t{step_.x} * x + std::int64_t{step_.y} * y;
        if (across == 0 && along > 0) {
            step_.x += x;
            step_.y += y;
            return;
        }
        writeStep();
        step_ = {x, y};
    }

private:
    [[nodiscard]] Place end() const { return {last_->x + step_.x, last_->y + step_.y}; }

    void writeStep() {
        if (step_.x == 0 && step_.y == 0) return;
        if (!letter_) path_.push_back('l');
        letter_ = true;
        appendStep(path_, step_.x);
        appendStep(path_, step_.y);
        last_ = end();
        step_ = {0, 0};
        is_dot_ = false;
    }

    /// A line of one place is a dot, which round ends make visible.
    void lift() {
        if (!last_) return;
        writeStep();
        if (is_dot_) path_.append("h0");
        is_dot_ = false;
    }

    std::string& path_;
    std::optional<Place> last_; ///< up to where it is written
    Place step_{0, 0};          ///< from there to where the line is
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

Place rounded(double x, double y) {
    return {static_cast<std::int32_t>(std::lrint(x)), static_cast<std::int32_t>(std::lrint(y))};
}

bool isInside(const Point& at) { return at.x >= 0 && at.x <= kFrameWidth && at.y >= 0 && at.y <= kFrameHeight; }

/// Draws a piece of a line, cut off at the frame.
void drawPiece(Pen& pen, const Point& from, const Point& to) {
    if (isInside(from) && isInside(to)) {
        pen.moveTo(rounded(from.x, from.y));
        pen.lineTo(rounded(to.x, to.y));
        return;
    }
    double begin = 0.0;
    double end = 1.0;
    if (!cutPiece(from.x, to.x, kFrameWidth, begin, end) || !cutPiece(-from.x, -to.x, 0, begin, end) ||
        !cutPiece(from.y, to.y, kFrameHeight, begin, end) || !cutPiece(-from.y, -to.y, 0, begin, end) || begin > end)
        return;
    const auto at = [&](double part) {
        return rounded(std::clamp(from.x + (to.x - from.x) * part, 0.0, double{kFrameWidth}),
                       std::clamp(from.y + (to.y - from.y) * part, 0.0, double{kFrameHeight}));
    };
    pen.moveTo(at(begin));
    pen.lineTo(at(end));
}

} // namespace

void appendStep(std::string& path, std::int32_t number) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    const bool parted = number < 0 || path.empty() || path.back() < '0' || path.back() > '9';
    if (!parted) path.push_back(' ');
    path.append(digits.data(), end.ptr);
}

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

void appendPath(std::string& path, std::span<const Point> points, const Frame& frame) {
    Pen pen(path);
    std::optional<Point> before;
    const double across = kFrameWidth / frame.x.length();
    const double down = kFrameHeight / frame.y.length();
    for (const Point& point : points) {
        if (!canBeDrawn(point.x) || !canBeDrawn(point.y)) continue;
        const Point at{(point.x - frame.x.low) * across, (frame.y.high - point.y) * down};
        if (before) {
            drawPiece(pen, *before, at);
        } else if (isInside(at)) {
            pen.moveTo(rounded(at.x, at.y));
        }
        before = at;
    }
}

} // namespace kestrel
