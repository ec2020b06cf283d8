// Rows that are taken straight from the window are what reading line by line makes of them.
#include "reader/plain_rows.hpp"

#include "files.hpp"

#include <algorithm>
#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t count) { return static_cast<std::size_t>(random() % count); }

template <std::size_t Count> std::string_view oneOf(Random& random, const std::array<std::string_view, Count>& texts) {
    return texts[below(random, Count)];
}

/// Where readPlainLine() says that the line feed of a line is; nothing for a line that it leaves.
std::optional<std::size_t> feedOf(const ParseState& parse, std::string_view line, std::array<Cell, 4>& cells) {
    std::string text(line);
    text.append("\n").append(kScanPadding, '\n');
    const char* const feed = readPlainLine(parse, text.data(), cells);
    return feed == nullptr ? std::nullopt : std::optional(static_cast<std::size_t>(feed - text.data()));
}

TEST(PlainRows, areLinesOfWhichNothingElseIsToBeSaid) {
    ParseState parse;
    parse.version = IbisVersion::v3; // lines of at most 80 characters
    std::array<Cell, 4> cells;
    const std::string longest = "1 2 3 4 |" + std::string(71, 'x');
    const std::string gap(73, ' ');
    for (const std::string& line :
         {std::string("1 2 3 4"), std::string("  -1.5   2e-3 3.3V 4mA  "), std::string("1 2 3 4\r"),
          std::string("1 2 3 4 \r"), std::string("1 2 3 4 | note"), std::string("1 2 3 4 |\r"), longest, longest + "\r",
          gap + "1 2 3 4", gap + "1 2 3 4\r", std::string("NA 1 na 3")})
        EXPECT_EQ(feedOf(parse, line, cells), line.size()) << line;
    EXPECT_EQ(feedOf(parse, "-1.5 2e-3 3.3V NA", cells), 17U);
    EXPECT_EQ(cells, (std::array{Cell(-1.5), Cell(0.002), Cell(3.3), Cell::na()}));
    for (const std::string& line : {std::string(),
                                    std::string("1 2 3"),
                                    std::string("1 2 3 4 5"),
                                    std::string("1.2.3 4 5"),
                                    std::string("1 2-3 4"),
                                    std::string("1\t2 3 4"),
                                    std::string("1 2 3 4\t"),
                                    std::string("1 2 3 4 |\t"),
                                    std::string("1 2 3 4|"),
                                    std::string("1 2 3 4\r\r"),
                                    std::string("1 2 3 4 |\r\r"),
                                    std::string("1 2 3 N"),
                                    std::string("1 2 3 4\x80"),
                                    std::string("1 2 3 4 \x01"),
                                    std::string("1 2 3 4 | \x80"),
                                    std::string("1 2 3 4\x1a"),
                                    std::string("| 2 3 4"),
                                    std::string("R_fixture = 1"),
                                    longest + "x",
                                    gap + " 1 2 3 4",
                                    gap + "1 2 3 4 "})
        EXPECT_EQ(feedOf(parse, line, cells), std::nullopt) << line;
    parse.tab_warned = true;
    EXPECT_EQ(feedOf(parse, "\t1\t2 3 4\t| a\tTAB\r", cells), 17U);
    parse.comment = '!';
    EXPECT_EQ(feedOf(parse, "1 2 3 4 ! note", cells), 14U);
    EXPECT_EQ(feedOf(parse, "1 2 3 4 | note", cells), std::nullopt);
}

/// What one way of reading made of a file.
struct ReadTables {
    std::string printed;
    std::vector<std::tuple<std::string, std::string, std::uint32_t, std::uint32_t, bool, std::uint32_t>> findings;
    std::vector<std::vector<TableRow>> tables;
    std::uint32_t lines = 0;

    bool operator==(const ReadTables&) const = default;
};

void enter(ReadTables& read, const Wvfrm& waveform) {
    read.tables.emplace_back(waveform.rows.begin(), waveform.rows.end());
    if (waveform.composite_current) enter(read, *waveform.composite_current);
}

void enter(ReadTables& read, const Crv& curve) { read.tables.emplace_back(curve.rows.begin(), curve.rows.end()); }

void enter(ReadTables& read, const Tables& tables) {
    for (const Crv* const table : {&tables.pulldown, &tables.power_clamp})
        enter(read, *table);
    for (const Rows<Wvfrm>& list : {tables.rising_waveforms, tables.falling_waveforms})
        std::ranges::for_each(list, [&](const Wvfrm& waveform) { enter(read, waveform); });
}

ReadTables readTables(const std::string& text, bool short_paths) {
    Files files;
    ReadTables read;
    files.run.short_paths = short_paths;
    files.run.diagnostics.sink = [&read](const Finding& finding) {
        read.findings.emplace_back(finding.file, finding.text, finding.line, finding.shown_line, finding.exact,
                                   finding.subject != nullptr ? finding.subject->line : 0);
    };
    read.printed = files.put("a.ibs", text).check("a.ibs");
    read.lines = files.run.parse.line;
    for (const Mdl& model : files.root().models.newestFirst()) {
        enter(read, *model.tables);
        enter(read, model.tables->isso_pd);
    }
    for (const SubMdl& submodel : files.root().submodels.newestFirst()) {
        enter(read, *submodel.tables);
        enter(read, *submodel.gnd_pulse);
        enter(read, *submodel.power_pulse);
    }
    for (const TestData& data : files.root().test_data.newestFirst())
        std::ranges::for_each(data.tables, [&read](const auto& table) { enter(read, *table); });
    return read;
}

std::size_t rowsOf(const ReadTables& read) {
    std::size_t rows = 0;
    for (const std::vector<TableRow>& table : read.tables)
        rows += table.size();
    return rows;
}

std::string header(std::string_view version) {
    return std::string("[IBIS Ver] ").append(version).append("\n[File Name] a.ibs\n[File Rev] 1\n");
}

std::string randomRow(Random& random) {
    constexpr std::array<std::string_view, 8> kPlain{"0", "1", "-0.5", "2.25", "1e-3", "3.3mV", "+7", "12.5n"};
    constexpr std::array<std::string_view, 16> kOthers{"NA",  "na", ".5",    "5.",  "1e400", "1234567890123456789",
                                                       "N",   "-",  "1.2.3", "1-2", "1+2",   "x",
                                                       "0x1", "1=", "/",     "3..3"};
    constexpr std::array<std::string_view, 4> kGaps{" ", "  ", "   ", "\t"};
    std::string row(below(random, 3), ' ');
    const std::size_t cells = below(random, 8) == 0 ? below(random, 6) : 4;
    for (std::size_t i = 0; i < cells; ++i) {
        if (i != 0) row.append(oneOf(random, kGaps));
        row.append(below(random, 20) == 0 ? oneOf(random, kOthers) : oneOf(random, kPlain));
    }
    return row;
}

/// A file of tables with all kinds of lines. One of `rows_per_keyword` lines is none of a table.
std::string fileOfTables(Random& random, std::string_view version, std::size_t rows_per_keyword) {
    constexpr std::array<std::string_view, 23> kKeywords{"[Model] m",
                                                         "[Submodel] s",
                                                         "[Test Data] t",
                                                         "[Pulldown]",
                                                         "[POWER Clamp]",
                                                         "[ISSO PD]",
                                                         "[Rising Waveform]",
                                                         "[Falling Waveform]",
                                                         "[Composite Current]",
                                                         "[GND Pulse Table]",
                                                         "[POWER Pulse Table]",
                                                         "[Rising Waveform Near]",
                                                         "[Ramp]",
                                                         "[Falling Waveform Far]",
                                                         "[Comment Char] !_char",
                                                         "[Unknown]",
                                                         "[C Comp Model]",
                                                         "R_fixture = 50",
                                                         "! note",
                                                         "",
                                                         "|",
                                                         "[IBIS Ver] 3.2",
                                                         "\t| a TAB"};
    constexpr std::array<std::string_view, 18> kEnds{
        "",           " ",       "  ",     "\r",   " \r",      "|",  " | note",   " |\r", " ! note\t",
        "\t| note\r", " | \x80", " |\r\r", "\r\r", " |\x1f\r", " [", " | a\tTAB", "\x01", "  ! note"};
    constexpr std::array<std::size_t, 6> kLengths{79, 80, 81, 119, 120, 121};
    constexpr std::array<std::string_view, 7> kLast{"[End]\n",     "1 2 3 4", "1 2 3 4\r",    "1 2 3 4\x1a",
                                                    "1 2 3 4 | x", "1 2 3 N", "1 2 3 4\n\x1a"};
    std::string text = header(version) + "[Model] m\n[Pulldown]\n";
    const std::size_t rows_with_tabs = below(random, 2) * 150; // the first TAB of a file is reported, wherever it is
    for (std::size_t lines = 300; lines > 0; --lines) {
        if (below(random, rows_per_keyword) == 0) {
            text.append(oneOf(random, kKeywords)).append("\n");
            continue;
        }
        std::string row = randomRow(random);
        if (lines > rows_with_tabs) std::ranges::replace(row, '\t', ' ');
        const std::size_t form = below(random, 12);
        if (form < 4) row.append(oneOf(random, kEnds));
        if (form == 4 || (form == 5 && row.size() > 8)) { // to a length at the limit, ahead of the row or behind it
            const std::size_t length = kLengths[below(random, kLengths.size())];
            if (form == 4) row.append(" |");
            if (row.size() < length) row.insert(form == 4 ? row.size() : 0, length - row.size(), form == 4 ? '.' : ' ');
            if (below(random, 2) == 0) row.push_back('\r');
        }
        text.append(row).append("\n");
    }
    return text.append(oneOf(random, kLast));
}

TEST(PlainRows, areReadAsLineByLine) {
    Random random(8);
    std::size_t rows = 0;
    for (const std::string_view version : {"2.1", "3.2", "4.2", "5.1", "6.1"}) {
        for (int round = 0; round < 60; ++round) {
            const std::string text = fileOfTables(random, version, round % 4 == 0 ? 250 : 10);
            const ReadTables quick = readTables(text, true);
            ASSERT_EQ(quick, readTables(text, false)) << text;
            rows += rowsOf(quick);
        }
    }
    EXPECT_GT(rows, 20000U);
}

TEST(PlainRows, passThroughTheWindowWhole) {
    constexpr std::size_t kWindow = std::size_t{128} << 10;
    constexpr std::string_view kRow = "1.25 2 -3 4 |\r\n";
    const std::string begin = header("4.2") + "[Model] m\n[Pulldown]\n";
    // Each character of the row comes to lie at the end of the window once.
    for (std::size_t shift = 0; shift < kRow.size(); ++shift) {
        std::string text = begin + "|" + std::string(shift, '.') + "\n";
        std::size_t rows = 0;
        for (; text.size() < 2 * kWindow; ++rows)
            text.append(kRow);
        const ReadTables read = readTables(text, true);
        EXPECT_EQ(rowsOf(read), rows) << shift;
        EXPECT_EQ(read.lines, rows + 6) << shift;
    }
}

} // namespace
} // namespace kestrel
