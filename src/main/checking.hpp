#pragma once

#include "check/file_check.hpp"
#include "findings/report.hpp"
#include "main/file_list.hpp"
#include "main/memory_limit.hpp"
#include "main/progress.hpp"
#include "main/report_file.hpp"
#include "main/verimark.hpp"

namespace kestrel {

/// Tells something on the error output, behind what was printed so far.
void tell(Output& out, Output& errors, std::string_view subject, std::string_view text);

/// Where a check writes: findings, and what is said beside them.
struct CheckOutputs {
    Output& out;
    Output& errors;
    Report& report;
    Progress* progress;        ///< null when nobody looks
    ReportFile* pages;         ///< null when no report is wanted
    const MemoryLimit* memory; ///< null for none
    bool announces;            ///< what is said ahead of the findings is printed to `out`
    bool advises;              ///< files that were read get advice
    bool empty_is_found;       ///< a file that cannot be read gives a finding in any case
};

/// Checks files, `jobs` at a time, each in a run of its own, and reports what is found in their order. What waits for
/// an earlier file is bounded: who has more has to wait itself. All checks together take no more memory than the limit;
/// a file that does not fit beside others is checked again when it has its turn. Ends early when `out` fails.
[[nodiscard]] VerimarkStatus checkAll(const CheckOutputs& outputs, const FileList& files, unsigned jobs);

} // namespace kestrel
