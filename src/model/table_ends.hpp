#pragma once

#include "diagnostics/diagnostics.hpp"
#include "reader/rngp.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kestrel {

/// The columns that hold values.
inline constexpr auto kValueColumns = std::to_array({kTyp, kMin, kMax});

/// What is reported of the size and the end rows of a finished table; the numbers are begin lines.
struct TableEndsMessages {
    /// Fewer than two rows: the label, the line.
    CheckedMessage<ArgKind::text, ArgKind::integer> too_few;
    /// An end row without a value: "First" or "Last", the column, the label, the line.
    CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::text, ArgKind::integer> na_at_end;
};

/// A value that the first or last row of a table lacks.
struct EndFault {
    std::string_view row; ///< "First" or "Last"
    Column column;
};

/// The columns that are "NA" in the first and in the last row: the typical one, minimum and maximum if any row gives
/// such. None in a table of less than two rows.
[[nodiscard]] std::vector<EndFault> findEndFaults(std::span<const TableRow> rows);

/// Requires two rows without such faults at the ends. Errors without line.
void checkTableEnds(Diagnostics& diagnostics, std::span<const TableRow> rows, const TableEndsMessages& messages,
                    std::string_view label, std::uint32_t begin_line);

} // namespace kestrel
