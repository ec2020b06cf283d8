#include "base/make_room.hpp"
#include "base/text.hpp"
#include "package/mtx.hpp"
#include "package/token.hpp"
#include "reader/context.hpp"
#include "reader/decimal.hpp"
#include "reader/names.hpp"
#include "reader/values.hpp"

#include <algorithm>
#include <optional>
#include <utility>

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
std::uint32_t countRow(RowCounts& counts, const PackagePins& pins, std::string_view name, std::uint32_t index) {
    if (index == 0) return counts.of_others.try_emplace(std::string(name), 0).first->second++;
    if (index >= counts.of_pins.size()) counts.of_pins.resize(pins.size() + 1);
    std::uint32_t earlier = counts.of_pins[index]++;
    if (!counts.of_others.empty()) { // a pin may be listed behind the first row of its name
        const auto other = counts.of_others.find(name);
        earlier += other == counts.of_others.end() ? 0 : other->second;
    }
    return earlier;
}

/// How many rows of this name the matrix has, which gets another one.
std::uint32_t earlierRows(Mtx& mtx, const PackagePins& pins, std::string_view name, std::uint32_t index) {
    mtx.in_order = mtx.in_order && index == mtx.rows.size() + 1;
    if (mtx.in_order) return 0;
    if (mtx.row_counts == nullptr) {
        mtx.row_counts = std::make_unique<RowCounts>();
        for (std::size_t place = 0; place < mtx.rows.size(); ++place) {
            const std::string_view earlier = mtx.rows[place].pin_name;
            countRow(*mtx.row_counts, pins, earlier, pinPlace(pins, earlier, place + 1));
        }
    }
    return countRow(*mtx.row_counts, pins, name, index);
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
bool makeSlot(Diagnostics& diagnostics, Mtx& mtx) {
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

// The short ways below go by places in the line instead of views of it, which the compiler keeps in registers.

const char* skipBlanks(const char* at, const char* end) {
    while (at != end && isBlank(*at)) {
        ++at;
    }
    return at;
}

/// Where the token that begins at `at` ends, when it is this name; else null.
const char* endOfName(const char* at, const char* end, std::string_view name) {
    if (static_cast<std::size_t>(end - at) <= name.size() || !isBlank(at[name.size()])) return nullptr;
    for (const char c : name) {
        if (*at != c || isBlank(c)) return nullptr; // the names of pins may have blanks, tokens none
        ++at;
    }
    return at;
}

/// Reads the value that begins at `at` and returns where it ends; null for one that is not plain.
const char* readPlainValue(const char* at, const char* end, double& value) {
    at = readPlainNumber(at, end, value);
    return at == end || (at != nullptr && isBlank(*at)) ? at : nullptr;
}

/// Reads values as long as they are plain and have slots, which is nearly always. Returns what is left of the line.
std::string_view readPlainValues(RowStore& store, MtxRow& row, MtxValues& values, std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* at = skipBlanks(text.data(), end);
    while (at != end && values.size() < row.column_count) {
        double value = 0.0;
        const char* const value_end = readPlainValue(at, end, value);
        if (value_end == nullptr) break;
        store.add(values, value);
        row.self_coupled = true;
        at = skipBlanks(value_end, end);
    }
    return {at, end};
}

/// A line of values, each of which fills the next slot.
void readValues(Context& context, Mtx& mtx, std::string_view text) {
    MtxRow& row = mtx.rows.back();
    auto& values = std::get<MtxValues>(row.given);
    if (context.short_paths) text = readPlainValues(context.rows, row, values, text);
    for (std::string_view token = takeToken(text); !token.empty(); token = takeToken(text)) {
        double value = 0.0;
        if (!readValue(context.diagnostics, token, value)) return;
        if (values.size() == row.column_count && !makeSlot(context.diagnostics, mtx)) return;
        context.rows.add(values, value);
        row.self_coupled = true;
    }
}

void takeColumn(TakenColumns& taken, std::uint32_t column) {
    if (column >= taken.row_of.size()) taken.row_of.resize(std::size_t{column} + 1);
    taken.row_of[column] = taken.row;
}

/// Adds an entry to the last row.
void addEntry(RowStore& store, Mtx& mtx, MtxEntries& entries, MtxEntry entry) {
    store.add(entries, entry);
    mtx.last_column = std::max(mtx.last_column, entry.column());
    if (mtx.taken_columns.row == mtx.rows.size()) takeColumn(mtx.taken_columns, entry.column());
}

/// True when the last row has an entry in this column. Only columns that do not come in order need a list.
bool isColumnTaken(Mtx& mtx, const MtxEntries& entries, std::uint32_t column) {
    if (column > mtx.last_column) return false;
    TakenColumns& taken = mtx.taken_columns;
    const auto row = static_cast<std::uint32_t>(mtx.rows.size());
    if (taken.row != row) {
        taken.row = row;
        for (const MtxEntry& entry : entries) {
            takeColumn(taken, entry.column());
        }
    }
    return taken.row_of[column] == row;
}

/// The column that the next entry of the last row has in a matrix that leaves none out.
std::size_t nextColumn(const Mtx& mtx, const MtxEntries& entries) {
    return entries.empty() ? mtx.rows.size() : std::size_t{entries.back().column()} + 1;
}

/// The 1-based column that a sparse line names, in the last row; 0 when it was reported.
std::uint32_t readColumn(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view name) {
    MtxRow& row = mtx.rows.back();
    const auto& entries = std::get<MtxEntries>(row.given);
    if (name.empty()) {
        errorAtLine(diagnostics, 3110);
        return 0;
    }
    if (name == row.pin_name) row.self_coupled = true;
    const std::uint32_t column = pinPlace(pins, name, nextColumn(mtx, entries));
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
    if (isColumnTaken(mtx, entries, column)) {
        errorAtLine(diagnostics, 3113, column);
        return 0;
    }
    return column;
}

/// Reads the line of an entry as nearly all are: the pin behind that of the entry before, and a plain value. False,
/// with nothing stored, for any other.
bool readPlainEntry(RowStore& store, Mtx& mtx, const PackagePins& pins, std::string_view text) {
    MtxRow& row = mtx.rows.back();
    auto& entries = std::get<MtxEntries>(row.given);
    const std::size_t column = nextColumn(mtx, entries);
    if (column <= mtx.last_column || column > row.column_count || column > pins.size() || pins.anyRepeated()) {
        return false;
    }
    const std::string_view name = pins[column - 1];
    const char* const end = text.data() + text.size();
    const char* at = endOfName(skipBlanks(text.data(), end), end, name);
    double value = 0.0;
    if (at == nullptr || readPlainValue(skipBlanks(at, end), end, value) != end) return false;
    if (!row.self_coupled && name == row.pin_name) row.self_coupled = true;
    addEntry(store, mtx, entries, {static_cast<std::uint32_t>(column), value});
    return true;
}

/// A line of a sparse matrix: the pin of a column, then the value.
void readEntry(Context& context, Mtx& mtx, const PackagePins& pins, std::string_view text) {
    if (context.short_paths && readPlainEntry(context.rows, mtx, pins, text)) return;
    Diagnostics& diagnostics = context.diagnostics;
    const std::uint32_t column = readColumn(diagnostics, mtx, pins, takeToken(text));
    if (column == 0) return;
    const std::string_view token = takeToken(text);
    if (token.empty()) {
        errorAtLine(diagnostics, 3114);
        return;
    }
    double value = 0.0;
    if (!readValue(diagnostics, token, value)) return;
    addEntry(context.rows, mtx, std::get<MtxEntries>(mtx.rows.back().given), {column, value});
    if (const std::string_view more = takeToken(text); !more.empty()) errorAtLine(diagnostics, 3115, more);
}

/// Adds a row, of the pin at the 1-based place `index` or, when 0, of a name that is no pin's.
void addRow(Context& context, Mtx& mtx, const PackagePins& pins, std::string_view name, std::uint32_t index,
            std::uint64_t columns) {
    constexpr std::size_t kGrowth = 16; // in great steps: rows that move take their room twice for a while
    if (mtx.rows.size() == mtx.rows.capacity()) {
        makeRoom(mtx.rows, std::min(pins.size(), kGrowth * (mtx.rows.size() + 1)));
    }
    MtxRow& row = mtx.rows.emplace_back();
    row.pin_name = index == 0 ? context.texts.add(name) : pins[index - 1];
    if (mtx.kind == MtxKind::sparse) row.given = MtxEntries{};
    row.column_count = columns;
    mtx.widest = std::max(mtx.widest, columns);
    mtx.last_column = 0;
}

} // namespace

void beginRow(Context& context, Mtx& mtx, const PackagePins& pins, std::string_view name) {
    Diagnostics& diagnostics = context.diagnostics;
    const std::optional<std::uint64_t> columns = nextColumnCount(mtx);
    if (!columns) return;
    if (name.empty()) {
        errorAtLine(diagnostics, 3120);
        return;
    }
    const int limit = packagePinLimit(context.parse.version);
    if (std::cmp_greater(name.size(), limit)) errorAtLine(diagnostics, 3121);
    name = trim(cutName(name, limit));
    if (*columns == 0) {
        errorAtLine(diagnostics, 3122);
        return;
    }
    const std::uint32_t index = pinPlace(pins, name, mtx.rows.size() + 1);
    if (index == 0) errorAtLine(diagnostics, 3100, name);
    for (std::uint32_t earlier = earlierRows(mtx, pins, name, index); earlier > 0; --earlier) {
        errorAtLine(diagnostics, 3101, name);
    }
    addRow(context, mtx, pins, name, index, *columns);
    if (index != 0 && index != mtx.rows.size()) errorAtLine(diagnostics, 3102, name, index, mtx.rows.size());
}

void rowLine(Context& context, Mtx& mtx, const PackagePins& pins, std::string_view text) {
    if (mtx.rows.empty()) return;
    if (mtx.kind == MtxKind::sparse) {
        readEntry(context, mtx, pins, text);
    } else {
        readValues(context, mtx, text);
    }
}

} // namespace kestrel
