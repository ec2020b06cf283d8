#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrel {

class Output;

/// What the command line asks for.
struct Options {
    std::optional<std::string> file_name;
    std::optional<std::string> models;     ///< comma-separated names behind "-m"
    std::optional<std::string> components; ///< comma-separated names behind "-c"
    int model_flags = 0;
    int component_flags = 0;
    int table_flags = 0;
    char delimiter = '\t';
};

/// Walks the arguments, the program's own name not among them. Prints the usage text where it is called for; nothing is
/// returned when the run is to end with status 1.
[[nodiscard]] std::optional<Options> readOptions(Output& out, std::span<const std::string_view> arguments);

} // namespace kestrel
