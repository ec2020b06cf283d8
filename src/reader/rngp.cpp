#include "reader/rngp.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/line_form.hpp"

namespace kestrel {

namespace {

constexpr int kItems = static_cast<int>(kColumns);

/// What messages call a missing column; a row without its first one has no items at all.
constexpr std::array<std::string_view, kColumns> kMissingColumns{"", kMissingCornerWords[0], kMissingCornerWords[1],
                                                                 kMissingCornerWords[2]};

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
    reportItemCount(context.diagnostics, items.count, kMissingColumns, table, {1402, 1401});
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

} // namespace kestrel
