#pragma once

#include "compare/change.hpp"
#include "compare/settings.hpp"

#include <string>

namespace kestrel {

struct Ibis;

/// A file that was read.
struct ComparedFile {
    const Ibis& root;
    /// Its path as records have it: what was read from other files is left out.
    const std::string* path;
};

/// What is different between two files: records are matched by their names, models also by their tables, and compared
/// by what they mean. Texts of the result belong to the records of both.
[[nodiscard]] FileChanges compareFiles(const ComparedFile& was, const ComparedFile& is,
                                       const CompareSettings& settings);

} // namespace kestrel
