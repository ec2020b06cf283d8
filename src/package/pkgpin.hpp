#pragma once

#include <string_view>

namespace kestrel {

struct Diagnostics;
struct ChainCursor;
struct PkgMdl;

/// Reads a line under "[Pin Numbers]" that is one pin name.
void plainPinLine(Diagnostics& diagnostics, PkgMdl& package, std::string_view text);

/// Reads a line under "[Pin Numbers]" of a package model with sections: a pin and its sections, more sections, "Fork"
/// or "Endfork". `cursor` goes on in the chain of the last pin.
void sectionPinLine(Diagnostics& diagnostics, ChainCursor& cursor, PkgMdl& package, std::string_view text);

} // namespace kestrel
