// R/L/C sections of a line, and the chains with forks that they are attached to.

#include "package/sect.hpp"

#include "diagnostics/diagnostics.hpp"
#include "files.hpp"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

TEST(Section, lines) {
    struct Row {
        std::string text;
        std::string codes;
        int sections; ///< read before the line ended or failed
    };
    const Row rows[] = {
        {"", "", 0},
        {"  \t ", "", 0},
        {"Len=0/", "", 1},
        {"Len=0 R=1/", "", 1},
        {"Len=1 L=1n R=2m C=2p/", "", 1},
        {" Len\t=  1 L= 1n C =2p /Len=0/ Len=0 /", "", 3},
        {"Len=0/Len=1 R=2/", "E3012@", 2},
        {"Len=1 L=1n/", "E3012@", 1},
        {"Len=1 C=1p/", "E3012@", 1},
        {"/", "E3011@", 1},
        {"Len=0/ / Len=0/", "E3011@", 3},
        {"L=1n C=1p/", "E3005@ E3008@", 1},
        {"R=-1 Len=-2 Len=3 L=1 L=-2 C=-0/", "E3002@ E3004@ E3001@ E3000@ E3006@ E3007@", 1},
        {"C=1 C=-1/", "E3008@ E3008@ E3009@ E3010@", 1},
        {"Len=0/ Len=1 L=1", "E3013@", 1},
        {"Len=0/ len=1/ Len=0/", "E1919@", 1},
        {"Fork", "E1919@", 0},
        {"Bogus/", "E1919@", 0},
        {"=1/", "E1918@", 0},
        {"Len==1/", "E1918@", 0},
        {"Len", "E1920@", 0},
        {"Len =", "E1920@", 0},
        {"Len 1/", "E1921@", 0},
        {"Len/", "E1921@", 0},
        {"Len=x/ Len=0/", "E1922@", 0},
        {"R=x/", "E1922@", 0},
        {"Len=/", "E1923@", 0},
        {"Len=1n5 L=1nH C=1pF/", "", 1}, // digits in the scale are no matter here
    };
    for (const Row& row : rows) {
        TestRun test(true);
        std::string_view rest = row.text;
        Sect sect;
        int sections = 0;
        while (readSection(test.run.diagnostics, rest, sect) == SectResult::section)
            ++sections;
        EXPECT_EQ(test.codes(), row.codes) << row.text;
        EXPECT_EQ(sections, row.sections) << row.text;
    }
}

TEST(Section, theLastValueStays) {
    TestRun test(true);
    std::string_view text = "Len=1 L=2n C=3p L=-4n/rest";
    Sect sect;
    ASSERT_EQ(readSection(test.run.diagnostics, text, sect), SectResult::section);
    EXPECT_EQ(text, "rest");
    EXPECT_EQ(sect.len, 1.0);
    EXPECT_EQ(sect.l, -4e-9);
    EXPECT_EQ(sect.c, 3e-12);
    EXPECT_FALSE(sect.r.has_value());
}

/// Builds a chain from a text: "s" a section, "(" a fork, ")" its end.
Chain chainOf(std::string_view steps, std::string* codes = nullptr) {
    TestRun test(true);
    Chain chain;
    ChainCursor cursor;
    for (const char step : steps) {
        if (step == 's') attachSection(chain, cursor, Sect{});
        if (step == '(') openFork(chain, cursor);
        if (step == ')') closeFork(test.run.diagnostics, chain, cursor, {3443, 3442});
    }
    if (codes != nullptr) *codes = test.codes();
    return chain;
}

/// The tree written out again from its head; forks as they hang, not as they were read.
std::string writtenOut(const Chain& chain, std::uint32_t at = 0) {
    std::string text;
    for (; at < chain.elements.size(); at = chain.elements[at].next) {
        const ChainElement& element = chain.elements[at];
        text += element.kind == ElementKind::section ? "s" : "(" + writtenOut(chain, element.payload) + ")";
    }
    return text;
}

TEST(Chain, elementsHangWhereTheyWereRead) {
    for (const std::string steps : {"", "s", "sss", "s(ss)s", "(s)", "s(s(ss)s)s(s)", "((s)(s(s)))ss", "s()s"})
        EXPECT_EQ(writtenOut(chainOf(steps)), steps);
    EXPECT_EQ(writtenOut(chainOf("s(s(s")), "s(s(s))");
}

TEST(Chain, endsOfForks) {
    std::string codes;
    chainOf(")s(s))s()((s)s))", &codes);
    EXPECT_EQ(codes, "E3443@ E3443@ E3442@ E3443@");
}

TEST(Chain, startsAnewWithoutATail) {
    Chain chain = chainOf("ss(s)");
    ChainCursor cursor;
    openFork(chain, cursor);
    attachSection(chain, cursor, Sect{});
    EXPECT_EQ(writtenOut(chain), "(s)");
    EXPECT_EQ(chain.sections.size(), 1U);
}

TEST(Chain, depthAndLengthCostNoStack) {
    constexpr std::size_t kMany = 250'000;
    const Chain deep = chainOf(std::string(kMany, '(') + "s" + std::string(kMany, ')'));
    const Chain length = chainOf(std::string(kMany, 's'));
    EXPECT_EQ(deep.elements.size(), kMany + 1);
    EXPECT_EQ(deep.elements.back().kind, ElementKind::section);
    EXPECT_EQ(length.sections.size(), kMany);
}

} // namespace
} // namespace kestrel
