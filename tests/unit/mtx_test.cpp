// Matrices: slots by form and position, the turn into a wrap, names of rows and columns, what the close reports.

#include "lines.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

struct Row {
    std::uint32_t pins;
    std::string text; ///< what follows "[Capacitance Matrix] "
    std::string codes;
};

/// Starts a package model with so many pins, named A, B, C and so on.
void start(Lines& lines, std::uint32_t pins) {
    lines.read("[Define Package Model] P\n[Number Of Pins] " + std::to_string(pins) + "\n[Pin Numbers]");
    for (std::uint32_t pin = 0; pin < std::min(pins, 26U); ++pin)
        lines.read(std::string(1, static_cast<char>('A' + pin)));
}

std::string codesOfMatrix(const Row& row) {
    Lines lines(KeywordCode::definePackageModel, IbisVersion::v3);
    start(lines, row.pins);
    lines.read("[Capacitance Matrix] " + row.text + "\n[End Model Data]");
    return lines.codes();
}

void expectCodes(std::initializer_list<Row> rows) {
    for (const Row& row : rows)
        EXPECT_EQ(codesOfMatrix(row), row.codes) << row.pins << " pins\n" << row.text;
}

TEST(Matrix, full) {
    expectCodes({
        {3, "Full_matrix\n[Row] A\n1 2\n3\n[Row] B\n1\t2\n[Row] C\n1", ""},
        {3, "FULL_MATRIX\n[Row] A\n1 2 3\n[Row] B\n1 2\n[Row] C\n1", ""},
        {3, "Full matrix\n[Row] A\n1 2 3", "E3702@ E3717@"},
        {3, "\n[Row] A\n1 2 3", "E3701@ E3717@"},
        {2, "Full_matrix\n[Row] A\n1 2 3\n[Row] B\n1", "E3105@"},
        // A value is read before room is looked for; the first error ends the line, what stood before it stays.
        {2, "Full_matrix\n[Row] A\n1 2 x\n[Row] B\n1", "E3103@"},
        {2, "Full_matrix\n[Row] A\n1 x 2\n[Row] B\n1n5", "E3103@ W3104@ E3116@"},
        // Behind the last row a row is silently none, whatever its name, and its data goes to the row before.
        {2, "Full_matrix\n[Row] A\n1 2\n[Row] B\n1\n[Row]\n5\n[Row] Toolong", "E3105@"},
        {2, "Full_matrix\n[Row]\n7\n[Row] A\n1 2\n[Row] B\n1", "E3120@"},
        {2, "Full_matrix\n[Row] A\n1\n[Row]\n2\n[Row] B\n1", "E3120@"},
        {0, "Full_matrix\n[Row] A\n1", "E3424@"},
    });
}

TEST(Matrix, rowNames) {
    expectCodes({
        {2, "Full_matrix\n[Row] Z\n1 2\n[Row] A\n1", "E3100@ E3102@"},
        {3, "Full_matrix\n[Row] A\n1 2 3\n[Row] A\n1 2\n[Row] A\n1", "E3101@ E3102@ E3101@ E3101@ E3102@"},
        {1, "Full_matrix\n[Row] Abcdef\n1", "E3121@ E3100@"},
        {1, "Full_matrix\n[Row] A    x\n1", "E3121@"},
    });
}

TEST(Matrix, rowsThatComeBeforeTheirPin) {
    Lines lines(KeywordCode::definePackageModel, IbisVersion::v3);
    lines.read(
        "[Define Package Model] P\n[Number Of Pins] 3\n[Pin Numbers]\nA\n[Resistance Matrix] Full_matrix\n[Row] B\n"
        "[Pin Numbers]\nB\n[Row] B\n[Row] B");
    EXPECT_EQ(lines.codes(), "E3100@ E3468@ E3101@ E3101@ E3101@ E3102@");
}

TEST(Matrix, banded) {
    const std::string four = "Banded_matrix\n[Bandwidth] 1\n[Row] A\n1 2\n[Row] B\n1 2\n[Row] C\n1 2\n[Row] D\n";
    const std::string five = "Banded_matrix\n[Bandwidth] 2\n[Row] A\n1 2 3\n[Row] B\n1 2 3\n[Row] C\n1 2 3\n[Row] D\n";
    expectCodes({
        {4, four + "1", ""},
        {4, four + "1 2", ""},
        {4, four + "1 2 3", "E3107@"},
        {4, four + "1\nx", "E3103@"},
        // A wrap takes one row more, and no further one.
        {4, four + "1 2\n[Row] E\n1 2\n[Row] F\n9", "E3100@ E3107@ E3717@"},
        {4, four + "1\n[Row] E\n9 9", "E3122@ E3107@"},
        {4, "Banded_matrix\n[Bandwidth] 2\n[Row] A\n1 2 3\n[Row] B\n1 2 3\n[Row] C\n1 2\n[Row] D\n1 2", "E3708@"},
        // The turn widens the rows before it as well, which then lack values.
        {5, five + "1 2\n[Row] E\n1", ""},
        {5, five + "1 2\n[Row] E\n1 2 3", "E3116@"},
        {5, five + "1 2\n[Row] E\n1 2", "E3116@ E3116@"},
        {5, five + "1 2 3\n[Row] E\n1 2 3", ""},
        {5, five + "1 2 3\n[Row] E\n1 2 3 4", "E3107@"},
        // Without a bandwidth there is only the diagonal.
        {2, "Banded_matrix\n[Row] A\n1 2\n[Row] B\n1\n[Row] C\n3", "E3107@ E3122@ E3107@"},
    });
}

TEST(Matrix, bandwidth) {
    expectCodes({
        {2, "Full_matrix\n[Bandwidth] 1\n[Row] A\n1 2\n[Row] B\n1", "E3703@"},
        {2, "Banded_matrix\n[Bandwidth] x\n[Row] A\n1\n[Row] B\n1", "E3704@"},
        {2, "Banded_matrix\n[Bandwidth]\n[Row] A\n1\n[Row] B\n1", "E3704@"},
        {2, "Banded_matrix\n[Bandwidth] 1x\n[Row] A\n1 2\n[Row] B\n1", "E3705@"},
        {2, "Banded_matrix\n[Bandwidth] 2\n[Row] A\n1 2 3\n[Row] B\n1", "E3706@ E3708@"},
        {2, "Banded_matrix\n[Bandwidth] 4294967295\n[Row] A\n1 2\n[Row] B\n1", "E3706@"},
        // Behind a repeated matrix keyword the old band may be narrowed, which no row made before it can follow.
        {3, "Banded_matrix\n[Bandwidth] 2\n[Row] A\n1 2 3\n[Capacitance Matrix] Full_matrix\n[Bandwidth] 1\n[Row]\n9",
         "E3462@ E3120@ B3108@ E3717@"},
        {5,
         "Banded_matrix\n[Bandwidth] 2\n[Row] A\n1 2 3\n[Capacitance Matrix] Full_matrix\n[Bandwidth] 1\n"
         "[Row] B\n1 2\n[Row] C\n1 2\n[Row] D\n1 2\n[Row] E\n1 2",
         "E3462@ B3109@"},
    });
}

TEST(Matrix, sparse) {
    const std::string rest = "\n[Row] B\nB 1\n[Row] C\nC 1";
    expectCodes({
        {3, "Sparse_matrix\n[Row] A\nA 1\nC\t2n" + rest, ""},
        {3, "sparse_MATRIX\n[Row] A\nC 2" + rest, "E3118@"},
        {3, "Sparse_matrix\n[Row] A\nC 2\n[Row] B\n[Row] C\nA 1", "E3111@ E3118@ E3117@ E3117@"},
        {3, "Sparse_matrix\n[Row] A\nA\nB 1" + rest, "E3114@"}, // named is enough to be self-coupled
        {3, "Sparse_matrix\n[Row] A\nA x" + rest, "E3103@ E3117@"},
        {3, "Sparse_matrix\n[Row] A\nA 1n2" + rest, "W3104@"},
        {3, "Sparse_matrix\n[Row] A\nA 1 2 3" + rest, "E3115@"},
        {3, "Sparse_matrix\n[Row] A\nA 1\nA 2" + rest, "E3113@"},
        {3, "Sparse_matrix\n[Row] A\nA 1\nZ 2\nAAAAAA 1" + rest, "E3100@ E3100@"},
        {3, "Sparse_matrix\n[Row] A\nA 1\n[Row] B\nB 1\nC 1\nA 1\n[Row] C\nC 1", "E3111@"},
        // The column is held against the row's place, not against the row's pin.
        {3, "Sparse_matrix\n[Row] B\nB 1\nA 1\n[Row] A\nA 1\nB 1\n[Row] C\nC 1", "E3102@ E3102@ E3111@"},
    });
}

TEST(Matrix, sparsePlacesOutOfOrder) {
    expectCodes({
        // B was given before C came out of order, and C before B repeats it; the next row knows nothing of them.
        {4,
         "Sparse_matrix\n[Row] A\nB 1\nD 1\nC 1\nB 2\nC 2\nA 1\nD 2\n[Row] B\nD 1\nC 1\nB 1\n[Row] C\nC 1\n[Row] D\nD 1",
         "E3113@ E3113@ E3113@"},
        // A line that has no use leaves its column free; the pin behind the last one is not always free.
        {3, "Sparse_matrix\n[Row] A\nC 1\nA x\nA 1\nB 1\nC 2" + std::string("\n[Row] B\nB 1\n[Row] C\nC 1"),
         "E3103@ E3113@"},
        // Nothing of this is plain: a name with more behind it, values that are none, text behind a value.
        {3, "Sparse_matrix\n[Row] A\nA1 1\nA 1-\nA 1e5x\nB 1nF\nC 1 C\n[Row] B\n  B\t-1.5e-3\n[Row] C\nC 0x1",
         "E3100@ E3103@ E3115@ W3104@"},
    });
    Lines lines(KeywordCode::definePackageModel, IbisVersion::v3);
    start(lines, 3);
    // A closed matrix that takes lines once more knows its rows and the columns of the last one.
    lines.read("[Capacitance Matrix] Sparse_matrix\n[Row] B\nC 1\nB 1\n[End Package Model]\n[Row]\nB 2\nC 2");
    EXPECT_EQ(lines.codes(), "E3102@ E3717@ E3120@ E3113@ E3113@");
    lines.read("[Row] B\n[Row] A");
    EXPECT_EQ(lines.codes(), "E3101@ E3102@");
}

TEST(Matrix, columnsOfPinsThatComeLater) {
    Lines lines(KeywordCode::definePackageModel, IbisVersion::v3);
    lines.read(
        "[Define Package Model] P\n[Number Of Pins] 40\n[Pin Numbers]\nA\nB\n[Resistance Matrix] Sparse_matrix\n"
        "[Row] A\nB 1\nA 1\n[Pin Numbers]");
    std::string text;
    for (char pin = 'C'; pin <= 'Z'; ++pin)
        text += std::string(1, pin) + "\n";
    lines.read(text + "[Row]\nZ 1\nY 1\nZ 2\nB 2");
    EXPECT_EQ(lines.codes(), "E3468@ E3120@ E3113@ E3113@");
}

TEST(Matrix, valuesAreThoseOfTheLines) {
    Lines lines(KeywordCode::definePackageModel, IbisVersion::v3);
    start(lines, 3);
    lines.read(
        "[Inductance Matrix] Full_matrix\n[Row] A\n\t2n 4e-9F  x\n4\n[Row] B\n123456789012345678901e-20 -.5m\n"
        "[Capacitance Matrix] Sparse_matrix\n[Row] A\nB 1.5p\nC +2\nA 12345678901234567890e-19");
    const PkgMdl& package = *lines.root.package_models.newestFirst().begin();
    const auto values = [](const MtxRow& row) {
        const auto& rows = std::get<MtxValues>(row.given);
        return std::vector<double>(rows.begin(), rows.end());
    };
    EXPECT_EQ(values(package.inductance->rows[0]), (std::vector<double>{2e-9, 4e-9, 4}));
    EXPECT_EQ(values(package.inductance->rows[1]), (std::vector<double>{1.23456789012345678901, -.5e-3}));
    std::vector<double> entries;
    for (const MtxEntry& entry : std::get<MtxEntries>(package.capacitance->rows[0].given))
        entries.insert(entries.end(), {static_cast<double>(entry.column()), entry.value()});
    EXPECT_EQ(entries, (std::vector<double>{2, 1.5e-12, 3, 2, 1, 1.234567890123456789}));
}

TEST(Matrix, memoryGoesByEntries) {
    Lines lines(KeywordCode::definePackageModel, IbisVersion::v3);
    start(lines, 4294967295U);
    for (const std::string_view type : {"[Resistance Matrix] Banded_matrix\n[Bandwidth] 4294967294",
                                        "[Inductance Matrix] Full_matrix", "[Capacitance Matrix] Sparse_matrix"}) {
        lines.read(type);
        lines.read("[Row] A\n" + std::string(type.find("Sparse") == type.npos ? "1 2 3" : "A 1\nZ 2") + "\n[Row] B");
    }
    const PkgMdl& package = *lines.root.package_models.newestFirst().begin();
    EXPECT_EQ(lines.codes(), "E3717@ E3116@ E3116@ E3717@ E3116@ E3116@");
    EXPECT_EQ(package.resistance->rows[1].column_count, 4294967294U);
    EXPECT_EQ(package.inductance->rows[1].column_count, 4294967294U);
    EXPECT_EQ(package.capacitance->rows[1].column_count, 4294967295U);
    EXPECT_EQ(package.resistance->rows[0].filled(), 3U);
    EXPECT_EQ(package.capacitance->rows[0].filled(), 2U);
    EXPECT_EQ(package.capacitance->taken_columns.row_of.capacity(), 0U);
    EXPECT_EQ(package.capacitance->row_counts, nullptr);
}

} // namespace
} // namespace kestrel
