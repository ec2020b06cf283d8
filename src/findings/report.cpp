#include "findings/report.hpp"

namespace kestrel {

void Report::fileBegins(const FileStart& start) {
    counts_ = {};
    if (known != nullptr) known->nextFile();
    if (written != nullptr) written->nextFile();
    format_.fileBegins(start);
}

bool Report::finding(const Finding& finding) {
    if (!regards(finding)) {
        if (known != nullptr) known->pass(finding);
        return false;
    }
    if (written != nullptr) written->add(finding);
    if (known != nullptr && known->take(finding)) return false;
    counts_.add(levelOf(finding.severity));
    format_.finding(finding);
    return true;
}

Verdict Report::verdictOf(const FileOutcome& outcome, const FindingCounts& counts) const {
    if (!outcome.read) return Verdict::unread;
    const bool failed = failsFile(counts, fail_on_) || outcome.refused || outcome.failed;
    return failed ? Verdict::failed : Verdict::passed;
}

Verdict Report::fileEnds(const FileOutcome& outcome) {
    const Verdict verdict = verdictOf(outcome, counts_);
    ++totals_.files;
    totals_.counts.add(counts_);
    if (verdict == Verdict::failed) ++totals_.failed;
    if (verdict == Verdict::unread) ++totals_.unread;
    format_.fileEnds({.version = outcome.version, .verdict = verdict, .checked = outcome.checked, .counts = counts_});
    return verdict;
}

} // namespace kestrel
