#include "findings/format.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <filesystem>
#include <string>

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

std::string normalPath(std::string_view path) { return std::filesystem::path(path).lexically_normal().string(); }

std::string_view steadyMessageOf(const Finding& finding, std::string& room) {
    const std::string_view message = messageOf(finding);
    if (!finding.code || finding.code->family != CodeFamily::message) return message;
    const std::size_t row = catalogIndex(finding.code->number);
    const std::string_view form = row < kCatalog.size() ? kCatalog[row].text : std::string_view();
    for (const std::string_view words : {"ine ", "ine no "}) {
        if (form.find(std::string(words) + "%d") == std::string_view::npos) continue;
        // Names that a message fills in come ahead of its line.
        const std::size_t digits = message.rfind(words) + words.size();
        const std::size_t behind = std::min(message.find_first_not_of("0123456789", digits), message.size());
        room.assign(message.substr(0, digits)).append("...").append(message.substr(behind));
        return room;
    }
    return message;
}

} // namespace kestrel
