#pragma once

#include "base/text_hash.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;

/// A package model named in a .pkg file.
struct PkgName {
    std::string name;   ///< what follows "[Define Package Model]", comment included
    std::uint32_t file; ///< place in PkgSearch::files
};

/// The .pkg files beside a source file.
struct PkgDirectory {
    std::vector<PkgName> names; ///< in byte order
};

/// The .pkg files found so far. Each directory is listed and each file scanned once per run, however many components
/// ask.
struct PkgSearch {
    TextMap<PkgDirectory> directories; ///< by directory prefix
    std::vector<std::string> files;    ///< bare names; those of a directory in byte order
};

/// Looks up the package model that a component names: among those of the current root, then in the .pkg files of the
/// directory of the file being checked. Every file with a name that begins with the wanted one is read into the root,
/// but none twice, and no name is looked for twice. The reader's state is put back. False after reporting 516 (no
/// line); true does not promise that the root holds the name: a matching file may have been refused.
bool findPackageModel(Run& run, std::string_view name, std::string_view component);

} // namespace kestrel
