#include "base/text.hpp"
#include "diagnostics/diagnostics.hpp"
#include "package/mtx.hpp"
#include "package/token.hpp"
#include "reader/names.hpp"
#include "reader/values.hpp"

#include <algorithm>
#include <optional>

namespace kestrel {

namespace {

/// Slots of every row of a banded matrix that neither the edge of the matrix nor the wrap cuts short.
std::uint64_t bandWidth(const Mtx& mtx) { return std::uint64_t{mtx.bandwidth} + 1; }

/// Slots of the row that comes next; nothing when the matrix takes no further row.
std::optional<std::uint64_t> nextColumnCount(const Mtx& mtx) {
    const std::uint64_t order = mtx.order;
    const std::uint64_t rows = mtx.rows.size();
    switch (mtx.kind) {
    case MtxKind::banded:
        if (rows > order) return std::nullopt;
        return std::min(bandWidth(mtx), order - rows);
    case MtxKind::bandedWrap:
        if (rows > order) return std::nullopt;
        return bandWidth(mtx);
    case MtxKind::sparse: return order;
    case MtxKind::full:
        if (rows >= order) return std::nullopt;
        return order - rows;
    case MtxKind::unknown: break;
    }
    return std::nullopt;
}

/// Counts a row of this name and returns how many there were before; `index` is the place of its pin, or 0.
std::uint32_t countRow(Mtx& mtx, const PackagePins& pins, std::string_view name, std::uint32_t index) {
    if (index == 0) return mtx.unknown_rows.try_emplace(std::string(name), 0).first->second++;
    if (index >= mtx.pin_rows.size()) mtx.pin_rows.resize(pins.size() + 1);
    std::uint32_t earlier = mtx.pin_rows[index]++;
    if (!mtx.unknown_rows.empty()) { // a pin may be listed behind the first row of its name
        const auto unknown = mtx.unknown_rows.find(name);
        earlier += unknown == mtx.unknown_rows.end() ? 0 : unknown->second;
    }
    return earlier;
}

/// Reads one value; false when it was reported as unreadable.
bool readValue(Diagnostics& diagnostics, std::string_view token, double& value) {
    const ReadResult result = readScaled(token, value);
    if (result == ReadResult::noNumber) {
        errorAtLine(diagnostics, 3103);
        return false;
    }
    if (result == ReadResult::numberAndText) warningAtLine(diagnostics, 3104);
    return true;
}

/// Gives every row of a banded matrix, the last one included, as many slots as the band is wide. False when it was
/// reported as impossible.
bool turnIntoWrap(Diagnostics& diagnostics, Mtx& mtx) {
    const std::uint32_t limit = mtx.order == 0 ? 0 : (mtx.order - 1) / 2;
    if (mtx.bandwidth > limit) {
        errorAtLine(diagnostics, 3708, limit);
        return false;
    }
    const std::uint64_t columns = bandWidth(mtx);
    const MtxRow& last = mtx.rows.back();
    // A second matrix keyword lets a file narrow the band behind rows that were made for a wider one.
    if (columns <= last.column_count) {
        const SourceMark mark = here();
        programBugAtLine(diagnostics, 3108, mark.file, mark.line, columns, last.column_count);
        return false;
    }
    if (mtx.widest > columns) {
        programBugHereAtLine(diagnostics, 3109);
        return false;
    }
    mtx.kind = MtxKind::bandedWrap;
    for (MtxRow& row : mtx.rows) {
        row.column_count = columns;
    }
    mtx.widest = columns;
    return true;
}

/// Looks for room for one more value in a row that has none; false when it was reported that there is no way to make
/// some.
bool makeRoom(Diagnostics& diagnostics, Mtx& mtx) {
    if (mtx.kind == MtxKind::full) {
        errorAtLine(diagnostics, 3105);
        return false;
    }
    const std::uint64_t columns = mtx.rows.back().column_count;
    if (columns == bandWidth(mtx) || mtx.rows.size() + columns <= mtx.order || mtx.kind == MtxKind::bandedWrap) {
        errorAtLine(diagnostics, 3107, columns);
        return false;
    }
    return turnIntoWrap(diagnostics, mtx);
}

/// A line of values, each of which fills the next slot.
void readValues(Diagnostics& diagnostics, Mtx& mtx, std::string_view text) {
    MtxRow& row = mtx.rows.back();
    for (std::string_view token = takeToken(text); !token.empty(); token = takeToken(text)) {
        double value = 0.0;
        if (!readValue(diagnostics, token, value)) return;
        if (row.filled == row.column_count && !makeRoom(diagnostics, mtx)) return;
        mtx.values.push_back(value);
        ++row.filled;
        row.self_coupled = true;
    }
}

/// The 1-based column that a sparse line names, in the last row; 0 when it was reported.
std::uint32_t readColumn(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view name) {
    MtxRow& row = mtx.rows.back();
    if (name.empty()) {
        errorAtLine(diagnostics, 3110);
        return 0;
    }
    if (name == row.pin_name) row.self_coupled = true;
    const std::size_t guess = row.filled == 0 ? mtx.rows.size() : std::size_t{mtx.columns.back()} + 1;
    const std::uint32_t column = pinPlace(pins, name, guess);
    if (column == 0) {
        errorAtLine(diagnostics, 3100, name);
        return 0;
    }
    if (column < mtx.rows.size()) {
        errorAtLine(diagnostics, 3111);
        return 0;
    }
    if (column > row.column_count) {
        programBugHereAtLine(diagnostics, 3112);
        return 0;
    }
    if (column < mtx.column_row.size() && mtx.column_row[column] == mtx.rows.size()) {
        errorAtLine(diagnostics, 3113, column);
        return 0;
    }
    return column;
}

/// A line of a sparse matrix: the pin of a column, then the value.
void readEntry(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view text) {
    const std::uint32_t column = readColumn(diagnostics, mtx, pins, takeToken(text));
    if (column == 0) return;
    const std::string_view token = takeToken(text);
    if (token.empty()) {
        errorAtLine(diagnostics, 3114);
        return;
    }
    double value = 0.0;
    if (!readValue(diagnostics, token, value)) return;
    if (column >= mtx.column_row.size()) mtx.column_row.resize(pins.size() + 1);
    mtx.column_row[column] = static_cast<std::uint32_t>(mtx.rows.size());
    mtx.columns.push_back(column);
    mtx.values.push_back(value);
    ++mtx.rows.back().filled;
    if (const std::string_view more = takeToken(text); !more.empty()) errorAtLine(diagnostics, 3115, more);
}

} // namespace

void beginRow(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view name) {
    const std::optional<std::uint64_t> columns = nextColumnCount(mtx);
    if (!columns) return;
    if (name.empty()) {
        errorAtLine(diagnostics, 3120);
        return;
    }
    if (name.size() > kPackagePinLimit) errorAtLine(diagnostics, 3121);
    name = trim(cutName(name, kPackagePinLimit));
    if (*columns == 0) {
        errorAtLine(diagnostics, 3122);
        return;
    }
    const std::uint32_t index = pinPlace(pins, name, mtx.rows.size() + 1);
    if (index == 0) errorAtLine(diagnostics, 3100, name);
    for (std::uint32_t earlier = countRow(mtx, pins, name, index); earlier > 0; --earlier) {
        errorAtLine(diagnostics, 3101, name);
    }
    mtx.rows.push_back({.pin_name = std::string(name), .column_count = *columns});
    mtx.widest = std::max(mtx.widest, *columns);
    if (index != 0 && index != mtx.rows.size()) errorAtLine(diagnostics, 3102, name, index, mtx.rows.size());
}

void rowLine(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view text) {
    if (mtx.rows.empty()) return;
    if (mtx.kind == MtxKind::sparse) {
        readEntry(diagnostics, mtx, pins, text);
    } else {
        readValues(diagnostics, mtx, text);
    }
}

} // namespace kestrel
