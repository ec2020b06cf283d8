#include "quality/iv_table.hpp"

#include <algorithm>

namespace kestrel {

std::span<const Point> orderedPoints(const Rows<TableRow>& rows, Corner corner, EqualRows equal,
                                     std::vector<Point>& room) {
    const std::size_t from = room.size();
    const Column column = columnOf(corner);
    bool ordered = true;
    for (const TableRow& row : rows) {
        const double x = row[kFirst].value();
        const double y = row[column].value();
        if (!row[kFirst].isNumber() || !row[column].isNumber() || !std::isfinite(x) || !std::isfinite(y)) continue;
        ordered = ordered && (room.size() == from || room.back().x < x);
        room.push_back({x, y});
    }
    const auto begin = room.begin() + static_cast<std::ptrdiff_t>(from);
    if (!ordered) {
        // Tables run down as well as up. The later of equal rows stays behind the earlier one.
        std::stable_sort(begin, room.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
        if (equal == EqualRows::keepLast) {
            auto kept = begin;
            for (auto point = begin; point != room.end(); ++point) {
                const auto next = point + 1;
                if (next == room.end() || next->x != point->x) *kept++ = *point;
            }
            room.erase(kept, room.end());
        }
    }
    return std::span<const Point>(room).subspan(from);
}

} // namespace kestrel
