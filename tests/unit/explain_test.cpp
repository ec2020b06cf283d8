// How an explanation is found by what somebody types, and how it is laid out.

#include "main/explain.hpp"

#include "base/text.hpp"
#include "topics/find.hpp"
#include "topics/topic_forms.hpp"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using Codes = std::vector<MessageCode>;

Codes foundCodes(std::string_view text) {
    Codes numbers;
    for (const FindingCode code : codesOfText(text))
        numbers.push_back(code.number);
    return numbers;
}

TEST(Explain, readsCodesWithAndWithoutTheLetterOfAClass) {
    const FindingCode code{CodeFamily::message, 905};
    for (const std::string_view text : {"905", "E905", "w905", " B905 ", "0905"})
        EXPECT_EQ(readAskedCode(text), code) << text;
    EXPECT_EQ(readAskedCode("q201"), (FindingCode{CodeFamily::advice, 201}));
    for (const std::string_view text : {"", "E", "X905", "905x", "905 906", "line-too-long", "EE905"})
        EXPECT_EQ(readAskedCode(text), std::nullopt) << text;
}

TEST(Explain, findsMessagesByTheirTexts) {
    const std::map<std::string_view, Codes> texts{
        {"Exceeds 80 chararacters.", {905}},
        {"  exceeds  %d\tCHARARACTERS. ", {905}},
        {"Exceeds ... chararacters.", {905}},
        {"ERROR (line   12) - Exceeds 80 chararacters.", {905}},
        {"ERROR (line   12) -\n    Model Name Previously Defined (\"a - b\")", {131}},
        {"WARNING - Model 'x': Vmeas timing test load parameter should be specified", {201}},
        {"lib/b.ibs:12: error: whatever it says [905]", {905}},
        {"b.ibs:12: warning: Model x: C_comp min value is not the smallest value listed", {177}},
        // Several read like this; that of which most is the same counts.
        {"Invalid Corner Line", {176, 2015, 2213, 2419, 3208, 4707}},
        {"Invalid Vinl Value (\"x\")", {149, 1314, 1909, 2017, 2217, 3209, 4708, 4904}},
        {"Exceeds 80 chararacters. And more", {}},
        {"", {}},
    };
    for (const auto& [text, codes] : texts)
        EXPECT_EQ(foundCodes(text), codes) << text;
}

TEST(Explain, namesTheNearestWhereThereIsNone) {
    const auto near = [](std::string_view text) { return nearestCode(text).value_or(FindingCode{}).number; };
    EXPECT_EQ(near("Exceeds 80 characters"), 905U);
    EXPECT_EQ(near("unknwn matrx type"), 3702U);
    EXPECT_EQ(near("zzzz"), 0U);
    EXPECT_EQ(near(""), 0U);
    const std::map<std::string_view, std::string_view> problems{
        {"Unknwn matrix type", "there is no such message; did you mean 3702, \"Unknown matrix type '...'.\"?"},
        {"zzzz", "there is no such message; \"verimark --messages\" lists them"},
        {"103", "there is no message 103; next to it: 102 and 107"},
        {"E100", "message 100 is not raised by a file; next to it: 102"},
        {"1", "there is no message 1; next to it: 102"},
        {"99999", "there is no message 99999; next to it: 5011"},
    };
    for (const auto& [asked, problem] : problems) {
        const Explained explained = findExplained(asked);
        EXPECT_TRUE(explained.topics.empty());
        EXPECT_EQ(explained.problem, problem);
    }
    // A text that is as long as a file.
    EXPECT_EQ(near(std::string(1000000, 'x')), 0U);
}

TEST(Explain, aTopicIsFoundByItsName) {
    const Topic* const topic = topicOf({CodeFamily::message, 905});
    ASSERT_NE(topic, nullptr);
    EXPECT_EQ(findExplained(topic->slug).topics, std::vector{topic});
    EXPECT_EQ(findExplained("W905").topics, std::vector{topic});
}

/// A topic of an advice, with all that a topic may have.
constexpr FindingCode kCodes[] = {{CodeFamily::message, 905}, {CodeFamily::advice, 201}};
constexpr Topic kTopic{.slug = "both",
                       .title = "A title",
                       .codes = kCodes,
                       .meaning = "The first paragraph of two.\n\nThe *second_one* has a_b.",
                       .why = "Why.",
                       .mend = "How.",
                       .formula = "With i:\n  v = i * r\nand so on.",
                       .bad = "[Ramp]\n\nx",
                       .mended = "[Ramp]",
                       .reason = ""};

TEST(Explain, laysATopicOut) {
    EXPECT_EQ(plainText(kTopic, {.width = 20, .heading_begin = "<", .heading_end = ">"}),
              "<Meaning>\n\nThe first paragraph\nof two.\n\nThe *second_one* has\na_b.\n\n<Why it matters>\n\nWhy.\n\n"
              "<How to mend>\n\nHow.\n\n<Formula>\n\nWith i:\n  v = i * r\nand so on.\n\n"
              "<Example>\n\nBad:\n    [Ramp]\n\n    x\nMended:\n    [Ramp]\n");
    EXPECT_EQ(
        markdownText(kTopic),
        "**Meaning**\n\nThe first paragraph of two.\n\nThe \\*second_one\\* has a_b.\n\n**Why it matters**\n\nWhy.\n\n"
        "**How to mend**\n\nHow.\n\n**Formula**\n\nWith i:\n\n    v = i * r\n\nand so on.\n\n"
        "**Example**\n\nBad:\n\n```\n[Ramp]\n\nx\n```\n\nMended:\n\n```\n[Ramp]\n```\n");
    const std::string text = explanation({.topics = {&kTopic}}, {.width = 80, .color = true});
    EXPECT_TRUE(
        text.starts_with("\x1b[1mA title\x1b[0m\n\n   905  error   Exceeds ... chararacters.\n"
                         "  Q201  advice  "));
    Topic without = kTopic;
    without.bad = without.mended = "";
    without.reason = "It cannot be.";
    EXPECT_TRUE(plainText(without).ends_with("Example\n\nNone: It cannot be.\n"));
}

TEST(Explain, fitsTheWidthOfATerminal) {
    for (const std::size_t width : {40U, 80U, 200U}) {
        for (const Topic& topic : topics()) {
            std::string text = explanation({.topics = {&topic}}, {.width = width});
            text.erase(text.find("\nExample\n")); // whose lines are as they are
            for (std::size_t at = 0; at < text.size(); at = std::min(text.find('\n', at), text.size()) + 1) {
                const std::string line = text.substr(at, text.find('\n', at) - at);
                const bool fits = line.size() <= width || line.find_first_of(' ', 40) == std::string::npos;
                EXPECT_TRUE(fits || line == topic.title || line.starts_with(' ')) << topic.slug << ": " << line;
            }
        }
    }
}

TEST(Wrapped, keepsWords) {
    const auto wrapped = [](std::string_view text, std::size_t width, std::size_t indent = 0) {
        std::string result;
        appendWrapped(result, text, width, indent);
        return result;
    };
    EXPECT_EQ(wrapped("one two three", 7), "one two\nthree\n");
    EXPECT_EQ(wrapped("one two three", 8), "one two\nthree\n");
    EXPECT_EQ(wrapped("one two three", 13), "one two three\n");
    EXPECT_EQ(wrapped("unbreakable x", 5, 2), "  unbreakable\n  x\n");
    EXPECT_EQ(wrapped("a\n\nb c\n  kept as it is\n", 5), "a\n\nb c\n  kept as it is\n");
    EXPECT_EQ(wrapped("", 5), "");
    EXPECT_EQ(wrapped("a b", std::string_view::npos, 1), " a b\n");
}

} // namespace
} // namespace kestrel
