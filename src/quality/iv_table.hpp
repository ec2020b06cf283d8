#pragma once

#include "model/crv.hpp"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// I-V tables as functions of the voltage.
namespace kestrel {

/// A row that has both numbers: of an I-V table volts and amperes, of a V-t table seconds and volts.
struct Point {
    double x;
    double y;
};

/// Which of the rows with equal first columns remain.
enum class EqualRows : std::uint8_t { keepAll, keepLast };

/// Room for points, used again and again. What was taken from it holds until it is emptied or made larger.
class PointRoom {
public:
    /// Throws the points away and makes room for so many.
    void empty(std::size_t room) {
        used_ = 0;
        if (points_.size() < room) points_.resize(room);
    }

private:
    friend std::span<const Point> orderedPoints(const Rows<TableRow>& rows, Corner corner, EqualRows equal,
                                                PointRoom& room);
    friend PerCorner<std::span<const Point>> orderedCorners(const Rows<TableRow>& rows, EqualRows equal,
                                                            PointRoom& room);

    std::vector<Point> points_;
    std::size_t used_ = 0;
};

/// The rows that have a number in the first column and in that of the corner, both finite, ordered by the first. There
/// must be room for all rows.
[[nodiscard]] std::span<const Point> orderedPoints(const Rows<TableRow>& rows, Corner corner, EqualRows equal,
                                                   PointRoom& room);

/// The same of all corners; there must be room for three times the rows.
[[nodiscard]] PerCorner<std::span<const Point>> orderedCorners(const Rows<TableRow>& rows, EqualRows equal,
                                                               PointRoom& room);

/// What holds above the last row of a table.
enum class AboveTable : bool { lastSlope, lastCurrent };

/// An I-V table of one corner: linear between its rows and beyond them with the slope of the outer two, but for what is
/// above the last row of a clamp. Without two rows there is no current.
class IvTable {
public:
    IvTable() = default;
    IvTable(std::span<const Point> points, AboveTable above);

    [[nodiscard]] bool hasData() const { return points_.size() >= 2; }
    /// The current never falls, or never rises, with the voltage; without data neither does.
    [[nodiscard]] bool neverFalls() const { return never_falls_; }
    [[nodiscard]] bool neverRises() const { return never_rises_; }
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

    /// A piece of the table: the line through a row, with its slope in siemens.
    struct Piece {
        Point from{};
        double slope = 0.0;

        [[nodiscard]] double at(double voltage) const { return from.y + slope * (voltage - from.x); }
    };
    [[nodiscard]] Piece piece(std::size_t number) const {
        const std::size_t last = points_.size() - 1;
        if (number > last && above_ == AboveTable::lastCurrent) return {points_[last], 0.0};
        const std::size_t left = number == 0 ? 0 : number > last ? last - 1 : number - 1;
        const Point& a = points_[left];
        const Point& b = points_[left + 1];
        // Beyond the last row from there on, so that the row itself is met exactly.
        return {number > last ? b : a, (b.y - a.y) / (b.x - a.x)};
    }
    /// The current at a voltage of this piece, in amperes.
    [[nodiscard]] double currentIn(std::size_t number, double voltage) const { return piece(number).at(voltage); }

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
        between(low, high, [&largest](double /*voltage*/, double current) {
            const double size = std::fabs(current);
            if (size > largest) largest = size;
        });
        return largest;
    }

private:
    std::span<const Point> points_;
    AboveTable above_ = AboveTable::lastSlope;
    bool never_falls_ = true;
    bool never_rises_ = true;
};

} // namespace kestrel
