// Two files that are compared, in both directions and each with itself.

#include "compare/compare.hpp"

#include "compare/output.hpp"
#include "entry.hpp"
#include "forms.hpp"
#include "ibis/run.hpp"
#include "input.hpp"
#include "main/checking.hpp"
#include "report/compared_page.hpp"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrel::fuzz {

namespace {

/// A file that was read.
struct ReadFile {
    ReadFile(NamedText file, std::string_view folder)
        : name(std::string(folder).append(kindOfName(file.name) == FileKind::pkg ? "file.pkg" : "file.ibs")) {
        run.sources.texts[name] = std::make_shared<const std::string>(std::move(file.text));
        run.parse.takes_later = true;
        run.diagnostics.on_assertion = OnAssertion::raise;
        run.diagnostics.sink = [](const Finding&) {};
        FileOutcome outcome;
        try {
            checkInRun(run, name, kindOrIbs(name), outcome);
        } catch (const AssertionFailed&) { // compared as far as it was read
        }
        was_read = outcome.checked && !run.roots.empty() && !currentRoot(run).headers.empty();
    }

    [[nodiscard]] ComparedFile compared() const { return {currentRoot(run), run.diagnostics.file}; }
    [[nodiscard]] ComparedPath path() const { return {.path = name, .version = "5.1", .errors = 0, .read = was_read}; }

    std::string name;
    Output nowhere = Output::nowhere();
    Run run{nowhere};
    bool was_read = false;
};

void compare(const ReadFile& was, const ReadFile& is, const CompareSettings& settings) {
    const FileChanges changes = compareFiles(was.compared(), is.compared(), settings);
    const CompareFormatSettings form{.version = "0", .settings = settings};
    const ComparedPair pair{.was = was.path(), .is = is.path(), .changes = &changes};
    Output text;
    Output json;
    Output html;
    const auto as_text = makeCompareText(text, form);
    const auto as_json = makeCompareJson(json, form);
    for (CompareFormat* const format : {as_text.get(), as_json.get()}) {
        format->pair(pair);
        format->ends({.pairs = 1, .different = 1});
    }
    ComparedPage page(html, "a comparison", "fuzz");
    page.pair(pair, &currentRoot(was.run), &currentRoot(is.run));
    page.end();
    demandMarkup(html.text(), MarkupKind::html);
    demandJson(json.text());
    if (&was == &is && !changes.groups.empty()) fault("a file differs from itself", text.text());
}

} // namespace

void tryCompare(std::string_view input) {
    std::vector<NamedText> files = cutIntoFiles(input);
    files.resize(2);
    const ReadFile was(std::move(files[0]), "memory/");
    const ReadFile is(std::move(files[1]), "memory/new/");
    const CompareSettings exact{.tolerance = 0.0, .header_texts = true};
    for (const ReadFile* const file : {&was, &is})
        if (file->was_read) compare(*file, *file, exact);
    if (!was.was_read || !is.was_read) return;
    compare(was, is, exact);
    compare(is, was, {});
}

} // namespace kestrel::fuzz
