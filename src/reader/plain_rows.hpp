#pragma once

#include "reader/context.hpp"
#include "reader/plain_cells.hpp"
#include "reader/rngp.hpp"
#include "reader/source.hpp"

namespace kestrel {

/// Reads lines as long as they are four plain cells, "NA" in any of them, and nothing is to be reported about the line
/// itself; counts them and hands each row to `take`.
template <class Take> void takePlainRows(Context& context, LineReader& reader, const Take& take) {
    if (!context.short_paths) return;
    TableRow row;
    const auto read = [&context, &row](const char* line) { return readPlainLine(context.parse, line, row.cells); };
    while (reader.take(read)) {
        ++context.parse.line;
        take(row);
    }
}

} // namespace kestrel
