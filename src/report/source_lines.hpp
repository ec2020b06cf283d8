#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace kestrel {

/// Lines of a file by their numbers, cut where they are very long.
using SourceLines = std::map<std::uint32_t, std::string>;

/// Reads those lines of a file again whose numbers are wanted, which come in order. None of a file that cannot be read
/// twice, or was changed since `since`.
[[nodiscard]] SourceLines readLines(const std::string& path, const std::vector<std::uint32_t>& wanted,
                                    std::filesystem::file_time_type since);

} // namespace kestrel
