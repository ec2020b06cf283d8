#include "main/version.hpp"

#include "ibis/run.hpp"

namespace kestrel {

namespace {

/// Prints an error of the driver itself, which the summary does not count.
void printUncountedError(Run& run, std::uint32_t line, std::string_view text) {
    std::string message("ERROR (line ");
    appendInteger(message, line, 4);
    message.append(") - ").append(text).push_back('\n');
    run.out.write(message);
}

} // namespace

VersionSearch determineVersion(Run& run, std::string_view name, FileKind kind) {
    std::uint32_t lines = 0;
    const IbisVersion version = scanVersion(run, name, kind, lines);
    if (version == IbisVersion::none) {
        if (lines == 0) return VersionSearch::nothingRead;
        printUncountedError(run, lines, "IBIS Version Cannot Be Determined.  Exiting.");
        return VersionSearch::refused;
    }
    if (kind == FileKind::ebd && version <= IbisVersion::v2) {
        printUncountedError(run, lines, "Version not valid for .ebd files.  Exiting.");
        return VersionSearch::refused;
    }
    run.parse.file_version = version;
    return VersionSearch::found;
}

} // namespace kestrel
