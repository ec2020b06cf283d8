#include "model/table_ends.hpp"

#include <algorithm>

namespace kestrel {

namespace {

bool anyNumber(std::span<const TableRow> rows, Column column) {
    return std::ranges::any_of(rows, [column](const TableRow& row) { return row[column].isNumber(); });
}

} // namespace

std::vector<EndFault> findEndFaults(std::span<const TableRow> rows) {
    std::vector<EndFault> faults;
    if (rows.size() < 2) return faults;
    const auto check_row = [&](std::string_view which, const TableRow& row) {
        for (const Column column : kValueColumns) {
            if (!row[column].isNa()) continue;
            if (column == kTyp || anyNumber(rows, column)) faults.push_back({which, column});
        }
    };
    check_row("First", rows.front());
    check_row("Last", rows.back());
    return faults;
}

void checkTableEnds(Diagnostics& diagnostics, std::span<const TableRow> rows, const TableEndsMessages& messages,
                    std::string_view label, std::uint32_t begin_line) {
    const auto line = static_cast<std::int32_t>(begin_line);
    if (rows.size() < 2) error(diagnostics, messages.too_few, label, line);
    for (const EndFault& fault : findEndFaults(rows)) {
        error(diagnostics, messages.na_at_end, fault.row, columnWord(fault.column), label, line);
    }
}

} // namespace kestrel
