// The cases are worth as much as the comparison behind them: a wrong expectation has to fail.

#include "case_runner.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel::cases {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const Programs kPrograms{{"kestrel", "/bin/echo"}, {"fail", "/bin/false"}, {"sh", "/bin/sh"}, {"missing", ""}};
const Texts kTexts{{"short", "one\n"}, {"long", "one\ntwo\n"}};

std::string check(std::string_view text) { return checkCase(text, "/", kPrograms, kTexts); }

TEST(CaseRunner, passesWhenOutputStatusAndErrorOutputAreRight) {
    EXPECT_EQ(check("# words\nargs: -n 'a  b' '' c'd e'f\n---\na  b  cd ef"), "");
    EXPECT_EQ(check("# a text\nargs: 'one\ttab'\n---\none\ttab\n"), "");
    EXPECT_EQ(check("# status\nargs:\nprogram: fail\nstatus: 1\n---\n"), "");
    EXPECT_EQ(check("# directory\nargs: -c pwd\nprogram: sh\n---\n/\n"), "");
    EXPECT_EQ(check("# signal\nargs: -c 'kill -ABRT $$'\nprogram: sh\nstatus: 134\n---\n"), "");
    EXPECT_EQ(check("# text by name\nargs: -c 'echo zero; echo one; echo two'\nprogram: sh\n---\nzero\n{{long}}\n"),
              "");
}

TEST(CaseRunner, failsWhenTheOutputDiffers) {
    EXPECT_EQ(check("# other text\nargs: -c 'echo one; echo two'\nprogram: sh\n---\none\ntwo \n"),
              "output differs in line 2\n  expected: |two |\n  actual:   |two|\n");
    EXPECT_EQ(check("# more than expected\nargs: one\n---\n"),
              "output differs in line 1\n  expected: end of output\n  actual:   |one|\n");
    EXPECT_EQ(check("# less than expected\nargs: one\n---\n{{long}}\n"),
              "output differs in line 2\n  expected: |two|\n  actual:   end of output\n");
    EXPECT_EQ(check("# last newline\nargs: -n a\n---\na\n"),
              "output differs in line 1\n  expected: |a|\n  actual:   |a| (no newline)\n");
    EXPECT_THAT(check("# carriage return\nargs: a\n---\na\r\n"), HasSubstr("expected: |a\\x0d|\n"));
}

TEST(CaseRunner, failsWhenStatusOrErrorOutputDiffer) {
    EXPECT_EQ(check("# status\nargs:\nprogram: fail\n---\n"), "exit status is 1, expected 0\n");
    EXPECT_EQ(check("# status\nargs: a\nstatus: 2\n---\na\n"), "exit status is 0, expected 2\n");
    EXPECT_EQ(check("# signal\nargs: -c 'kill -ABRT $$'\nprogram: sh\n---\n"), "exit status is 134, expected 0\n");
    EXPECT_EQ(check("# error output\nargs: -c 'echo oops >&2'\nprogram: sh\n---\n"),
              "error output is not empty:\noops\n");
}

TEST(CaseRunner, failsWhenTheCaseItselfIsWrong) {
    const struct {
        std::string_view text;
        std::string_view problem;
    } rows[] = {
        {"args: a\n---\na\n", "no comment"},
        {"# c\n---\na\n", "no field \"args\""},
        {"# c\nargs: a\n", "no line \"---\""},
        {"# c\nargs: 'a\n---\na\n", "error output is not empty"}, // a quote is left open
        {"# c\nargs: a\nargs: b\n---\na\n", "a line that is no new field"},
        {"# c\nargs: a\nstatus: 1x\n---\na\n", "status"},
        {"# c\nargs: a\nstatsu: 1\n---\na\n", "unknown field \"statsu\""},
        {"# c\nargs: a\nprogram: other\n---\na\n", "there is no program \"other\""},
        {"# c\nargs: a\nprogram: missing\n---\na\n", "there is no program \"missing\""},
        {"# c\nargs: a\n---\n{{nothing}}\n", "there is no text for {{nothing}}"},
    };
    for (const auto& row : rows)
        EXPECT_THAT(check(row.text), HasSubstr(std::string(row.problem))) << row.text;
}

TEST(CaseRunner, updateRewritesTheOutputAndStillReportsTheStatus) {
    const fs::path file = fs::path(testing::TempDir()) / "case_runner_update.case";
    const std::string head = "# kept\nargs: -c 'printf \"one\\ntwo\\none\\nnone\\none\"; exit 3'\nprogram: sh\n---\n";
    std::ofstream(file) << head << "{{short}}\nold\n";

    EXPECT_THAT(checkCaseFile(file, kPrograms, kTexts, false), HasSubstr("expected: |old|\n  actual:   |two|\n"));
    EXPECT_EQ(checkCaseFile(file, kPrograms, kTexts, true), "exit status is 3, expected 0\n");
    // Names stand for the longest texts, and for whole lines only.
    std::ifstream in(file);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), head + "{{long}}\n{{short}}\nnone\none");
    fs::remove(file);
}

} // namespace
} // namespace kestrel::cases
