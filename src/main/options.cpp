#include "main/options.hpp"

#include "base/output.hpp"
#include "main/usage.hpp"

namespace kestrel {

namespace {

/// The arguments and how far the walk has come.
struct Walk {
    std::span<const std::string_view> arguments;
    std::size_t next = 0;

    /// Steps onto the next argument when it is a value, not an option.
    std::optional<std::string_view> takeValue() {
        if (next == arguments.size() || arguments[next].starts_with('-')) return std::nullopt;
        return arguments[next++];
    }
};

void readList(Walk& walk, int& flags, std::optional<std::string>& list) {
    ++flags;
    if (const std::optional<std::string_view> value = walk.takeValue()) list = *value;
}

void readDelimiter(Output& out, Walk& walk, Options& options) {
    if (walk.next == walk.arguments.size()) {
        printUsage(out);
        return;
    }
    // The first character of an empty argument is its end.
    if (const std::optional<std::string_view> value = walk.takeValue()) {
        options.delimiter = value->empty() ? '\0' : value->front();
    }
}

/// Reads one option; false for one that does not exist.
bool readOption(Output& out, std::string_view option, Walk& walk, Options& options) {
    if (option == "-m" || option == "-model") {
        readList(walk, options.model_flags, options.models);
    } else if (option == "-c" || option == "-component") {
        readList(walk, options.component_flags, options.components);
    } else if (option == "-t") {
        ++options.table_flags;
    } else if (option == "-d") {
        readDelimiter(out, walk, options);
    } else {
        return false;
    }
    return true;
}

} // namespace

std::optional<Options> readOptions(Output& out, std::span<const std::string_view> arguments) {
    Options options;
    Walk walk{arguments};
    while (walk.next < arguments.size()) {
        const std::string_view argument = arguments[walk.next++];
        bool accepted = false;
        if (argument.starts_with('-')) {
            accepted = readOption(out, argument, walk, options);
        } else if (!options.file_name) {
            options.file_name = argument;
            accepted = true;
        }
        if (!accepted) {
            printUsage(out);
            return std::nullopt;
        }
    }
    if (!options.file_name) {
        printUsage(out);
        return std::nullopt;
    }
    return options;
}

} // namespace kestrel
