// Lines of a baseline, what makes one damaged, and what is known by it.

#include "findings/baseline.hpp"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_view_literals;

const std::string kHead = "# verimark baseline 1: path, code, message\n";

Finding finding(std::string_view file, std::optional<FindingCode> code, std::string_view text) {
    return {.severity = Severity::errorAtLine,
            .code = code,
            .file = file,
            .line = 7,
            .shown_line = 7,
            .exact = true,
            .subject = nullptr,
            .text = text};
}

TEST(BaselineLines, readAsTheyAreWritten) {
    struct Row {
        std::string_view file;
        std::optional<FindingCode> code;
        std::string_view text;
        std::string_view line;
    };
    const Row rows[] = {
        {"b.ibs", FindingCode{CodeFamily::message, 905}, "Exceeds 80 chararacters.",
         "b.ibs, 905, Exceeds 80 chararacters."},
        {"./x/../b.ibs", FindingCode{CodeFamily::advice, 201}, "a, b\n", "b.ibs, Q201, a, b"},
        {"b.ibs", std::nullopt, "a\nb\\c \"d\"\x1b\0"sv, R"(b.ibs, -, a\nb\\c \"d\"\x1b\x00)"},
        {"a, \"b\".ibs", FindingCode{CodeFamily::message, 100}, "x", R"("a, \"b\".ibs", 100, x)"},
        {"#a.ibs", FindingCode{CodeFamily::message, 100}, "x", "\"#a.ibs\", 100, x"},
        {"\xff.ibs", FindingCode{CodeFamily::message, 100}, "\xff", "\xff.ibs, 100, \xff"},
    };
    for (const Row& row : rows) {
        const Finding one = finding(row.file, row.code, row.text);
        EXPECT_EQ(baselineLine(one), row.line);
        Output out;
        BaselineWriter writer;
        writer.add(one);
        writer.write(out);
        EXPECT_EQ(out.text(), kHead + std::string(row.line) + "\n");
        Baseline known;
        EXPECT_FALSE(known.read(out.text()));
        EXPECT_TRUE(known.take(one));
        EXPECT_FALSE(known.take(one)); // a second one is new
    }
}

TEST(BaselineLines, areSortedAndCountEqualFindings) {
    Output out;
    BaselineWriter writer;
    writer.add(finding("b.ibs", FindingCode{CodeFamily::message, 905}, "y"));
    writer.add(finding("a.ibs", FindingCode{CodeFamily::message, 905}, "z"));
    writer.add(finding("b.ibs", FindingCode{CodeFamily::message, 905}, "y"));
    writer.write(out);
    EXPECT_EQ(out.text(), kHead + "a.ibs, 905, z\nb.ibs, 905, y\nb.ibs, 905, y\n");
}

TEST(Baselines, thatAreDamagedNameTheLine) {
    struct Row {
        std::string text;
        std::uint32_t line;
        std::string_view problem;
    };
    const std::string shape = "is not \"path, code, message\"";
    const Row rows[] = {
        {"", 1, "does not begin a baseline"},
        {"[IBIS Ver] 4.2\n", 1, "does not begin a baseline"},
        {kHead.substr(0, 20), 1, "does not begin a baseline"},
        {kHead.substr(0, kHead.size() - 1), 1, "is cut off: it has no line end"},
        {kHead + "a.ibs, 905, x\nb.ibs, 905, y", 3, "is cut off: it has no line end"},
        {kHead + "a.ibs, 905\n", 2, shape},
        {kHead + "\n# accepted in May\n<<<<<<< ours\n", 4, shape},
        {kHead + "\"a.ibs, 905, x\n", 2, shape},
        {kHead + ", 905, x\n", 2, shape},
        {kHead + "a.ibs, 9o5, x\n", 2, "has no known code"},
        {kHead + "a.ibs, 99999999999, x\n", 2, "has no known code"},
        {kHead + "a.ibs, 99, x\n", 2, "has no known code"},
    };
    for (const Row& row : rows) {
        Baseline known;
        const auto fault = known.read(row.text);
        ASSERT_TRUE(fault) << row.text;
        EXPECT_EQ(fault->line, row.line) << row.text;
        EXPECT_EQ(fault->text, row.problem) << row.text;
    }
}

TEST(Baselines, nameWhatIsGoneFromCheckedFiles) {
    Baseline known;
    // Order does not matter, nor do remarks and line ends of other systems.
    EXPECT_FALSE(known.read(kHead + "# ours\r\nb.ibs, 905, y\r\na.ibs, 905, x\n\na.ibs, 905, x\na.ibs, 100, w\n"));
    EXPECT_TRUE(known.take(finding("a.ibs", FindingCode{CodeFamily::message, 905}, "x")));
    EXPECT_FALSE(known.take(finding("a.ibs", FindingCode{CodeFamily::message, 100}, "x")));
    known.checked("./a.ibs");
    known.checked("c.ibs");
    EXPECT_EQ(known.taken(), 1);
    std::vector<std::string> gone;
    known.eachGone([&](std::uint32_t line, std::string_view text) {
        gone.push_back(std::to_string(line) + " " + std::string(text));
    });
    EXPECT_EQ(gone, (std::vector<std::string>{"6 a.ibs, 905, x", "7 a.ibs, 100, w"}));
}

TEST(Baselines, missAdviceOnlyWhereItIsGiven) {
    const auto gone = [](bool gives_advice) {
        Baseline known;
        EXPECT_FALSE(known.read(kHead + "a.ibs, Q105, x\n"));
        if (!gives_advice) known.leaveAdviceOut();
        known.checked("a.ibs");
        std::size_t lines = 0;
        known.eachGone([&lines](std::uint32_t, std::string_view) { ++lines; });
        return lines;
    };
    EXPECT_EQ(gone(true), 1U);
    EXPECT_EQ(gone(false), 0U);
}

} // namespace
} // namespace kestrel
