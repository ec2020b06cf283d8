#pragma once

#include "compare/comparison.hpp"

namespace kestrel {

struct PkgMdl;

/// Two package models: their pins by name, the sections of these, and the matrices entry by entry.
void comparePackageModels(Comparison& comparison, const PkgMdl& was, const PkgMdl& is);

} // namespace kestrel
