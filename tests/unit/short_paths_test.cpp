// What is read by a short path is read as the long way reads it.
#include "base/general_form.hpp"
#include "base/powers.hpp"
#include "base/row_store.hpp"
#include "base/text_store.hpp"
#include "files.hpp"
#include "reader/decimal.hpp"
#include "reader/line_scan.hpp"
#include "reader/rngp.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t count) { return static_cast<std::size_t>(random() % count); }

/// A text of characters from a set.
std::string textOf(Random& random, std::string_view characters, std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text.push_back(characters[below(random, characters.size())]);
    return text;
}

LineScan scanByCharacters(std::string_view text, char comment) {
    LineScan scan;
    for (; text[scan.length] != '\n'; ++scan.length) {
        const auto code = static_cast<unsigned char>(text[scan.length]);
        if (text[scan.length] == comment && scan.comment == LineScan::kNone) scan.comment = scan.length;
        if (code == '\t') {
            scan.has_tab = true;
        } else if ((code < 0x20 || code >= 0x80) && scan.odd == LineScan::kNone) {
            scan.odd = scan.length;
        }
    }
    return scan;
}

TEST(ShortPaths, linesAreScannedAlikeByEveryForm) {
    constexpr std::string_view kEnds("\n\0|\t\r\x80\xff\x1f \x7f!\x09\x0b{\x0a", 15);
    Random random(1);
    for (int round = 0; round < 200000; ++round) {
        // Now and then a character that matters, among those whose neighbours in the code table do.
        std::string text = textOf(random, "ab [1.}{z~", below(random, 70));
        for (std::size_t count = below(random, 4); count > 0 && !text.empty(); --count)
            text[below(random, text.size())] = kEnds[below(random, kEnds.size())];
        text.push_back('\n');
        const std::size_t room = text.size() + kScanPadding;
        const std::string padded = text + textOf(random, kEnds, room - text.size());
        for (const char comment : {'|', '{'}) {
            const LineScan expected = scanByCharacters(padded, comment);
            for (const LineScan& scan : {scanLine(padded.data(), comment), scanLineByWords(padded.data(), comment)}) {
                ASSERT_EQ(scan.length, expected.length) << ::testing::PrintToString(padded);
                ASSERT_EQ(scan.comment, expected.comment) << ::testing::PrintToString(padded);
                ASSERT_EQ(scan.odd, expected.odd) << ::testing::PrintToString(padded);
                ASSERT_EQ(scan.has_tab, expected.has_tab) << ::testing::PrintToString(padded);
            }
        }
    }
}

/// Holds the short way to the library's conversion wherever it gives a value; true when it did.
bool agreesWithLibrary(std::string_view text) {
    double value = 0.0;
    const char* const end = readShortDecimal(text.data(), text.data() + text.size(), value);
    if (end == nullptr) return false;
    const std::size_t plus = text[0] == '+' ? 1 : 0;
    double expected = 0.0;
    const auto read = std::from_chars(text.data() + plus, text.data() + text.size(), expected);
    EXPECT_EQ(read.ec, std::errc{}) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
    EXPECT_EQ(end, read.ptr) << text;
    return true;
}

/// A number as people write it, and now and then what is none.
std::string randomNumber(Random& random) {
    std::string text = textOf(random, "0123456789", 1 + below(random, 7));
    if (below(random, 4) != 0) text += "." + textOf(random, "0123456789", below(random, 10));
    if (below(random, 4) != 0) text.insert(0, 1, "-+"[below(random, 2)]);
    if (below(random, 2) != 0)
        text += textOf(random, "eE", 1) + textOf(random, "+-", below(random, 2)) +
                textOf(random, "0123456789", 1 + below(random, 2));
    if (below(random, 8) == 0) return text + textOf(random, " mVnFe.+-", below(random, 3));
    return text.empty() || text == "." ? "0" : text;
}

TEST(ShortPaths, numbersAreRoundedAsTheLibraryDoes) {
    Random random(2);
    int read = 0;
    for (int round = 0; round < 1000000 && !::testing::Test::HasFailure(); ++round)
        read += agreesWithLibrary(randomNumber(random)) ? 1 : 0;
    EXPECT_GT(read, 300000);
    for (const std::string_view text :
         {"9007199254740992", "9007199254740992e22", "-0", "+0.0", "0e22", ".5", "5.", "1e22", "1e-22", "1.0e-21",
          "123456789012345e-22", "0.00000000000000001", "1e0000000022", "4503599627370.497", "3.e1", "1E+05mV"}) {
        EXPECT_TRUE(agreesWithLibrary(text)) << text;
    }
    for (const std::string_view text :
         {"", "-", "+", ".", "-.", "e5", "1e", "1e+", "1e-x", "9007199254740993", "1e23", "1e-23",
          "1234567890123456789", "0000000000000000001", "1e99999999999", "inf", "nan", "-e1"}) {
        EXPECT_FALSE(agreesWithLibrary(text)) << text;
    }
}

/// Holds the short way of printing to the library's wherever it gives a text; true when it did.
bool printsAsLibrary(double value) {
    std::array<char, kGeneralFormRoom> room{};
    const char* const end = writeShortGeneralForm(room.data(), value);
    if (end == nullptr) return false;
    std::array<char, 64> expected{};
    const auto expected_end =
        std::to_chars(expected.data(), expected.data() + expected.size(), value, std::chars_format::general, 6).ptr;
    EXPECT_EQ(std::string_view(room.data(), end), std::string_view(expected.data(), expected_end))
        << std::hexfloat << value;
    return true;
}

TEST(ShortPaths, numbersArePrintedAsTheLibraryDoes) {
    Random random(6);
    int printed = 0;
    for (int round = 0; round < 500000 && !::testing::Test::HasFailure(); ++round) {
        // Bit patterns of moderate exponents, and numbers near the middle of two texts of six digits.
        const std::uint64_t bits = (random() & 0x800F'FFFF'FFFF'FFFF) | (1023 - 80 + random() % 160) << 52;
        printed += printsAsLibrary(std::bit_cast<double>(bits)) ? 1 : 0;
        const double middle = static_cast<double>(random() % 2000001) / 2.0;
        const double power = kExactPowers[below(random, kExactPowers.size())];
        for (const double value : {middle * power, middle / power, std::nextafter(middle / power, 0.0)})
            printed += printsAsLibrary(value) ? 1 : 0;
    }
    EXPECT_GT(printed, 800000);
    for (const double value :
         {0.0,  -0.0,          1.0,          0.1,         99999.94, 999999.0,    999999.4, 999999.6, 1e6,  123456789.0,
          1e-4, 0.00012345678, 9.9999996e-5, 9.999994e-5, 100000.0, 0.099999949, 3.3,      -6.02e-3, 1e15, -1e-15})
        EXPECT_TRUE(printsAsLibrary(value)) << value;
    for (const double value :
         {1e300, 1e-300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::denorm_min(), 100000.5})
        EXPECT_FALSE(printsAsLibrary(value)) << value;
}

std::string randomRow(Random& random) {
    std::string text;
    const std::size_t cells = below(random, 8) == 0 ? below(random, 6) : 4;
    for (std::size_t i = 0; i < cells; ++i) {
        text += textOf(random, " \t", i == 0 ? below(random, 3) : 1 + below(random, 3));
        const std::size_t kind = below(random, 20);
        text += kind == 0   ? textOf(random, "NnAa", 2)
                : kind == 1 ? textOf(random, "1=x/e.-NAm", 1 + below(random, 5))
                            : randomNumber(random);
    }
    return text;
}

TEST(ShortPaths, rowsAreReadAsTheGeneralReaderDoes) {
    Random random(3);
    int read = 0;
    for (int round = 0; round < 100000; ++round) {
        const std::string text = randomRow(random);
        TableRow row;
        Output out;
        kestrel::Run run(out);
        if (!readPlainRow(run, text, row)) continue;
        ++read;
        std::string_view rest = text;
        const FirstCell first = readFirstCell(takeItem(run, rest));
        ASSERT_TRUE(first.beginsRow()) << text;
        ASSERT_EQ(readRow(run, text, "Pullup", "Voltage", first), row) << text;
        ASSERT_EQ(out.text(), "") << text;
    }
    EXPECT_GT(read, 20000);
}

TEST(ShortPaths, linesAreCutIntoItemsAsOneByOne) {
    Random random(7);
    TestRun test;
    for (int round = 0; round < 100000; ++round) {
        const std::string text = textOf(random, round % 2 == 0 ? "ab= \t" : "abcdefgh=      ", below(random, 70));
        const char split = "\0="[below(random, 2)];
        std::string_view rest = text;
        std::vector<std::string_view> expected;
        for (std::string_view item = takeItem(test.run, rest, split); !item.empty();
             item = takeItem(test.run, rest, split))
            expected.push_back(item);
        const ItemList items = splitItems(test.run, text, kMaxItems, split);
        ASSERT_EQ(static_cast<std::size_t>(items.count), expected.size()) << text;
        for (int i = 0; i < items.kept; ++i) {
            ASSERT_EQ(items[i].data(), expected[static_cast<std::size_t>(i)].data()) << text;
            ASSERT_EQ(items[i], expected[static_cast<std::size_t>(i)]) << text;
        }
    }
}

/// The lines of a text, each ended by a line feed.
std::string linesOf(const std::string& text) {
    Output out;
    kestrel::Run run(out);
    LineReader reader(ByteSource(std::make_shared<const std::string>(text)));
    std::string lines;
    while (const std::optional<SourceLine> line = reader.next(run, kNoCapacity)) {
        lines.append(line->text).push_back('\n');
    }
    return lines + out.text();
}

TEST(ShortPaths, linesPassThroughTheWindowWhole) {
    constexpr std::size_t kWindow = std::size_t{128} << 10;
    Random random(4);
    std::string text;
    while (text.size() < 5 * kWindow)
        text += textOf(random, "abc |", below(random, 100)) + "\n";
    EXPECT_EQ(linesOf(text), text);
    // Lines that end around the end of the window, or are longer than it.
    for (const std::size_t length : {kWindow - 2, kWindow - 1, kWindow, kWindow + 1, 2 * kWindow, 5 * kWindow + 7}) {
        const std::string line(length, 'x');
        EXPECT_EQ(linesOf(line), line + "\n") << length;
        EXPECT_EQ(linesOf(line + "\n\r\n" + line + "\r\nend"), line + "\n\n" + line + "\nend\n") << length;
    }
}

TEST(Stores, keepWhatGrowsInTurns) {
    RowStore store;
    std::vector<Rows<std::uint64_t>> tables(5);
    std::vector<std::vector<std::uint64_t>> expected(tables.size());
    Random random(5);
    for (std::uint64_t row = 0; row < 200000; ++row) {
        const std::size_t table = below(random, 20) == 0 ? below(random, tables.size()) : row / 40000;
        store.add(tables[table], row);
        expected[table].push_back(row);
    }
    for (std::size_t i = 0; i < tables.size(); ++i)
        EXPECT_TRUE(std::ranges::equal(tables[i], expected[i])) << i;

    TextStore texts;
    std::vector<StoredText> stored;
    const auto textAt = [](std::size_t i) { return std::string(i, static_cast<char>('a' + i % 26)); };
    for (std::size_t i = 0; i < 600; ++i)
        stored.push_back(texts.add(textAt(i)));
    for (std::size_t i = 0; i < stored.size(); ++i)
        EXPECT_EQ(stored[i], textAt(i));
}

} // namespace
} // namespace kestrel
