#pragma once

#include "reader/block.hpp"

namespace kestrel {

struct Run;
struct Cmpnt;

/// "[Alternate Package Models]" to its end: package models that may take the place of the component's own. Reports 533
/// to 536 and 538 to 540.
extern const Block<Cmpnt> kAlternatePackages;

/// Looks up the alternates, in the .pkg files of the directory as well. Reports 516 (no line).
void checkAlternatePackages(Run& run, const Cmpnt& component);

} // namespace kestrel
