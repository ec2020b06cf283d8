#pragma once

#include "findings/baseline.hpp"
#include "findings/format.hpp"
#include "findings/ignored.hpp"

namespace kestrel {

/// What became of a file, apart from its findings.
struct FileOutcome {
    std::optional<std::string> version; ///< as the file gives it
    bool checked = false;               ///< the checks ran
    bool read = false;                  ///< the file could be read
    bool refused = false;               ///< its version is not checked
    bool failed = false;                ///< the check broke off
};

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
