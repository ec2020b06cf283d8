#pragma once

#include "reader/parse_state.hpp"

#include <cstdint>
#include <string_view>

namespace kestrel {

struct Run;

/// How the search for a file's version ended.
enum class VersionSearch : std::uint8_t {
    found,
    nothingRead, ///< the file could not be opened, which was reported, or holds nothing
    refused      ///< the file names no version, or none that is valid for its kind, which was reported
};

/// Finds out which version an .ibs, .pkg or .ebd file claims, ahead of its check, and keeps it in the reader's state.
[[nodiscard]] VersionSearch determineVersion(Run& run, std::string_view name, FileKind kind);

} // namespace kestrel
