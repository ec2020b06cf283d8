#pragma once

#include "base/name_table.hpp"
#include "base/output.hpp"
#include "base/row_store.hpp"
#include "base/text_store.hpp"
#include "diagnostics/diagnostics.hpp"
#include "reader/parse_state.hpp"
#include "reader/source.hpp"

namespace kestrel {

/// What every reader of lines needs to know of a run: where it writes, the reader's state, the diagnostics, the
/// source files, and the stores of what records hold. It holds no module's state.
struct Context {
    explicit Context(Output& output) : out(output), diagnostics(output, parse.line) {}
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;
    ~Context() = default;

    Output& out;
    ParseState parse;
    Diagnostics diagnostics;
    SourceStore sources;
    bool short_paths = true; ///< off in tests: lines, items, rows and matrices are read by the long ways
    RowStore rows;           ///< those of all tables that were read
    TextStore texts;         ///< texts of records
    NameTable names;         ///< names that many records share
};

} // namespace kestrel
