#include "findings/finding_log.hpp"

#include <algorithm>
#include <utility>

namespace kestrel {

void FindingLog::add(std::string_view printed, const Finding& finding) {
    const Subject* const subject = finding.subject;
    const std::string_view name = subject != nullptr ? subject->name.view() : std::string_view();
    const bool same_file = !entries_.empty() && last_file_ == finding.file;
    // All that may find no memory comes first: a finding is added as a whole or not at all.
    const std::size_t size = printed.size() + (same_file ? 0 : finding.file.size()) + name.size() + finding.text.size();
    if (size > texts_.capacity() - texts_.size()) texts_.reserve(std::max(texts_.size() + size, 2 * texts_.capacity()));
    std::string file(same_file ? std::string_view() : finding.file);
    entries_.push_back({.severity = finding.severity,
                        .subject_kind = subject != nullptr ? subject->kind : SubjectKind::header,
                        .has_code = finding.code.has_value(),
                        .exact = finding.exact,
                        .has_subject = subject != nullptr,
                        .same_file = same_file,
                        .code = finding.code.value_or(FindingCode{}),
                        .line = finding.line,
                        .shown_line = finding.shown_line,
                        .subject_line = subject != nullptr ? subject->line : 0,
                        .printed = printed.size(),
                        .file = same_file ? 0 : finding.file.size(),
                        .name = name.size(),
                        .text = finding.text.size(),
                        .at = finding.at});
    texts_.append(printed);
    texts_.append(file);
    if (!same_file) last_file_ = std::move(file);
    texts_.append(name).append(finding.text);
}

void FindingLog::replay(const std::function<void(std::string_view, const Finding&)>& use) const {
    NameTable names;
    std::string_view rest = texts_;
    const auto take = [&rest](std::size_t size) {
        const std::string_view text = rest.substr(0, size);
        rest.remove_prefix(size);
        return text;
    };
    std::string_view file;
    for (const Entry& entry : entries_) {
        const std::string_view printed = take(entry.printed);
        if (!entry.same_file) file = take(entry.file);
        const Subject subject{entry.subject_kind, entry.subject_line, names.enter(take(entry.name)), nullptr};
        use(printed, Finding{.severity = entry.severity,
                             .code = entry.has_code ? std::optional(entry.code) : std::nullopt,
                             .file = file,
                             .line = entry.line,
                             .shown_line = entry.shown_line,
                             .exact = entry.exact,
                             .subject = entry.has_subject ? &subject : nullptr,
                             .text = take(entry.text),
                             .at = entry.at});
    }
}

} // namespace kestrel
