#pragma once

#include "reader/parse_state.hpp"
#include "reader/source.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel::fuzz {

/// A file of an input.
struct NamedText {
    std::string name;
    std::string text;
};

/// Cuts an input into files: a line "--- NAME" begins one. What is ahead of the first such line is a file without name.
[[nodiscard]] std::vector<NamedText> cutIntoFiles(std::string_view input);

/// A file to check, with the files beside it.
struct FileInMemory {
    std::string path;    ///< of the file that is checked
    SourceStore sources; ///< it and the others
};

/// Takes the first file of an input as one of the kind. All are in a folder that is not on the disk.
[[nodiscard]] FileInMemory fileOfKind(std::string_view input, FileKind kind);

} // namespace kestrel::fuzz
