#pragma once

#include "reader/rng.hpp"

#include <array>

namespace kestrel {

/// The columns of an I-V or V-t table.
enum Column : std::uint8_t { kFirst = 0, kTyp = 1, kMin = 2, kMax = 3 };
inline constexpr std::size_t kColumns = 4;

/// The column of a corner's values.
[[nodiscard]] constexpr Column columnOf(Corner corner) { return static_cast<Column>(kTyp + placeOf(corner)); }

/// The word for a column in messages about its values; the first column goes by the table's own word.
[[nodiscard]] constexpr std::string_view columnWord(Column column) { return kCornerWords[column - kTyp]; }

/// One line of an I-V or V-t table: the voltage or time, then typical, minimum and maximum.
struct TableRow {
    std::array<Cell, kColumns> cells{};

    [[nodiscard]] Cell& operator[](Column column) { return cells[column]; }
    [[nodiscard]] const Cell& operator[](Column column) const { return cells[column]; }
    bool operator==(const TableRow& other) const = default;
};
static_assert(sizeof(TableRow) == kColumns * sizeof(double)); // tables make up most of what large files leave in memory

/// The first item of a line, read ahead to see whether the line is a row.
struct FirstCell {
    std::string_view item;
    ReadResult result = ReadResult::noNumber;
    Cell cell{};

    /// "NA" begins a row, too, if a bad one.
    [[nodiscard]] bool beginsRow() const { return result != ReadResult::noNumber; }
};

/// Reads the first item of a line and reports nothing.
[[nodiscard]] FirstCell readFirstCell(std::string_view item);

/// Reads a line that is four plain cells, as nearly all lines of tables are: decimal numbers with or without a unit,
/// and "NA" behind the first. False for any other, of which nothing is reported: readRow() reads it as it reads plain
/// ones. Tables are read in a third of the time.
[[nodiscard]] bool readPlainRow(const Context& context, std::string_view text, TableRow& row);

/// Reads one line of a table. A row is made whatever its cells hold, callers go by their states.
[[nodiscard]] TableRow readRow(Context& context, std::string_view text, std::string_view table,
                               std::string_view first_label, const FirstCell& first = {});

} // namespace kestrel
