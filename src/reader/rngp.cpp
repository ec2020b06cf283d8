#include "reader/rngp.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/values.hpp"

namespace kestrel {

namespace {

constexpr int kItems = static_cast<int>(kColumns);

void reportCount(Diagnostics& diagnostics, int count, std::string_view table) {
    if (count == 0 || count > kItems) {
        errorAtLine(diagnostics, 1402, count, table, kItems);
        return;
    }
    for (auto column = static_cast<std::size_t>(count); column < kColumns; ++column) {
        errorAtLine(diagnostics, 1401, kMissingCornerWords[column - kTyp], table);
    }
}

} // namespace

FirstCell readFirstCell(std::string_view item) {
    FirstCell first{.item = item};
    bool na = false;
    first.result = readValueOrNa(item, first.cell.value, na);
    first.cell.state = na ? CellState::na : CellState::number;
    return first;
}

TableRow readRow(Context& context, std::string_view text, std::string_view table, std::string_view first_label,
                 const FirstCell& first) {
    const ItemList items = splitItems(context, text, kItems);
    if (items.count != kItems) {
        reportCount(context.diagnostics, items.count, table);
    }
    // Where the line was split at more than blanks, the item read ahead is but a part of the row's.
    const bool is_read = first.result == ReadResult::number && first.item.size() == items[0].size();
    TableRow row;
    for (int column = 0; column < kItems; ++column) {
        const auto at = static_cast<std::size_t>(column);
        Cell cell = first.cell;
        if (column > 0 || !is_read) {
            const std::string_view label = column == kFirst ? first_label : columnWord(static_cast<Column>(column));
            readCell(context.diagnostics, items[column], items.has(column), table, label, cell);
        }
        row.value[at] = cell.value;
        row.state[at] = cell.state;
    }
    return row;
}

std::size_t appendRow(Diagnostics& diagnostics, std::vector<TableRow>& rows, const TableRow& row,
                      RepeatIndex* repeats) {
    if (repeats != nullptr) {
        std::uint32_t& earlier = (*repeats)[row.value[kFirst]];
        for (std::uint32_t i = 0; i < earlier; ++i) {
            errorAtLine(diagnostics, 1403, row.value[kFirst]);
        }
        ++earlier;
    }
    rows.push_back(row);
    return rows.size();
}

} // namespace kestrel
