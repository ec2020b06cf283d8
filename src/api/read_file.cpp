#include "api/read_file.hpp"

#include "base/text.hpp"

#include <algorithm>

namespace kestrel::api {

namespace {

Level classOf(Severity severity) {
    switch (levelOf(severity)) {
    case kestrel::Level::bug: return Level::bug;
    case kestrel::Level::error: return Level::error;
    case kestrel::Level::warning: return Level::warning;
    case kestrel::Level::note: return Level::note;
    case kestrel::Level::advice: return Level::advice;
    case kestrel::Level::caution: break;
    }
    return Level::caution;
}

void count(Counts& counts, Level level) {
    switch (level) {
    case Level::bug: ++counts.bugs; break;
    case Level::error: ++counts.errors; break;
    case Level::warning: ++counts.warnings; break;
    case Level::note: ++counts.notes; break;
    case Level::advice: ++counts.advice; break;
    case Level::caution: ++counts.cautions; break;
    }
}

template <class Record> void list(std::vector<const Record*>& records, const ObjectList<Record>& objects) {
    records.reserve(objects.size());
    for (const Record& record : objects.newestFirst())
        records.push_back(&record);
    std::ranges::reverse(records);
}

} // namespace

void ReadFile::add(const kestrel::Finding& finding) {
    const Subject* const subject = finding.subject;
    const CodeText code(finding.code);
    // The run keeps the names of files and records.
    findings.push_back({.level = classOf(finding.severity),
                        .code = code.text().empty() ? std::string_view() : codes.enter(code.text()).view(),
                        .file = finding.file,
                        .line = finding.line,
                        .exact = finding.exact,
                        .kind = subject != nullptr ? subjectKindName(subject->kind) : std::string_view(),
                        .subject = subject != nullptr ? subject->name.view() : std::string_view(),
                        .text = texts.add(stripTrailing(finding.text)).view()});
    count(counts, findings.back().level);
}

void ReadFile::listRecords() {
    const Ibis* const read = root();
    if (read == nullptr) return;
    for (const Hdr& one : read->headers.newestFirst())
        header = &one;
    list(components, read->components);
    list(models, read->models);
    list(submodels, read->submodels);
    list(selectors, read->model_selectors);
    list(package_models, read->package_models);
}

} // namespace kestrel::api
