#pragma once

#include "package/mtx.hpp"

#include <string_view>

namespace kestrel {

/// Begins a row of the matrix at "[Row]" with the name of its pin, unless the matrix takes no further row.
void beginRow(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view name);

/// Reads a data line under "[Row]" into the last row of the matrix. More values than a short banded row holds may turn
/// the matrix into a wrap.
void rowLine(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view text);

} // namespace kestrel
