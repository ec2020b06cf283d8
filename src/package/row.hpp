#pragma once

#include "package/mtx.hpp"

#include <string_view>

namespace kestrel {

/// Begins a row of the matrix at "[Row]" with the name of its pin. Reports 3120 to 3122 (no row is made, or its name is
/// cut) and 3100 to 3102 (unknown pin, repeated row, row out of place).
void beginRow(Run& run, Mtx& mtx, const PkgMdl& package, std::string_view name);

/// Reads a data line under "[Row]" into the last row of the matrix. Reports 3103 to 3115; more values than a short
/// banded row holds may turn the matrix into a wrap (3708).
void rowLine(Run& run, Mtx& mtx, const PkgMdl& package, std::string_view text);

} // namespace kestrel
