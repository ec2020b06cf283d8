#pragma once

#include <optional>
#include <string>

namespace kestrel {

/// What became of a file, apart from its findings.
struct FileOutcome {
    std::optional<std::string> version; ///< as the file gives it
    bool checked = false;               ///< the checks ran
    bool read = false;                  ///< the file could be read
    bool refused = false;               ///< its version is not checked
    bool failed = false;                ///< the check broke off
};

} // namespace kestrel
