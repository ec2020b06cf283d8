#include "check/file_check.hpp"

#include "check/version.hpp"
#include "header/hdr.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "quality/advised.hpp"
#include "quality/checks.hpp"

namespace kestrel {

FileKind kindOrIbs(std::string_view name) { return kindOfName(name).value_or(FileKind::ibs); }

namespace {

/// The version as the file's header gives it.
std::optional<std::string> givenVersion(const Run& run) {
    if (run.roots.empty()) return std::nullopt;
    for (const Hdr& header : currentRoot(run).headers.newestFirst())
        if (!header.ibis_version.empty()) return header.ibis_version;
    return std::nullopt;
}

} // namespace

void giveAdvice(const Run& run, std::string_view name) {
    if (run.roots.empty()) return;
    const Ibis& root = currentRoot(run);
    std::string_view path = name;
    for (const Hdr& header : root.headers.newestFirst())
        if (header.file != nullptr) path = *header.file;
    for (const Advice& advice : adviseOn(AdvisedFile(root, run.parse))) {
        run.diagnostics.sink({.severity = Severity::adviceAtLine,
                              .code = advice.code,
                              .file = path,
                              .line = advice.line,
                              .shown_line = advice.line,
                              .exact = advice.exact,
                              .subject = advice.subject,
                              .text = advice.text,
                              .at = advice.at});
    }
}

void checkInRun(Run& run, std::string_view name, FileKind kind, FileOutcome& outcome) {
    nameFile(run.diagnostics, name);
    // The reader takes no longer names of these kinds.
    if (name.size() >= kMaxPath && (kind == FileKind::pkg || kind == FileKind::ami)) return;
    if (kind != FileKind::ami) {
        const VersionSearch search = determineVersion(run, name, kind);
        outcome.refused = search == VersionSearch::refused;
        outcome.read = outcome.refused;
        if (search != VersionSearch::found) return;
    }
    outcome.read = true;
    outcome.checked = true;
    const bool read = checkFile(run, name, kind);
    outcome.read = read || kind != FileKind::ami;
    outcome.version = givenVersion(run);
}

void checkContained(Run& run, std::string_view name, const ContainedCheck& wanted, FileOutcome& outcome) {
    const FileKind kind = kindOrIbs(name);
    run.parse.takes_later = wanted.takes_later;
    run.ami_files.stay_in_folder = true;
    run.diagnostics.on_assertion = OnAssertion::raise;
    try {
        checkInRun(run, name, kind, outcome);
        if (wanted.advises && outcome.checked) giveAdvice(run, name);
    } catch (const AssertionFailed& failure) {
        reportFailure(run.diagnostics, failure);
        outcome.refused = outcome.refused || !outcome.checked;
        outcome.read = true;
    }
    const FindingCounts& counts = run.diagnostics;
    const bool found = counts.bugs + counts.errors + counts.warnings + counts.notes + counts.cautions != 0;
    if (outcome.read || found || !wanted.empty_is_found) return;
    name.size() < kMaxPath ? errorText(run.diagnostics, "The file is empty.")
                           : errorText(run.diagnostics, "The name of the file is too long.");
}

} // namespace kestrel
