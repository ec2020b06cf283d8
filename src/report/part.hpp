#pragma once

#include "findings/finding_log.hpp"
#include "findings/format.hpp"
#include "reader/parse_state.hpp"
#include "report/html.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

struct Run;

/// What is known of a file when its part of the page is written.
struct FilePart {
    std::uint32_t number; ///< from 1 in the order of the call
    std::string path;     ///< as the call names it
    FileKind kind;
    std::optional<std::string> version; ///< as the file gives it
    Verdict verdict;
    FindingCounts counts;                  ///< of all findings
    std::filesystem::file_time_type begun; ///< when the check began; what was changed since is not read again
};

/// Keeps the findings of a file for its part, as many as a page shows.
struct KeptFindings {
    FindingLog log;
    std::size_t kept = 0;
    std::size_t left_out = 0;
    FindingCounts counts; ///< of all

    void add(const Finding& finding);
};

/// Writes a file's part of the page. `run` is that of the check, with all that was read; null when it broke off and
/// nothing is left of it.
void writePart(Html& html, const FilePart& file, const KeptFindings& findings, Run* run);

/// Writes a verdict, and how many findings of each class there were.
void writeVerdict(Html& html, Verdict verdict);
void writeCounts(Html& html, const FindingCounts& counts);

} // namespace kestrel
