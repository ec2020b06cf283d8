// Items, numbers, cells, ranges and table rows: what every keyword reads its values through.

#include "reader/values.hpp"

#include "base/name_list.hpp"
#include "base/text.hpp"
#include "files.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"
#include "reader/record_name.hpp"
#include "reader/rng.hpp"
#include "reader/rngp.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr ReadResult kNone = ReadResult::noNumber;
constexpr ReadResult kNumber = ReadResult::number;
constexpr ReadResult kText = ReadResult::numberAndText;
constexpr CellState kMissing = CellState::missing;
constexpr CellState kGiven = CellState::number;
constexpr CellState kNa = CellState::na;

/// A run at line 7 that keeps its output.
struct TestRun {
    TestRun() { run.parse.line = 7; }
    Output out;
    Run run{out};
};

std::string errorLine(std::string_view text) { return "ERROR (line    7) - " + std::string(text) + "\n"; }
std::string warningLine(std::string_view text) { return "WARNING (line    7) - " + std::string(text) + "\n"; }

std::string blanks(std::size_t count) { return std::string(count, ' '); }
std::string zeros(std::size_t count) { return std::string(count, '0'); }

TEST(Texts, compareAndConvertAsciiLettersOnly) {
    struct Row {
        std::string_view a, b;
        std::size_t count;
        bool whole, prefix;
    };
    const Row rows[] = {
        {"GND Clamp", "gnd cLAMP", 3, true, true},
        {"pin", "pins", 3, false, true},
        {"pin", "pins", 4, false, false},
        {"pin", "PIN", 9, true, true},
        {"[x", "{x", 2, false, false},
        {"@", "`", 1, false, false},
        {"\xC9", "\xE9", 1, false, false},
        {"", "", 5, true, true},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(equalsNoCase(row.a, row.b), row.whole) << row.a << " " << row.b;
        EXPECT_EQ(prefixEqualsNoCase(row.a, row.b, row.count), row.prefix) << row.a << " " << row.b << row.count;
    }
    std::string text = "aZ_9[{\xC9";
    lowerCase(text);
    EXPECT_EQ(text, "az_9[{\xC9");
    upperCase(text);
    EXPECT_EQ(text, "AZ_9[{\xC9");
}

TEST(WhiteSpace, isSkippedUpToItsBoundAndStrippedWithoutOne) {
    TestRun test;
    EXPECT_EQ(skipWhiteSpace(test.run, " \t\v\f\r\na b "), "a b ");
    EXPECT_EQ(skipWhiteSpace(test.run, blanks(120) + "x"), "x");
    EXPECT_EQ(skipWhiteSpace(test.run, blanks(120)), "");
    EXPECT_EQ(splitItems(test.run, blanks(120) + "a" + blanks(120) + "b", 2).count, 2);
    EXPECT_EQ(stripTrailing(" a\t" + blanks(500)), " a");
    EXPECT_EQ(trim(blanks(500) + "a b" + blanks(500)), "a b");
    EXPECT_EQ(trim(blanks(500)), "");
    test.run.parse.long_lines = true;
    EXPECT_EQ(skipWhiteSpace(test.run, blanks(500) + "x"), "x");
}

TEST(WhiteSpaceDeathTest, aborts) {
    // To stderr, where the death test looks; only the flush before the abort gets the text there.
    Output out(stderr);
    kestrel::Run run(out); // every test has a Run of its own
    const auto killed = testing::KilledBySignal(SIGABRT);
    const std::string message = "^items\\.cpp:[0-9]+:assertion failed\\.\n$";
    EXPECT_EXIT((void)skipWhiteSpace(run, blanks(121) + "x"), killed, message);
    EXPECT_EXIT((void)splitItems(run, "a" + blanks(121) + "b", 2), killed, message);
    EXPECT_EXIT((void)splitItems(run, "a" + blanks(121), 2), killed, message);
}

TEST(Items, areCutAtBlanksTabsAndTheSplitCharacter) {
    struct Row {
        std::string_view text;
        char split;
        std::vector<std::string_view> items;
    };
    const Row rows[] = {
        {"", '\0', {}},
        {" \t ", '=', {}},
        {"  a\tbc  d ", '\0', {"a", "bc", "d"}},
        {"Vinl=0.8", '=', {"Vinl", "=", "0.8"}},
        {"Vinl\t=  0.8", '=', {"Vinl", "=", "0.8"}},
        {"Vinl=0.8", '\0', {"Vinl=0.8"}},
        {"==a=", '=', {"=", "=", "a", "="}},
        {"1/2 /3", '/', {"1", "/", "2", "/", "3"}},
        // Other white space stands in front of an item, but ends none.
        {"\v\fa\vb", '\0', {"a\vb"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TestRun test;
        std::string_view rest = row.text;
        for (const std::string_view item : row.items)
            EXPECT_EQ(takeItem(test.run, rest, row.split), item);
        EXPECT_EQ(takeItem(test.run, rest, row.split), "");
        EXPECT_EQ(rest, "");
        for (const int max : {0, 2, kMaxItems}) {
            const ItemList list = splitItems(test.run, row.text, max, row.split);
            const auto all = static_cast<int>(row.items.size());
            EXPECT_EQ(list.count, all);
            ASSERT_EQ(list.kept, std::min(all, max));
            for (int i = 0; i < kMaxItems; ++i) {
                EXPECT_EQ(list.has(i), i < list.kept);
                EXPECT_EQ(list[i], i < list.kept ? row.items[static_cast<std::size_t>(i)] : "") << i;
            }
        }
    }
}

TEST(Numbers, unsignedIntegers) {
    struct Row {
        std::string_view text;
        ReadResult result;
        std::uint32_t value;
    };
    const Row rows[] = {
        {"42", kNumber, 42},
        {"+42", kNumber, 42},
        {"007", kNumber, 7},
        {"4294967295", kNumber, 4294967295U},
        {"4294967296", kNumber, 4294967295U},
        {"99999999999999999999999", kNumber, 4294967295U},
        {"42 ", kText, 42},
        {"1.5", kText, 1},
        {"0x10", kText, 0},
        {"99999999999k", kText, 4294967295U},
        {"", kNone, 0},
        {"-1", kNone, 0},
        {"-0", kNone, 0},
        {"+", kNone, 0},
        {"+-1", kNone, 0},
        {"++1", kNone, 0},
        {"+.5", kNone, 0},
        {"x1", kNone, 0},
    };
    for (const Row& row : rows) {
        std::uint32_t value = 0;
        EXPECT_EQ(readUnsigned(row.text, value), row.result) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST(Numbers, signedIntegers) {
    struct Row {
        std::string_view text;
        ReadResult result;
        std::int32_t value;
    };
    const Row rows[] = {
        {"-5", kNumber, -5},
        {"+5", kNumber, 5},
        {"2147483647", kNumber, 2147483647},
        {"-2147483648", kNumber, -2147483647 - 1},
        {"-12 ", kText, -12},
        {"1e3", kText, 1},
    };
    for (const Row& row : rows) {
        std::int32_t value = 0;
        EXPECT_EQ(readSigned(row.text, value), row.result) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    for (const std::string_view text : {"", "-", "+", "--5", "+-5", "-+5", "k", "2147483648", "-2147483649"}) {
        std::int32_t value = 0;
        EXPECT_EQ(readSigned(text, value), kNone) << text;
    }
}

TEST(Numbers, decimals) {
    struct Row {
        std::string text;
        ReadResult result;
        double value;
    };
    const Row rows[] = {
        {"3.3", kNumber, 3.3},
        {"-.5", kNumber, -0.5},
        {"+.5", kNumber, 0.5},
        {"5.", kNumber, 5.0},
        {"2.E+1", kNumber, 20.0},
        {"1e0000000000000000002", kNumber, 100.0},
        {"5 ", kText, 5.0},
        {"1e", kText, 1.0},
        {"1e+", kText, 1.0},
        {"1.2.3", kText, 1.2},
        {"0x10", kText, 0.0},
        {"", kNone, 0.0},
        {".", kNone, 0.0},
        {"-.", kNone, 0.0},
        {"+", kNone, 0.0},
        {"+-1", kNone, 0.0},
        {"-+1", kNone, 0.0},
        {"--1", kNone, 0.0},
        {".e5", kNone, 0.0},
        {"e5", kNone, 0.0},
        {"inf", kNone, 0.0},
        {"-infinity", kNone, 0.0},
        {"+nan", kNone, 0.0},
        {"NaN(1)", kNone, 0.0},
        // Out of range, where neither the digits nor the exponent alone tell the side.
        {"1e400", kNumber, kInf},
        {"-1e400", kNumber, -kInf},
        {"+1e400x", kText, kInf},
        {"1e-400", kNumber, 0.0},
        {"-1e-400", kNumber, 0.0},
        {"1e99999999999", kNumber, kInf},
        {"-1e+99999999999999999999999", kNumber, -kInf},
        {"1e-99999999999999999999999", kNumber, 0.0},
        {"0e99999999999", kNumber, 0.0},
        {"1" + zeros(400), kNumber, kInf},
        {"0." + zeros(400) + "1", kNumber, 0.0},
        {"0." + zeros(400) + "1e401", kNumber, 1.0},
        {"1" + zeros(400) + "e-400", kNumber, 1.0},
        {"0." + zeros(400) + "1e1000", kNumber, kInf},
        {"." + zeros(400) + "1e50", kNumber, 0.0},
        {zeros(900) + "1" + zeros(400) + ".5e-1000", kNumber, 0.0},
        {zeros(900) + "1" + zeros(400) + ".5e-50", kNumber, kInf},
    };
    for (const Row& row : rows) {
        double value = 0.0;
        EXPECT_EQ(readDouble(row.text, value), row.result) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

/// Decimal texts of all shapes: short and long digits, with and without period and exponent.
std::string randomDecimal(std::mt19937_64& random) {
    std::string text;
    const auto digits = [&](std::size_t count) {
        while (count-- > 0)
            text.push_back(static_cast<char>('0' + random() % 10));
    };
    if (random() % 2 == 0) text.push_back('-');
    digits(1 + random() % (random() % 8 == 0 ? 60 : 6));
    if (random() % 4 != 0) {
        text.push_back('.');
        digits(random() % (random() % 8 == 0 ? 800 : 18));
    }
    if (random() % 2 == 0) text += "e" + std::to_string(static_cast<int>(random() % 700) - 360);
    return text;
}

TEST(Numbers, decimalsAreRoundedExactly) {
    std::vector<std::string> texts{
        "4.9e-324",
        "2.4703282292062327e-324",
        "2.4703282292062328e-324",
        "2.2250738585072011e-308",
        "1.7976931348623157e308",
        "1.7976931348623158e308",
        "1.7976931348623159e308",
        // Half way between two doubles, and just above.
        "9007199254740993",
        "9007199254740993.0000000000000000000000000000000001",
    };
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 4000; ++i) {
        texts.push_back(randomDecimal(random));
        std::array<char, 40> digits{};
        const double any = std::bit_cast<double>(random());
        if (std::isfinite(any)) {
            std::snprintf(digits.data(), digits.size(), "%.*e", static_cast<int>(15 + random() % 4), any);
            texts.emplace_back(digits.data());
        }
    }
    for (const std::string& text : texts) {
        double value = 0.0;
        ASSERT_EQ(readDouble(text, value), kNumber) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)))
            << text;
    }
}

TEST(Numbers, scaledByALetter) {
    struct Row {
        std::string_view text;
        ReadResult result;
        double value;
    };
    const Row rows[] = {
        {"3.3", kNumber, 3.3},    {"3.3V", kNumber, 3.3},     {"2T", kNumber, 2e12},  {"2G", kNumber, 2e9},
        {"2M", kNumber, 2e6},     {"10k", kNumber, 1e4},      {"2m", kNumber, 2e-3},  {"2u", kNumber, 2e-6},
        {"2nF", kNumber, 2e-9},   {"2p", kNumber, 2e-12},     {"2f", kNumber, 2e-15}, {"10K", kNumber, 10.0},
        {"2t", kNumber, 2.0},     {"2Meg", kNumber, 2e6},     {"1e5k", kNumber, 1e8}, {"1e", kNumber, 1.0},
        {"1e+", kNumber, 1.0},    {"-.5u", kNumber, -0.5e-6}, {"6m/", kNumber, 6e-3}, {"1e400p", kNumber, kInf},
        {"1.5n3", kText, 1.5e-9}, {"6m/2", kText, 6e-3},      {"0x10", kText, 0.0},   {"5/", kNone, 0.0},
        {"2/3", kNone, 0.0},      {"1.2.3", kNone, 0.0},      {"5 V", kNone, 0.0},    {"5_", kNone, 0.0},
        {"5\xE9", kNone, 0.0},    {"k", kNone, 0.0},          {"inf", kNone, 0.0},    {"", kNone, 0.0},
    };
    for (const Row& row : rows) {
        double value = 0.0;
        Cell cell;
        EXPECT_EQ(readScaled(row.text, value), row.result) << row.text;
        EXPECT_DOUBLE_EQ(value, row.value) << row.text;
        EXPECT_EQ(readCellText(row.text, cell), row.result) << row.text;
        EXPECT_EQ(cell.isNumber(), row.result != kNone) << row.text;
        EXPECT_DOUBLE_EQ(cell.value(), row.value) << row.text;
    }
    for (const std::string_view text : {"NA", "na", "Na", "nA"}) {
        Cell cell(1.0);
        EXPECT_EQ(readCellText(text, cell), kNumber) << text;
        EXPECT_TRUE(cell.isNa()) << text;
        EXPECT_EQ(cell.value(), 0.0) << text;
    }
    Cell cell(1.0);
    EXPECT_EQ(readCellText("NA1", cell), kNone);
    EXPECT_EQ(cell.state(), kMissing);
}

TEST(Cells, reportWhatTheyCannotRead) {
    struct Row {
        std::string_view text;
        bool present, ok;
        CellState state;
        double value;
        std::string diagnostics;
    };
    const Row rows[] = {
        {"", false, true, kMissing, 0.0, ""},
        {"2.5", true, true, kGiven, 2.5, ""},
        {"na", true, true, kNa, 0.0, ""},
        {"4n7", true, true, kGiven, 4e-9, warningLine("Suspicious Minimum Pin Value (\"4n7\"); Numeric in Scale")},
        {"2/3", true, false, kMissing, 0.0, errorLine("Invalid Minimum Value (\"2/3\")")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TestRun test;
        Cell cell(1.0);
        EXPECT_EQ(readCell(test.run.diagnostics, row.text, row.present, "Pin", "Minimum", cell), row.ok);
        EXPECT_EQ(cell.state(), row.state);
        EXPECT_DOUBLE_EQ(cell.value(), row.value);
        EXPECT_EQ(test.out.text(), row.diagnostics);
    }
}

TEST(Ranges, takeTypMinMax) {
    const std::string no_min = errorLine("No minimum Value Was Provided for Vinl");
    const std::string no_max = errorLine("No maximum Value Was Provided for Vinl");
    const std::string outside = warningLine("Typ value is not in between Min and Max ");
    struct Row {
        std::string_view text;
        OrderCheck check;
        bool ok;
        CellState typ, min, max;
        std::string diagnostics;
    };
    constexpr OrderCheck kOn = OrderCheck::on;
    const Row rows[] = {
        {"2 1 3", kOn, true, kGiven, kGiven, kGiven, ""},
        {"2 3 1", kOn, true, kGiven, kGiven, kGiven, ""},
        {"2 2 3", kOn, true, kGiven, kGiven, kGiven, ""},
        {"3 1 3", kOn, true, kGiven, kGiven, kGiven, ""},
        {"1 2 3", kOn, true, kGiven, kGiven, kGiven, outside},
        {"4 3 1", kOn, true, kGiven, kGiven, kGiven, outside},
        {"1 2 3", OrderCheck::off, true, kGiven, kGiven, kGiven, ""},
        {"1 NA 3", kOn, true, kGiven, kNa, kGiven, ""},
        {"1 2", kOn, true, kGiven, kGiven, kMissing, no_max},
        {"1.0", kOn, true, kGiven, kMissing, kMissing, no_min + no_max},
        {"", kOn, true, kMissing, kMissing, kMissing,
         errorLine("Incorrect Number of Line Items (0) For Vinl: Expecting 3")},
        // The fourth item is counted, not read; the counts are told before the cells.
        {"1 2 3 /", kOn, true, kGiven, kGiven, kGiven,
         errorLine("Incorrect Number of Line Items (4) For Vinl: Expecting 3") + outside},
        {"x", kOn, false, kMissing, kMissing, kMissing, no_min + no_max + errorLine("Invalid Typical Value (\"x\")")},
        // Reading goes on behind a cell that cannot be read.
        {"1 / 3n3", kOn, false, kGiven, kMissing, kGiven,
         errorLine("Invalid Minimum Value (\"/\")") +
             warningLine("Suspicious Maximum Vinl Value (\"3n3\"); Numeric in Scale")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TestRun test;
        Rng range;
        EXPECT_EQ(readRange(test.run, row.text, "Vinl", range, row.check), row.ok);
        EXPECT_EQ(range.typ().state(), row.typ);
        EXPECT_EQ(range.min().state(), row.min);
        EXPECT_EQ(range.max().state(), row.max);
        EXPECT_EQ(test.out.text(), row.diagnostics);
    }
    TestRun test;
    Rng range;
    EXPECT_TRUE(readRange(test.run, "5V 4500m 5.5", "Vinl", range, OrderCheck::on));
    EXPECT_DOUBLE_EQ(range.typ().value(), 5.0);
    EXPECT_DOUBLE_EQ(range.min().value(), 4.5);
    EXPECT_DOUBLE_EQ(range.max().value(), 5.5);
}

TEST(TableRows, areMadeOfWhateverCanBeRead) {
    const std::string no_typ = errorLine("No typical Value Was Provided for Pullup");
    const std::string no_min = errorLine("No minimum Value Was Provided for Pullup");
    const std::string no_max = errorLine("No maximum Value Was Provided for Pullup");
    using Values = std::array<double, kColumns>;
    using States = std::array<CellState, kColumns>;
    struct Row {
        std::string_view text;
        Values values;
        States states;
        std::string diagnostics;
    };
    const Row rows[] = {
        {"-5 1 na 4", {-5, 1, 0, 4}, {kGiven, kGiven, kNa, kGiven}, ""},
        {"1 2 3", {1, 2, 3, 0}, {kGiven, kGiven, kGiven, kMissing}, no_max},
        {"1 2", {1, 2, 0, 0}, {kGiven, kGiven, kMissing, kMissing}, no_min + no_max},
        {"NA", {0, 0, 0, 0}, {kNa, kMissing, kMissing, kMissing}, no_typ + no_min + no_max},
        {"",
         {0, 0, 0, 0},
         {kMissing, kMissing, kMissing, kMissing},
         errorLine("Incorrect Number of Line Items (0) For Pullup: Expecting 4")},
        {"1 2 3 4 x",
         {1, 2, 3, 4},
         {kGiven, kGiven, kGiven, kGiven},
         errorLine("Incorrect Number of Line Items (5) For Pullup: Expecting 4")},
        {"x 2n3 y 4",
         {0, 2e-9, 0, 4},
         {kMissing, kGiven, kMissing, kGiven},
         errorLine("Invalid Voltage Value (\"x\")") +
             warningLine("Suspicious Typical Pullup Value (\"2n3\"); Numeric in Scale") +
             errorLine("Invalid Minimum Value (\"y\")")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TestRun test;
        const TableRow read = readRow(test.run, row.text, "Pullup", "Voltage");
        for (std::size_t column = 0; column < kColumns; ++column) {
            EXPECT_EQ(read.cells[column].state(), row.states[column]) << column;
            EXPECT_DOUBLE_EQ(read.cells[column].value(), row.values[column]) << column;
        }
        EXPECT_EQ(test.out.text(), row.diagnostics);
    }
}

TEST(RecordNames, areEnteredAndHeldAgainstThoseBefore) {
    const CheckedMessage<> bare = 2410;
    RecordNameRules rules{"Model", bare, 2411, 2412, 2413, 2414};
    rules.limit = [](IbisVersion) { return 4; };
    const auto read = [&rules] {
        TestRun test;
        test.run.diagnostics.coded_form = true;
        ObjectList<SubMdl> list;
        RecordState<SubMdl> state{.list = &list};
        for (const std::string_view text : {"abcd", "abcd x", "abcde", "GND", "GND", ""}) {
            readRecordName(test.run, state, list.add(std::make_unique<SubMdl>()), text, rules);
        }

        return codesOf(test.out.text()) + (list.find("") != nullptr ? " entered" : "");
    };
    // of "abcd x" the count, of the first "GND" that it is reserved
    EXPECT_EQ(read(), "E2411@ E2414@ E2412@ E2413@ E2413@ E2410@");
    rules.repeats = RepeatedNames::ofWhole;
    EXPECT_EQ(read(), "E2411@ E2414@ E2412@ E2413@ E2413@ E2414@ E2410@");
    rules.repeats = RepeatedNames::ofAll;
    rules.missing = {};
    EXPECT_EQ(read(), "E2411@ E2414@ E2412@ E2414@ E2413@ E2413@ E2414@ E2411@ entered");
}

TEST(SetText, onceAndWithinItsLimit) {
    const auto xs = [](std::size_t count) { return std::string(count, 'x'); };
    const std::string empty = errorLine("Zero length value for keyword 'Date'.");
    struct Row {
        std::string text;
        std::uint32_t limit;
        std::string cut, cut_diagnostics, whole, whole_diagnostics;
    };
    const Row rows[] = {
        {"abc", 3, "abc", "", "abc", ""},
        {"", 3, "", empty, "", empty},
        {"abcd", 3, "abc", errorLine("Date string 'abcd' is too long, truncating to 3 characters."), "abcd",
         errorLine("Date string 'abcd' is too long, maximum length 3 allowed.")},
        {xs(2000), 5, "xxxxx", errorLine("Date string '" + xs(2000) + "' is too long, truncating to 5 characters."),
         xs(1024), errorLine("Date string '" + xs(2000) + "' is too long, maximum length 5 allowed.")},
        {xs(3001), 3000, xs(3000),
         errorLine("Date string '" + xs(3001) + "' is too long, truncating to 2176 characters."), xs(1024),
         errorLine("Date string '" + xs(3001) + "' is too long, maximum length 2176 allowed.")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        TestRun cut;
        std::string text;
        EXPECT_TRUE(setTextOnce(cut.run.diagnostics, text, row.text, row.limit, "Date"));
        EXPECT_EQ(text, row.cut);
        EXPECT_EQ(cut.out.text(), row.cut_diagnostics);
        TestRun whole;
        text.clear();
        EXPECT_TRUE(setWholeTextOnce(whole.run.diagnostics, text, row.text, row.limit, "Date"));
        EXPECT_EQ(text, row.whole);
        EXPECT_EQ(whole.out.text(), row.whole_diagnostics);
    }
    TestRun test;
    std::string text = "first";
    EXPECT_FALSE(setTextOnce(test.run.diagnostics, text, "", 3, "Date"));
    EXPECT_FALSE(setWholeTextOnce(test.run.diagnostics, text, "second", 3, "Date"));
    EXPECT_EQ(text, "first");
    const std::string twice = errorLine("Duplicate 'Date' keyword.");
    EXPECT_EQ(test.out.text(), twice + twice);
}

TEST(Words, reservedAndRequired) {
    TestRun test;
    std::string expected;
    for (const std::string_view word : {"GND", "nc", "Power", "CircuitCall", "nA"}) {
        EXPECT_TRUE(isReservedWord(word)) << word;
        EXPECT_FALSE(checkNotReserved(test.run.diagnostics, word)) << word;
        expected += errorLine("Illegal use of Reserved Word '" + std::string(word) + "'.");
    }
    for (const std::string_view word : {"", "GN", "GND1", "NA ", "POWER CLAMP"}) {
        EXPECT_FALSE(isReservedWord(word)) << word;
        EXPECT_TRUE(checkNotReserved(test.run.diagnostics, word)) << word;
    }
    test.run.parse.file_name = "demo.ibs";
    requiredKeywordMissing(test.run, "File_Rev");
    expected += "ERROR - Required keyword 'File_Rev' not found in file 'demo.ibs'.\n";
    EXPECT_EQ(test.out.text(), expected);
}

TEST(HashSeeds, differFromContainerToContainer) {
    const HashSeed one;
    const HashSeed other;
    const std::string text(20, 'x');
    // Of no length do two seeds agree, nor does one seed take texts of different ends or lengths for equal.
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::string_view part = std::string_view(text).substr(0, length);
        EXPECT_NE(one.hashOf(part), other.hashOf(part)) << length;
        EXPECT_EQ(one.hashOf(part), one.hashOf(std::string(part))) << length;
        EXPECT_NE(one.hashOf(part), one.hashOf(std::string(part) + '\0')) << length;
    }
}

TEST(NameViews, holdEachNameOnce) {
    NameViews list;
    EXPECT_TRUE(list.add("clk"));
    EXPECT_TRUE(list.add("CLK"));
    EXPECT_FALSE(list.add("clk"s));
    EXPECT_THAT(list.names, ElementsAre("clk", "CLK"));
}

} // namespace
} // namespace kestrel
