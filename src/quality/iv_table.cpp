#include "quality/iv_table.hpp"

#include <algorithm>
#include <bit>
#include <limits>

namespace kestrel {

namespace {

/// True for numbers but infinite ones.
bool isFinite(const Cell& cell) {
    return cell.isNumber() && std::fabs(cell.value()) <= std::numeric_limits<double>::max();
}

/// The same for all cells of a row, without a branch: the difference of a number to itself is 0 only where it is
/// finite.
bool isFinite(const TableRow& row) {
    double sum = 0.0;
    for (const Cell cell : row.cells) {
        const auto value = std::bit_cast<double>(cell);
        sum += value - value;
    }
    return sum == 0.0;
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

PerCorner<std::span<const Point>> orderedCorners(const Rows<TableRow>& rows, EqualRows equal, PointRoom& room) {
    // Nearly all tables have all of their numbers and rising first columns: these are read once.
    const std::size_t size = rows.size();
    const std::span<Point> free = std::span(room.points_).subspan(room.used_, kCornerCount * size);
    Point* const typ = free.data();
    Point* const min = typ + size;
    Point* const max = min + size;
    double before = -std::numeric_limits<double>::infinity();
    std::size_t count = 0;
    for (; count < size; ++count) {
        const TableRow& row = rows[count];
        const double x = row[kFirst].value();
        if (!isFinite(row) || !(x > before)) break;
        before = x;
        typ[count] = {x, row[kTyp].value()};
        min[count] = {x, row[kMin].value()};
        max[count] = {x, row[kMax].value()};
    }
    PerCorner<std::span<const Point>> found;
    if (count == size) {
        room.used_ += free.size();
        for (const Corner corner : kCorners)
            found[corner] = free.subspan(placeOf(corner) * size, size);
        return found;
    }
    for (const Corner corner : kCorners)
        found[corner] = orderedPoints(rows, corner, equal, room);
    return found;
}

IvTable::IvTable(std::span<const Point> points, AboveTable above) : points_(points), above_(above) {
    double least = 0.0;
    double most = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double step = points[i].y - points[i - 1].y;
        least = step < least ? step : least;
        most = step > most ? step : most;
    }
    never_falls_ = least >= 0.0;
    never_rises_ = most <= 0.0;
}

} // namespace kestrel
