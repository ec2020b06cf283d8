#include "quality/iv_table.hpp"

#include <algorithm>
#include <limits>

namespace kestrel {

namespace {

/// True for numbers but infinite ones.
bool isFinite(const Cell& cell) {
    return cell.isNumber() && std::fabs(cell.value()) <= std::numeric_limits<double>::max();
}

} // namespace

std::span<const Point> orderedPoints(const Rows<TableRow>& rows, Corner corner, EqualRows equal, PointRoom& room) {
    const Column column = columnOf(corner);
    const std::span<Point> free = std::span(room.points_).subspan(room.used_, rows.size());
    std::size_t count = 0;
    bool rises = true;
    bool falls = true;
    double before = 0.0;
    for (const TableRow& row : rows) {
        if (!isFinite(row[kFirst]) || !isFinite(row[column])) continue;
        const double x = row[kFirst].value();
        if (count != 0) {
            rises = rises && before < x;
            falls = falls && before > x;
        }
        before = x;
        free[count++] = {x, row[column].value()};
    }
    std::span<Point> points = free.first(count);
    if (!rises && falls) {
        std::ranges::reverse(points);
    } else if (!rises) {
        // The later of equal rows stays behind the earlier one.
        std::stable_sort(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
        if (equal == EqualRows::keepLast) {
            std::size_t kept = 0;
            for (std::size_t i = 0; i < points.size(); ++i)
                if (i + 1 == points.size() || points[i + 1].x != points[i].x) points[kept++] = points[i];
            points = points.first(kept);
        }
    }
    room.used_ += points.size();
    return points;
}

} // namespace kestrel
