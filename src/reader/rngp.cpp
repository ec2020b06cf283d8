#include "reader/rngp.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/line_form.hpp"
#include "reader/plain_cells.hpp"

namespace kestrel {

namespace {

constexpr int kItems = static_cast<int>(kColumns);

/// What messages call a missing column; a row without its first one has no items at all.
constexpr std::array<std::string_view, kColumns> kMissingColumns{"", kMissingCornerWords[0], kMissingCornerWords[1],
                                                                 kMissingCornerWords[2]};

} // namespace

bool readPlainRow(const Context& context, std::string_view text, TableRow& row) {
    return readPlainCells(context, text, row.cells) && row[kFirst].isNumber(); // one that begins with "NA" is reported
}

FirstCell readFirstCell(std::string_view item) {
    FirstCell first{.item = item};
    first.result = readCellText(item, first.cell);
    return first;
}

TableRow readRow(Context& context, std::string_view text, std::string_view table, std::string_view first_label,
                 const FirstCell& first) {
    TableRow row;
    if (!first.beginsRow() && readPlainRow(context, text, row)) return row;
    const ItemList items = splitItems(context, text, kItems);
    reportItemCount(context.diagnostics, items.count, kMissingColumns, table, {1402, 1401});
    // Where the line was split at more than blanks, the item read ahead is but a part of the row's.
    const bool is_read = first.result == ReadResult::number && first.item.size() == items[0].size();
    for (int column = 0; column < kItems; ++column) {
        Cell& cell = row.cells[static_cast<std::size_t>(column)];
        if (column == kFirst && is_read) {
            cell = first.cell;
            continue;
        }
        const std::string_view label = column == kFirst ? first_label : columnWord(static_cast<Column>(column));
        readCell(context.diagnostics, items[column], items.has(column), table, label, cell);
    }
    return row;
}

} // namespace kestrel
