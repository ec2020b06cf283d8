#pragma once

#include "diagnostics/file_outcome.hpp"
#include "findings/baseline.hpp"
#include "findings/format.hpp"
#include "findings/ignored.hpp"

namespace kestrel {

/// Where the findings of a call go, file by file in the order of the call: what is left out is taken away, the rest is
/// counted and written in the form that is wanted.
class Report {
public:
    Report(Format& format, const Ignored& ignored, Level fail_on)
        : format_(format), ignored_(ignored), fail_on_(fail_on) {}
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    ~Report() = default;

    Baseline* known = nullptr;         ///< findings to leave out
    BaselineWriter* written = nullptr; ///< gets all that are not ignored

    void fileBegins(const FileStart& start);
    /// False for a finding that is left out.
    bool finding(const Finding& finding);
    /// Gives the file's verdict.
    Verdict fileEnds(const FileOutcome& outcome);

    /// Whatever file has its turn: false for a finding that is ignored, and the verdict of a file with these findings.
    [[nodiscard]] bool regards(const Finding& finding) const { return !ignored_.has(finding); }
    [[nodiscard]] Verdict verdictOf(const FileOutcome& outcome, const FindingCounts& counts) const;
    void ends() { format_.ends(totals_); }

private:
    Format& format_;
    const Ignored& ignored_;
    Level fail_on_;
    FindingCounts counts_; // of the present file
    Totals totals_;
};

} // namespace kestrel
