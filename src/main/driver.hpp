#pragma once

#include <span>
#include <string_view>

namespace kestrel {

class Output;
struct Run;

/// Exit statuses of the program.
enum ExitStatus : int {
    kSuccess = 0,       ///< the file was read, whatever was found in it
    kUsage = 1,         ///< wrong command line, or a report could not be made, or the output not written
    kNotRead = 2,       ///< nothing could be read
    kUnknownVersion = 3 ///< the file's version cannot be determined
};

/// One run over one file, from the arguments (without the program's name) to the exit status. Everything goes to `out`,
/// but for the line on `errors` that says that `out` did not take it.
int runKestrel(Output& out, Output& errors, std::span<const std::string_view> arguments);

/// The same with a new run, which writes to its output and keeps all that was read.
int runKestrel(Run& run, Output& errors, std::span<const std::string_view> arguments);

} // namespace kestrel
