// Texts that are not files to check: baselines, lists of codes, questions, explanations.

#include "entry.hpp"
#include "findings/baseline.hpp"
#include "findings/ignored.hpp"
#include "forms.hpp"
#include "main/dump.hpp"
#include "main/explain.hpp"
#include "quality/checks.hpp"
#include "topics/topic_forms.hpp"
#include "topics/topic_text.hpp"

#include <string>
#include <vector>

namespace kestrel::fuzz {

namespace {

void readBaseline(std::string_view text) {
    Baseline baseline;
    if (baseline.read(text)) return;
    const Finding finding{.severity = Severity::errorAtLine,
                          .code = std::nullopt,
                          .file = "chip.ibs",
                          .line = 1,
                          .shown_line = 1,
                          .exact = true,
                          .subject = nullptr,
                          .text = text};
    static_cast<void>(baseline.take(finding));
    baseline.nextFile();
    baseline.checked("chip.ibs");
    std::size_t lines = 0;
    baseline.eachGone([&lines](std::uint32_t number, std::string_view) { lines += number > 0 ? 1 : 0; });
}

void ask(std::string_view question) {
    const Explained explained = findExplained(question);
    if (explained.topics.empty()) {
        if (explained.problem.empty()) fault("a question without an answer", question);
        return;
    }
    Output json;
    explainAsJson(json, explained, {.version = "0"});
    demandJson(json.text());
    static_cast<void>(explanation(explained, {.width = question.size() % 100, .color = true}));
}

void readTopic(std::string_view text) {
    std::vector<std::string> faults;
    const TopicText read = readTopicText("topic", text, faults);
    const Topic topic{.slug = read.slug,
                      .title = read.title,
                      .codes = read.codes,
                      .meaning = read.meaning,
                      .why = read.why,
                      .mend = read.mend,
                      .formula = read.formula,
                      .bad = read.bad,
                      .mended = read.mended,
                      .reason = read.reason};
    static_cast<void>(plainText(topic, {.width = 40}));
    static_cast<void>(markdownText(topic));
}

} // namespace

void tryTexts(std::string_view input) {
    readBaseline(input);
    readTopic(input);
    // A question is held against all messages, which takes longer than everything else here.
    if (input.find('\n') != std::string_view::npos) return;
    Ignored ignored;
    static_cast<void>(ignore(ignored, input, [](MessageCode code) { return adviceCheck(code) != nullptr; }));
    ask(input);
}

} // namespace kestrel::fuzz
