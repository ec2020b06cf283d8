// Tables of models: which way their currents should go, their limits, and what is kept of them. What is reported of
// their lines and ends is in the cases.

#include "lines.hpp"
#include "model/crv.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using testing::ElementsAre;

std::string printedOfCurve(CurveKind kind, std::initializer_list<std::string_view> rows,
                           std::optional<ModelType> type) {
    TestRun test(true);
    CrvState state;
    Crv slot;
    openCrv(test.run, state, slot, kind, "");
    for (const std::string_view row : rows)
        crvLine(test.run, state, slot, kind, row);
    closeCrv(test.run, state, slot, kind, {type ? "Model" : "Submodel", "drv", type});
    return test.out.text();
}

TEST(Crv, directionGoesByKindAndType) {
    using enum ModelType;
    // Per type: r where the current has to rise, f where it has to fall, - where it may do either.
    const std::optional<ModelType> types[] = {input,     output,   terminator,    inputDiff, inputEcl,
                                              outputEcl, ioEcl,    threeStateEcl, series,    seriesSwitch,
                                              noType,    notGiven, std::nullopt};
    const struct {
        CurveKind kind;
        std::string label;
        std::string_view expected;
    } rows[] = {
        {CurveKind::pulldown, "Pulldown", "rrrrffffrr---"},
        {CurveKind::pullup, "Pullup", "ffffffffff---"},
        {CurveKind::gndClamp, "GND Clamp", "rrrrrrrrrr---"},
        {CurveKind::powerClamp, "POWER Clamp", "ffffffffff---"},
        {CurveKind::issoPd, "ISSO PD", "-------------"},
        {CurveKind::issoPu, "ISSO PU", "-------------"},
        {CurveKind::seriesCurrent, "Series Current", "ffffffff-----"},
        {CurveKind::seriesMosfet, "Series MOSFET", "ffffffffrr---"},
    };
    for (const auto& row : rows) {
        const std::string decreasing = "W1111 - Model drv: " + row.label + " has Decreasing Current\n";
        const std::string increasing = "W1112 - Model drv: " + row.label + " has Increasing Current\n";
        for (std::size_t i = 0; i < std::size(types); ++i) {
            const char expected = row.expected[i];
            EXPECT_EQ(printedOfCurve(row.kind, {"0 1 NA NA", "1 -1 NA NA"}, types[i]),
                      expected == 'r' ? decreasing : "")
                << row.label << i;
            EXPECT_EQ(printedOfCurve(row.kind, {"0 -1 NA NA", "1 1 NA NA"}, types[i]),
                      expected == 'f' ? increasing : "")
                << row.label << i;
        }
        EXPECT_EQ(printedOfCurve(row.kind, {"0 0 NA NA", "1 0 NA NA"}, input), "") << row.label;
    }
    EXPECT_EQ(printedOfCurve(CurveKind::gndClamp, {"0 2m NA NA", "1 1m NA NA"}, std::nullopt),
              "W1113 - Submodel drv: GND Clamp : Typical value never becomes zero\n");
}

/// A model read as far as its lines go, in a version.
struct ModelLines : Lines {
    explicit ModelLines(std::string_view lines, IbisVersion version = IbisVersion::v5)
        : Lines(KeywordCode::model, version) {
        read("[Model] m\nModel_type Series").read(lines);
    }
    [[nodiscard]] const Mdl& model() const { return *root.models.newestFirst().begin(); }
};

/// Rows at times or voltages from 0 on.
std::string rowsOf(int count) {
    std::string rows;
    for (int i = 0; i < count; ++i)
        rows += "\n" + std::to_string(i) + " 0 0 0";
    return rows;
}

TEST(Tables, haveLimitsByKindAndVersion) {
    using V = IbisVersion;
    using K = KeywordCode;
    const std::string model = "[Model] m\nModel_type Output\n";
    const std::string submodel = "[Submodel] s\nSubmodel_type Dynamic_clamp\n";
    const struct {
        K owner;
        V version;
        std::string opened;
        std::string printed; ///< for every row too many, behind the number of its line
    } rows[] = {
        {K::model, V::v2, model + "[Rising Waveform]", "More than 100 data points provided for Rising Waveform table"},
        {K::model, V::v3, model + "[Falling Waveform]",
         "More than 100 data points provided for Falling Waveform table"},
        {K::model, V::v4, model + "[Rising Waveform]", "More than 1000 data points provided for Rising Waveform table"},
        {K::model, V::v5, model + "[Falling Waveform]",
         "More than 1000 data points provided for Falling Waveform table"},
        {K::testData, V::v4, "[Test Data] d\n[Rising Waveform Far]",
         "More than 1000 data points provided for Rising Waveform Far table"},
        {K::submodel, V::v4, submodel + "[GND Pulse Table]",
         "More than 100 data points provided for GND Pulse Table table"},
        {K::submodel, V::v5, submodel + "[POWER Pulse Table]",
         "More than 100 data points provided for POWER Pulse Table table"},
    };
    for (const auto& row : rows) {
        const int limit = row.printed.find("1000") != std::string::npos ? 1000 : 100;
        EXPECT_EQ(Lines(row.owner, row.version).read(row.opened + rowsOf(limit)).codes(), "") << row.opened;
        Lines lines(row.owner, row.version);
        lines.run.diagnostics.sink = [&](const Finding& finding) {
            EXPECT_EQ(finding.text, row.printed);
            printFinding(lines.out, finding, TextForm::codes);
        };
        EXPECT_EQ(lines.read(row.opened + rowsOf(limit + 2)).codes(), "E2018@ E2018@") << row.opened;
    }
}

TEST(Tables, pastTheirLimitsAreKept) {
    ModelLines lines("[ISSO PD]" + rowsOf(150) + "\n[Rising Waveform]" + rowsOf(1002));
    EXPECT_THAT(lines.out.text(),
                testing::HasSubstr("E1107 (line  104) - More Than 100 Voltage Points Provided For ISSO PD\n"));
    EXPECT_EQ(lines.model().tables->isso_pd.rows.size(), 150U);
    EXPECT_EQ(lines.model().tables->rising_waveforms[0].rows.size(), 1002U);
    const std::pair<std::string, std::string> rows[] = {{"[Falling Waveform]", "E2000@ E2003@"},
                                                        {"[Series MOSFET]", "E2811@ E2801@"}};
    for (const auto& [keyword, codes] : rows) {
        for (int i = 0; i < 100; ++i)
            lines.read(keyword);
        EXPECT_EQ(lines.codes().find(codes.substr(0, 6)), std::string::npos);
        EXPECT_THAT(lines.read(keyword).codes(), testing::EndsWith(codes.substr(0, 6)));
        EXPECT_THAT(lines.read(keyword + " slow").codes(), testing::EndsWith(codes));
    }
    EXPECT_THAT(lines.out.text(), testing::HasSubstr(" - More than 100 Falling Waveforms are defined\n"));
    EXPECT_EQ(lines.model().tables->falling_waveforms.size(), 102U);
    EXPECT_EQ(lines.model().on_block->mosfets.size(), 102U);
}

TEST(Tables, keepTheirValues) {
    const ModelLines lines(
        "[Pulldown]\n2 1 NA NA\nNA 2 NA NA\n-1 3 NA NA\n2 4 NA NA\n[Pullup]\n0 5 NA NA\n[Pullup] or two\n"
        "4 1 NA NA\n3 2 NA NA\n[Ramp]\nR_load = -1k2 ohm\nR_load = 60\n"
        "[Rising Waveform]\nR_fixture = 50\nR_fixture = 60\nV_fixture=3.3V\nV_fixture_min = 3.0\nV_fixture_max = 3.6\n"
        "C_fixture = 10p\nL_fixture = 2n\nR_dut = 1m\nL_dut = 3n\nC_dut = 4p\n0 0 0 0\n  .5n 1 1 1\n.4n 2 2 2\nNA 3 3 3\nR_dut = 8\n");
    const MdlTables& tables = *lines.model().tables;
    std::vector<double> typical;
    for (const TableRow& row : sortedRows(tables.pulldown)) // the one without a voltage is left out
        typical.push_back(row[kTyp].value());
    EXPECT_THAT(typical, ElementsAre(3.0, 1.0, 4.0));
    ASSERT_EQ(tables.pullup.rows.size(), 2U); // of the second table, in file order
    EXPECT_EQ(tables.pullup.rows[0], (TableRow{{Cell(4.0), Cell(1.0), Cell::na(), Cell::na()}}));
    EXPECT_EQ(tables.ramp->r_load.value_or(0.0), -1000.0);
    const Wvfrm& w = tables.rising_waveforms.front();
    const GivenValue values[] = {w.r_fixture, w.v_fixture, w.v_fixture_min, w.v_fixture_max, w.c_fixture,
                                 w.l_fixture, w.r_dut,     w.l_dut,         w.c_dut};
    const double expected[] = {50, 3.3, 3.0, 3.6, 10e-12, 2e-9, 1e-3, 3e-9, 4e-12};
    for (std::size_t i = 0; i < std::size(values); ++i)
        EXPECT_DOUBLE_EQ(values[i].value_or(-1.0), expected[i]) << i;
    ASSERT_EQ(w.rows.size(), 4U); // those whose time is refused, too
    EXPECT_DOUBLE_EQ(w.rows[1][kFirst].value(), 0.5e-9);
}

} // namespace
} // namespace kestrel
