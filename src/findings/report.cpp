#include "findings/report.hpp"

namespace kestrel {

void Report::fileBegins(const FileStart& start) {
    counts_ = {};
    fails_ = false;
    if (known != nullptr) known->nextFile();
    if (written != nullptr) written->nextFile();
    format_.fileBegins(start);
}

void Report::finding(const Finding& finding) {
    if (ignored_.has(finding)) {
        if (known != nullptr) known->pass(finding);
        return;
    }
    if (written != nullptr) written->add(finding);
    if (known != nullptr && known->take(finding)) return;
    const Level level = levelOf(finding.severity);
    counts_.add(level);
    fails_ = fails_ || failsFile(level, fail_on_);
    format_.finding(finding);
}

Verdict Report::fileEnds(const FileOutcome& outcome) {
    const bool failed = fails_ || outcome.refused || outcome.failed;
    const Verdict verdict = !outcome.read ? Verdict::unread : failed ? Verdict::failed : Verdict::passed;
    ++totals_.files;
    totals_.counts.add(counts_);
    if (verdict == Verdict::failed) ++totals_.failed;
    if (verdict == Verdict::unread) ++totals_.unread;
    format_.fileEnds({.version = outcome.version, .verdict = verdict, .checked = outcome.checked, .counts = counts_});
    return verdict;
}

} // namespace kestrel
