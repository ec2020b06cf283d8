#include "findings/format.hpp"

#include "base/text.hpp"

namespace kestrel {

std::string_view verdictName(Verdict verdict) {
    constexpr std::array<std::string_view, 3> kNames{"passed", "failed", "unread"};
    return kNames[static_cast<std::size_t>(verdict)];
}

std::unique_ptr<Format> makeFormat(FormatKind kind, Output& out, const FormatSettings& settings) {
    switch (kind) {
    case FormatKind::text: break;
    case FormatKind::gcc: return makeGcc(out, settings);
    case FormatKind::json: return makeJson(out, settings);
    case FormatKind::jsonl: return makeJsonl(out);
    case FormatKind::sarif: return makeSarif(out, settings);
    case FormatKind::github: return makeGithub(out);
    case FormatKind::junit: return makeJunit(out, settings);
    }
    return makeText(out, settings);
}

bool failsFile(Level level, Level fail_on) {
    switch (level) {
    case Level::bug:
    case Level::error: return true;
    case Level::warning: return fail_on == Level::warning || fail_on == Level::advice;
    case Level::advice: return fail_on == Level::advice;
    case Level::note:
    case Level::caution: break;
    }
    return false;
}

bool failsFile(const FindingCounts& counts, Level fail_on) {
    return counts.bugs > 0 || counts.errors > 0 || (counts.warnings > 0 && failsFile(Level::warning, fail_on)) ||
           (counts.advice > 0 && failsFile(Level::advice, fail_on));
}

std::string_view messageOf(const Finding& finding) { return stripTrailing(finding.text); }

} // namespace kestrel
