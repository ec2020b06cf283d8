#include "check/version.hpp"

#include "ibis/run.hpp"

namespace kestrel {

VersionSearch determineVersion(Run& run, std::string_view name, FileKind kind) {
    nameFile(run.diagnostics, name);
    std::uint32_t lines = 0;
    const IbisVersion version = scanVersion(run, name, kind, lines);
    if (version == IbisVersion::none) {
        if (lines == 0) return VersionSearch::nothingRead;
        errorTextAtLine(AtLine(run.diagnostics, lines), "IBIS Version Cannot Be Determined.  Exiting.");
        return VersionSearch::refused;
    }
    if (kind == FileKind::ebd && version <= IbisVersion::v2) {
        errorTextAtLine(AtLine(run.diagnostics, lines), "Version not valid for .ebd files.  Exiting.");
        return VersionSearch::refused;
    }
    run.parse.file_version = version;
    return VersionSearch::found;
}

} // namespace kestrel
