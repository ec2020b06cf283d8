#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace kestrel::bench {

/// How a child process ended and what it took.
struct ChildResult {
    int status = 0;              ///< exit status
    double seconds = 0.0;        ///< of processor time, which other programs disturb less than the clock
    std::size_t peak_memory = 0; ///< bytes
};

/// Runs a program to its end with its standard output in a file; throws when it cannot be started or is killed. The
/// caller should be small: a child begins with its caller's memory, and that counts for its peak.
[[nodiscard]] ChildResult runChild(std::span<const std::string> command, const std::string& output);

} // namespace kestrel::bench
