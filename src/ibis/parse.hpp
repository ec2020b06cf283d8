#pragma once

#include "reader/parse_state.hpp"

#include <string_view>

namespace kestrel {

struct Context;
struct Run;

/// Prints the name of a file about to be read and the version that it is held to.
void announce(Context& context, std::string_view name, std::string_view version);
inline constexpr std::string_view kAmiVersion = "5.1"; ///< for parameter files

/// Reads and checks one .ibs, .pkg or .ebd file line by line into the current root: announces it, or reports that
/// its version is not one of 2 to 5, or to 7 in a run that takes later ones. False when the file was not read.
bool parseFile(Run& run, std::string_view name, FileKind kind);

/// One parse run: a root of its own, the file, and the completion checks for its kind, which run even when the file was
/// refused. False when the file was not read.
bool checkFile(Run& run, std::string_view name, FileKind kind);

} // namespace kestrel
