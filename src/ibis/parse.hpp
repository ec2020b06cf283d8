#pragma once

#include "reader/parse_state.hpp"

#include <string_view>

namespace kestrel {

struct Run;
struct Source;

/// Reads and checks one .ibs, .pkg or .ebd file line by line into the current root: announces it, or reports 900 when
/// its version is not one of 2 to 5. False when the file was not read.
bool parseFile(Run& run, std::string_view name, FileKind kind);

/// Reads an .ami file whole into the reader's state: announces it, polices its characters, drops its comments and
/// reports a string left open (924). `opened` is the file if that has been opened before. False when it could not be
/// opened.
bool collectAmi(Run& run, std::string_view name, const Source* opened = nullptr);

/// One parse run: a root of its own, the file, and the completion checks for its kind, which run even when the file was
/// refused. False when the file was not read.
bool checkFile(Run& run, std::string_view name, FileKind kind);

} // namespace kestrel
