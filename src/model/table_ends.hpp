#pragma once

#include "ibis/diagnostics.hpp"
#include "reader/rngp.hpp"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace kestrel {

/// The column names of messages about values, by Column; the first column goes by its own name.
inline constexpr std::array<std::string_view, kColumns> kColumnWords{"", "Typical", "Minimum", "Maximum"};

/// The columns that hold values.
inline constexpr std::array kValueColumns{kTyp, kMin, kMax};

/// What a finished table is told about its size and its end rows; the numbers are begin lines.
struct TableEndsMessages {
    /// Fewer than two rows: the label, the line.
    CheckedMessage<ArgKind::text, ArgKind::integer> too_few;
    /// An end row without a value: "First" or "Last", the column, the label, the line.
    CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::text, ArgKind::integer> na_at_end;
};

/// Requires two rows, and of the first and the last one values other than "NA": a typical one, and a minimum and a
/// maximum if any row gives such. Errors without line.
void checkTableEnds(Diagnostics& diagnostics, std::span<const TableRow> rows, const TableEndsMessages& messages,
                    std::string_view label, std::uint32_t begin_line);

} // namespace kestrel
