// Advice on magnitudes and on how a file is put together, where a case file would not show what is meant: dates, names
// of many, lines of records, and that Q109 says what the cautions say.

#include "base/row_lines.hpp"
#include "files.hpp"
#include "quality/advised.hpp"
#include "quality/checks.hpp"
#include "quality/date_text.hpp"
#include "quality/named_few.hpp"

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Dates, areReadInAnyUsualOrder) {
    struct Row {
        std::string_view text;
        std::optional<int> year;
    };
    const Row rows[] = {
        {"12-May-2003", 2003},
        {"Thu Jan 11 10:21:36 CST 2018", 2018},
        {"Tue, 7 Jan 2003 10:00:00 +0200", 2003},
        {"2024-03-12T10:11:12-05:00", 2024},
        {"September 24, 2002", 2002},
        {"Sept. 2002", 2002},
        {"1st of march '04", 2004},
        {"Mar-99", 1999},
        {"05/07/97", 1997},
        {"04/14/00", 2000},
        {"31.12.2019", 2019},
        {"2024/1/2", 2024},
        {"3/2004", 2004},
        {"2004-03", 2004},
        {"20040312", 2004},
        {"12032004", 2004},
        {"260821", 2026},
        {"20040312101530", 2004},
        {"Created 12.3.2004 by the extraction", 2004},
        // Any order counts that gives a year in which models were made.
        {"92/05/06", 1992},
        {"11/12/92", 1992},
        {"1.1.1899", 1899},
        {"May 2999", 2999},
        // Not even a year and a month.
        {"some day", {}},
        {"2004", {}},
        {"May", {}},
        {"May 5", {}},
        {"13/2004", {}},
        {"32.1.2004", {}},
        {"Febtember 3, 2004", {}},
        {"12. Mai 2003", {}},
        {"1.2", {}},
        {"1.2.3", {}},
        {"10:15:30", {}},
        {"123456", {}},
        {"99999999999999999999", {}},
        {"", {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(yearOfDate(row.text, 1993, 2100), row.year) << row.text;
}

TEST(NamesOfMany, areFiveAndACount) {
    const auto named = [](std::size_t count) {
        NamedFew few;
        for (std::size_t i = 0; i < count; ++i)
            few.namesNext() ? few.add(std::string(1, static_cast<char>('a' + i))) : few.addUnnamed();
        return few.text();
    };
    EXPECT_EQ(named(1), "a");
    EXPECT_EQ(named(2), "a and b");
    EXPECT_EQ(named(5), "a, b, c, d and e");
    EXPECT_EQ(named(12), "a, b, c, d, e and 7 more");
}

TEST(LinesOfRows, areKeptOnlyWhereTheyJump) {
    RowLines lines;
    EXPECT_EQ(lines.of(0), 0U);
    const std::vector<std::uint32_t> kept{10, 11, 12, 15, 20, 21};
    for (std::size_t i = 0; i < kept.size(); ++i)
        lines.add(i, kept[i]);
    for (std::size_t i = 0; i < kept.size(); ++i)
        EXPECT_EQ(lines.of(i), kept[i]);
}

/// A file that was read: its advice with lines and codes, and the cautions.
struct Advised {
    explicit Advised(const std::string& text) {
        Files files;
        files.put("test.ibs", text);
        Run& run = files.run;
        run.diagnostics.silence_cautions = false;
        run.diagnostics.sink = [this](const Finding& finding) {
            if (levelOf(finding.severity) == Level::caution) cautions.emplace_back(finding.text);
        };
        checkFile(run, "test.ibs", FileKind::ibs);
        for (const Advice& advice : adviseOn(AdvisedFile(currentRoot(run), run.parse))) {
            said.push_back(std::to_string(advice.line) + " " + std::string(CodeText(advice.code).text()));
            texts.push_back(advice.text);
        }
    }
    std::vector<std::string> cautions;
    std::vector<std::string> said;
    std::vector<std::string> texts;
};

const std::string kHeader =
    "[IBIS Ver] 5.1\n[File Name] test.ibs\n[File Rev] 1\n[Date] 2026-03\n[Source] us\n"
    "[Component] C\n[Manufacturer] M\n[Package]\nR_pkg 1 1 1\nL_pkg 1n 1n 1n\nC_pkg 1p 1p 1p\n";
constexpr std::uint32_t kHeaderLines = 11;

std::string lineAndCode(std::uint32_t line_behind_header, std::string_view code) {
    return std::to_string(kHeaderLines + line_behind_header) + " " + std::string(code);
}

TEST(Advice, saysWhatTheCautionsSay) {
    const Advised file(kHeader +
                       "[Pin] signal_name model_name\n"
                       "1 A pair\n"
                       "| the second pin of a model is not said again\n"
                       "2 B pair\n"
                       "3 C both\n"
                       "4 D none_such\n"
                       "5 E pair\n"
                       "6 F pair\n"
                       "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n"
                       "5 6 0.2 0 0 0\n"
                       "[Model] pair\nModel_type Input_diff\nC_comp 1p 1p 1p\n[Voltage Range] 3 3 3\n"
                       "[Model] both\nModel_type I/O_ECL\nVinl = 1\nVinh = 1.5\nVmeas = 1\nC_comp 1p 1p 1p\n"
                       "[Voltage Range] 3 3 3\n"
                       "[End]\n");
    EXPECT_THAT(file.cautions, testing::UnorderedElementsAreArray(file.texts));
    EXPECT_THAT(file.said, ElementsAre(lineAndCode(2, "Q109"), lineAndCode(11, "Q109"), lineAndCode(15, "Q109")));
}

TEST(Advice, isSilentWhereDataAreMissing) {
    const Advised file(kHeader +
                       "[Pin] signal_name model_name R_pin L_pin C_pin\n"
                       "1 A rx NA NA NA\n"
                       "2 B drv 1 1n 1p\n"
                       "[Model] rx\nModel_type Input\nVinl = no\nVinh = no\nC_comp 0 0 0\n"
                       "[Voltage Range] NA 1 1\n[Temperature Range] NA 90 90\n[Pullup Reference] NA 5 1\n"
                       "[Model] drv\nModel_type Output\nVmeas = no\nRref = 50\nVref = 1\nC_comp_pullup NA 1 1\n"
                       "[Voltage Range] 3 NA NA\n"
                       "[End]\n");
    EXPECT_THAT(file.texts, ElementsAre("File: the only driver model has a ramp only and no waveform: drv"));
}

TEST(Advice, holdsAModelAgainstItsName) {
    // The pin names the second model of the name; nobody can say that it does not name the first.
    const std::string model =
        "[Model] rx\nModel_type Input\nVinl = 1\nVinh = 2\nC_comp 1p 1p 1p\n"
        "[Voltage Range] 3 3 3\n";
    const Advised file(kHeader + "[Pin] signal_name model_name\n1 A rx\n" + model + model + "[End]\n");
    EXPECT_THAT(file.said, IsEmpty());
}

} // namespace
} // namespace kestrel
