// A log of findings gives back what was put in, whatever has become of the texts and records since.

#include "findings/finding_log.hpp"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_view_literals;

/// Everything that a finding says, on one line.
std::string described(std::string_view printed, const Finding& finding) {
    std::string text(printed);
    text.append("|").append(levelName(levelOf(finding.severity)));
    text.append("|").append(CodeText(finding.code).text()).append("|").append(finding.file).append("|");
    for (const std::uint32_t number : {finding.line, finding.shown_line})
        text.append(std::to_string(number)).append("|");
    text.append(finding.exact ? "exact|" : "|");
    if (const Subject* const subject = finding.subject) {
        text.append(subjectKindName(subject->kind)).append(" '").append(subject->name.view()).append("' at ");
        text.append(std::to_string(subject->line));
    }
    return text.append("|").append(finding.text);
}

std::vector<std::string> contents(const FindingLog& log) {
    std::vector<std::string> all;
    log.replay(
        [&all](std::string_view printed, const Finding& finding) { all.push_back(described(printed, finding)); });
    return all;
}

TEST(FindingLog, keepsEverything) {
    struct Row {
        std::string printed;
        Severity severity;
        std::optional<FindingCode> code;
        std::string file;
        std::uint32_t line;
        std::uint32_t shown_line;
        bool exact;
        std::optional<SubjectKind> kind;
        std::string name;
        std::string text;
        std::string described;
    };
    using S = Severity;
    const FindingCode message{CodeFamily::message, 905};
    const std::string odd("\0\xff\n"sv);
    const std::vector<Row> rows{
        {"\nChecking a\n",
         S::errorAtLine,
         message,
         "a",
         7,
         7,
         true,
         {},
         "",
         "x",
         "\nChecking a\n|error|905|a|7|7|exact||x"},
        // In the same file, and in none.
        {"", S::warning, {}, "a", 3, 9, false, SubjectKind::model, "m", "", "|warning||a|3|9||model 'm' at 2|"},
        {"", S::noteAtLine, message, "", 1, 0, true, {}, "", odd, "|note|905||1|0|exact||" + odd},
        // Back in the first one, about a record without a name.
        {odd, S::bug, FindingCode{CodeFamily::message, 1}, "a", 1, 1, false, SubjectKind::board, "", "y",
         odd + "|bug|1|a|1|1||board '' at 2|y"},
        {"", S::adviceAtLine, FindingCode{CodeFamily::advice, 201}, "a/b", 4000000000, 4, true, SubjectKind::header,
         odd, "z", "|advice|Q201|a/b|4000000000|4|exact|header '" + odd + "' at 2|z"},
    };
    FindingLog log;
    EXPECT_TRUE(log.empty());
    std::vector<std::string> expected;
    for (int round = 0; round < 3; ++round) {
        for (Row row : rows) { // whose texts are gone when the log is asked
            NameTable names;
            std::optional<Subject> subject;
            if (row.kind) subject = Subject{*row.kind, 2, names.enter(row.name), nullptr};
            log.add(row.printed, {.severity = row.severity,
                                  .code = row.code,
                                  .file = row.file,
                                  .line = row.line,
                                  .shown_line = row.shown_line,
                                  .exact = row.exact,
                                  .subject = subject ? &*subject : nullptr,
                                  .text = row.text});
            expected.push_back(row.described);
        }
    }
    EXPECT_FALSE(log.empty());
    EXPECT_EQ(contents(log), expected);
    EXPECT_EQ(contents(log), expected); // it still has them
    const FindingLog moved = std::move(log);
    EXPECT_EQ(contents(moved), expected);
}

TEST(FindingLog, knowsItsSize) {
    FindingLog log;
    const std::string text(1000, 'x');
    const std::string path(500, 'p');
    const Finding finding{.severity = Severity::error,
                          .code = std::nullopt,
                          .file = path,
                          .line = 1,
                          .shown_line = 1,
                          .exact = false,
                          .subject = nullptr,
                          .text = text};
    for (std::size_t i = 1; i <= 1000; ++i) {
        log.add("", finding);
        EXPECT_GE(log.size(), i * text.size());
    }
    // The path is there once, and room to grow is at most as much again.
    EXPECT_LT(log.size(), 2 * 1000 * (text.size() + 200));
}

} // namespace
} // namespace kestrel
