// Files of each kind, checked and written in every form.

#include "entry.hpp"
#include "findings/baseline.hpp"
#include "findings/report.hpp"
#include "forms.hpp"
#include "ibis/ibis.hpp"
#include "ibis/run.hpp"
#include "input.hpp"
#include "main/checking.hpp"
#include "main/dump.hpp"
#include "quality/advised.hpp"
#include "quality/checks.hpp"
#include "report/part.hpp"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::fuzz {

namespace {

/// What kestrel prints of a file with both reports and all tables. Too many blanks in a row, which end the program,
/// end the text.
std::string printed(const FileInMemory& file, FileKind kind, bool short_paths) {
    Output out;
    Run run(out);
    run.sources = file.sources;
    run.short_paths = short_paths;
    run.diagnostics.silence_cautions = false;
    run.diagnostics.on_assertion = OnAssertion::raise;
    FileOutcome outcome;
    try {
        checkInRun(run, file.path, kind, outcome);
        printSummary(run.diagnostics);
        if (kind == FileKind::ibs && reportComponents(run, "")) static_cast<void>(reportModels(run, "", true, ','));
    } catch (const AssertionFailed& failure) {
        reportFailure(run.diagnostics, failure);
    }
    return out.text();
}

/// A form of findings and what is written in it.
struct WrittenForm {
    WrittenForm(FormatKind form, const Ignored& ignored)
        : kind(form), format(makeFormat(form, out, settings())), report(*format, ignored, Level::warning) {}

    static FormatSettings settings() {
        return {.version = "0", .fail_on = Level::warning, .advice_title = [](MessageCode code) {
                    return adviceCheck(code)->title;
                }};
    }

    void demandForm() const {
        switch (kind) {
        case FormatKind::json:
        case FormatKind::sarif: return demandJson(out.text());
        case FormatKind::jsonl: return demandJsonLines(out.text());
        case FormatKind::junit: return demandMarkup(out.text(), MarkupKind::xml);
        default: return;
        }
    }

    Output out;
    FormatKind kind;
    std::unique_ptr<Format> format;
    Report report;
};

/// Findings and advice in all forms, with the report. What is kept as a baseline must be known when it is read.
void writeFindings(const FileInMemory& file, FileKind kind) {
    const Ignored nothing;
    std::vector<std::unique_ptr<WrittenForm>> forms;
    for (std::size_t i = 0; i < kFormatNames.size(); ++i) {
        const auto form = static_cast<FormatKind>(i);
        // It repeats explanations, which takes more time than all others together.
        if (form == FormatKind::sarif && file.sources.texts.at(file.path)->size() % 16 != 0) continue;
        forms.push_back(std::make_unique<WrittenForm>(form, nothing));
        forms.back()->report.fileBegins({.path = file.path, .kind = extensionOf(kind).substr(1)});
    }
    BaselineWriter writer;
    KeptFindings kept;
    FindingLog log;
    Output nowhere = Output::nowhere();
    Run run(nowhere);
    run.sources = file.sources;
    run.parse.takes_later = true;
    run.ami_files.stay_in_folder = true;
    run.diagnostics.silence_cautions = false;
    run.diagnostics.on_assertion = OnAssertion::raise;
    run.diagnostics.sink = [&](const Finding& finding) {
        for (const auto& form : forms)
            form->report.finding(finding);
        writer.add(finding);
        kept.add(finding);
        log.add({}, finding);
    };
    FileOutcome outcome;
    try {
        checkInRun(run, file.path, kind, outcome);
        if (outcome.checked) giveAdvice(run, file.path);
    } catch (const AssertionFailed& failure) {
        reportFailure(run.diagnostics, failure);
    }
    for (const auto& form : forms) {
        form->report.fileEnds(outcome);
        form->report.ends();
        form->demandForm();
    }

    Output lines;
    writer.write(lines);
    Baseline baseline;
    if (const auto problem = baseline.read(lines.text())) fault(problem->text, lines.text());
    log.replay([&](std::string_view, const Finding& finding) {
        if (!baseline.take(finding)) fault("a finding is not in its baseline", baselineLine(finding));
    });

    run.diagnostics.sink = [](const Finding&) {};
    Output page;
    {
        Html html(page);
        const FilePart part{.number = 1,
                            .path = file.path,
                            .kind = kind,
                            .version = outcome.version,
                            .verdict = Verdict::failed,
                            .counts = kept.counts,
                            .begun = std::filesystem::file_time_type::clock::now()};
        writePart(html, part, kept, &run);
    }
    demandMarkup(page.text(), MarkupKind::html);
}

void check(std::string_view input, FileKind kind) {
    const FileInMemory file = fileOfKind(input, kind);
    if (file.path.empty()) return;
    const std::string text = printed(file, kind, true);
    const std::string other = printed(file, kind, false);
    if (text != other)
        fault("the short paths read otherwise", std::string(text).append("---- long paths\n").append(other));
    writeFindings(file, kind);
}

} // namespace

void tryIbs(std::string_view input) { check(input, FileKind::ibs); }
void tryPkg(std::string_view input) { check(input, FileKind::pkg); }
void tryEbd(std::string_view input) { check(input, FileKind::ebd); }
void tryAmi(std::string_view input) { check(input, FileKind::ami); }

} // namespace kestrel::fuzz
