#pragma once

#include "model/crv.hpp"

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

/// I-V tables as functions of the voltage.
namespace kestrel {

/// A row that has both numbers: of an I-V table volts and amperes, of a V-t table seconds and volts.
struct Point {
    double x;
    double y;
};

/// Appends the rows that have a number in the first column and in that of the corner, ordered by the first; rows
/// without a finite number are left out. Of equal ones in the first column only the last remains, where that is wanted.
enum class EqualRows : bool { keepAll, keepLast };
[[nodiscard]] std::span<const Point> orderedPoints(const Rows<TableRow>& rows, Corner corner, EqualRows equal,
                                                   std::vector<Point>& room);

/// What holds above the last row of a table.
enum class AboveTable : bool { lastSlope, lastCurrent };

/// An I-V table of one corner: linear between its rows and beyond them with the slope of the outer two, but for what is
/// above the last row of a clamp. Without two rows there is no current.
class IvTable {
public:
    IvTable() = default;
    IvTable(std::span<const Point> points, AboveTable above) : points_(points), above_(above) {}

    [[nodiscard]] bool hasData() const { return points_.size() >= 2; }
    [[nodiscard]] std::span<const Point> points() const { return points_; }
    [[nodiscard]] double firstVoltage() const { return points_.front().x; }
    [[nodiscard]] double lastVoltage() const { return points_.back().x; }

    /// How many of the rows from `from` to `to` lie at or below the voltage, and all rows before them: the number of
    /// the piece of the table that it is in.
    [[nodiscard]] std::size_t pieceOf(double voltage, std::size_t from, std::size_t to) const {
        while (from < to) {
            const std::size_t middle = from + (to - from) / 2;
            if (points_[middle].x <= voltage) {
                from = middle + 1;
            } else {
                to = middle;
            }
        }
        return from;
    }

    /// The current at a voltage of this piece, in amperes.
    [[nodiscard]] double currentIn(std::size_t piece, double voltage) const {
        const std::size_t last = points_.size() - 1;
        if (piece > last && above_ == AboveTable::lastCurrent) return points_[last].y;
        const std::size_t left = piece == 0 ? 0 : piece > last ? last - 1 : piece - 1;
        const Point& a = points_[left];
        const Point& b = points_[left + 1];
        return a.y + (b.y - a.y) * ((voltage - a.x) / (b.x - a.x));
    }

    /// The current at a voltage, in amperes.
    [[nodiscard]] double at(double voltage) const { return currentIn(pieceOf(voltage, 0, points_.size()), voltage); }

    /// Calls `visit` with the voltage and current at `low`, of the rows between, and at `high`.
    template <class Visit> void between(double low, double high, Visit visit) const {
        visit(low, at(low));
        for (std::size_t i = pieceOf(low, 0, points_.size()); i < points_.size() && points_[i].x < high; ++i)
            visit(points_[i].x, points_[i].y);
        visit(high, at(high));
    }

    /// The largest magnitude of the current between two voltages.
    [[nodiscard]] double largestBetween(double low, double high) const {
        double largest = 0.0;
        between(low, high,
                [&largest](double /*voltage*/, double current) { largest = std::fmax(largest, std::fabs(current)); });
        return largest;
    }

private:
    std::span<const Point> points_;
    AboveTable above_ = AboveTable::lastSlope;
};

} // namespace kestrel
