#pragma once

#include <string_view>

namespace kestrel {

struct Run;
struct PkgMdl;

/// Reads a line under "[Pin Numbers]" that is one pin name. Reports 3432 to 3437.
void plainPinLine(Run& run, PkgMdl& package, std::string_view text);

/// Reads a line under "[Pin Numbers]" of a package model with sections: a pin and its sections, more sections, "Fork"
/// or "Endfork". Reports 3432 to 3449 and what readSection reports.
void sectionPinLine(Run& run, PkgMdl& package, std::string_view text);

} // namespace kestrel
