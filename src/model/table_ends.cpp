#include "model/table_ends.hpp"

#include <algorithm>

namespace kestrel {

namespace {

bool anyNumber(std::span<const TableRow> rows, Column column) {
    return std::ranges::any_of(rows, [column](const TableRow& row) { return row.isNumber(column); });
}

} // namespace

void checkTableEnds(Diagnostics& diagnostics, std::span<const TableRow> rows, const TableEndsMessages& messages,
                    std::string_view label, std::uint32_t begin_line) {
    const auto line = static_cast<std::int32_t>(begin_line);
    if (rows.size() < 2) {
        error(diagnostics, messages.too_few, label, line);
        return;
    }
    const auto check_row = [&](std::string_view which, const TableRow& row) {
        for (const Column column : kValueColumns) {
            if (row.state[column] != CellState::na) continue;
            if (column != kTyp && !anyNumber(rows, column)) continue;
            error(diagnostics, messages.na_at_end, which, kColumnWords[column], label, line);
        }
    };
    check_row("First", rows.front());
    check_row("Last", rows.back());
}

} // namespace kestrel
