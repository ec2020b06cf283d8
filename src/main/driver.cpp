#include "main/driver.hpp"

#include "check/version.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "main/dump.hpp"
#include "main/options.hpp"
#include "main/usage.hpp"

#include <new>

namespace kestrel {

namespace {

/// Prints the reports of the options, components first; false when one could not be made.
bool report(Run& run, const Options& options) {
    try {
        if (options.component_flags != 0 && !reportComponents(run, options.components.value_or(""))) return false;
        return options.model_flags == 0 ||
               reportModels(run, options.models.value_or(""), options.table_flags != 0, options.delimiter);
    } catch (const std::bad_alloc&) {
        run.out.write("Out of memory!");
        return false;
    }
}

/// Does what the arguments ask for.
ExitStatus obey(Run& run, std::span<const std::string_view> arguments) {
    printBanner(run.out);
    const std::optional<Options> options = readOptions(run.out, arguments);
    if (!options) return kUsage;
    printNotice(run.out);
    constexpr FileKind kKind = FileKind::ibs;
    switch (determineVersion(run, *options->file_name, kKind)) {
    case VersionSearch::found: break;
    case VersionSearch::nothingRead: return kNotRead;
    case VersionSearch::refused: return kUnknownVersion;
    }
    checkFile(run, *options->file_name, kKind);
    printSummary(run.diagnostics);
    run.out.write("\n");
    return report(run, *options) ? kSuccess : kUsage;
}

} // namespace

int runKestrel(Output& out, Output& errors, std::span<const std::string_view> arguments) {
    Run run(out);
    return runKestrel(run, errors, arguments);
}

int runKestrel(Run& run, Output& errors, std::span<const std::string_view> arguments) {
    const ExitStatus status = obey(run, arguments);
    run.out.flush();
    if (!run.out.failed()) return status;
    errors.write("kestrel: the output cannot be written\n");
    errors.flush();
    return kUsage;
}

} // namespace kestrel
