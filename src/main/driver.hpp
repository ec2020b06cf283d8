#pragma once

#include <span>
#include <string_view>

namespace kestrel {

class Output;

/// Exit statuses of the program.
enum ExitStatus : int {
    kSuccess = 0,       ///< the file was read, whatever was found in it
    kUsage = 1,         ///< wrong command line, or a report could not be made
    kNotRead = 2,       ///< nothing could be read
    kUnknownVersion = 3 ///< the file's version cannot be determined
};

/// One run over one file, from the arguments (without the program's name) to the exit status.
int runKestrel(Output& out, std::span<const std::string_view> arguments);

} // namespace kestrel
