// I-V tables: what their rows and their end report, and which direction their current should take.

#include "model/crv.hpp"

#include "model/smos.hpp"
#include "table_run.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

constexpr auto kModel = ModelType::io;

/// Reads a whole table: the keyword line with `text` behind it is line 1, the rows follow.
struct Table : TableRun {
    void read(CurveKind kind, std::string_view text, std::string_view rows) {
        ++run.parse.line;
        openCrv(run, state, slot, kind, text);
        lines(rows, [&](std::string_view line) { crvLine(run, state, *slot, kind, line); });
    }
    CrvState state;
    std::optional<Crv> slot;
};

std::string messages(CurveKind kind, std::string_view rows, std::optional<ModelType> type = kModel,
                     std::string_view owner = "Model") {
    Table table;
    table.read(kind, "", rows);
    closeCrv(table.run, table.state, *table.slot, kind, {owner, "drv", type});
    return table.printed();
}

struct Row {
    const char* what;
    CurveKind kind;
    const char* rows;
    const char* printed;
};

void expectMessages(std::span<const Row> rows) {
    for (const Row& row : rows)
        EXPECT_EQ(messages(row.kind, row.rows), row.printed) << row.what;
}

TEST(Crv, rowsAreFollowedColumnByColumn) {
    const Row rows[] = {
        {"equal values pass", CurveKind::pulldown, "0 0 0 0\n1 0 1 1\n1 1 1 2\n2 1 2 2", ""},
        {"one note per column, in column order", CurveKind::pulldown,
         "0 1 1 1\n1 2 0 2\n0.5 1 1 1\n2 5 -5 5\n1 4 9 4\n3 6 6 6",
         "N1110 (line 4) - Pulldown Voltage data is non-monotonic\n"
         "N1110 (line 4) - Pulldown Typical data is non-monotonic\n"
         "N1110 (line 4) - Pulldown Minimum data is non-monotonic\n"
         "N1110 (line 4) - Pulldown Maximum data is non-monotonic\n"},
        {"cells without a number are passed over", CurveKind::pulldown, "0 1 9 1\n1 2 NA x\n2 3 7 4\n3 4 8 5",
         "E1909 (line 3) - Invalid Maximum Value (\"x\")\n"
         "N1110 (line 5) - Pulldown Minimum data is non-monotonic\n"},
        {"row reader, notes, voltage", CurveKind::pulldown, "0 0 0 0\n1 2 2 2\nNA 1 3",
         "E1401 (line 4) - No maximum Value Was Provided for Pulldown\n"
         "N1110 (line 4) - Pulldown Typical data is non-monotonic\n"
         "E1106 (line 4) - Voltage Value Cannot Be 'NA'\n"},
    };
    expectMessages(rows);
}

TEST(Crv, endRowsNeedCurrents) {
    const Row rows[] = {
        {"no row", CurveKind::gndClamp, "",
         "E1108 - Require at least 2 Voltage Points for GND Clamp Beginning at Line 1\n"},
        {"one row is tested for zero, but not for NA", CurveKind::gndClamp, "0 1m NA NA",
         "E1108 - Require at least 2 Voltage Points for GND Clamp Beginning at Line 1\n"
         "W1113 - Model drv: GND Clamp : Typical value never becomes zero\n"},
        {"first row, then last", CurveKind::gndClamp, "0 NA NA 1\n1 1 1 1\n2 NA NA NA",
         "E1109 - First Typical Value Cannot Be 'NA' for GND Clamp Beginning at Line 1\n"
         "E1109 - First Minimum Value Cannot Be 'NA' for GND Clamp Beginning at Line 1\n"
         "E1109 - Last Typical Value Cannot Be 'NA' for GND Clamp Beginning at Line 1\n"
         "E1109 - Last Minimum Value Cannot Be 'NA' for GND Clamp Beginning at Line 1\n"
         "E1109 - Last Maximum Value Cannot Be 'NA' for GND Clamp Beginning at Line 1\n"},
        {"a typical current has to be there even if no row gives one", CurveKind::pulldown, "0 NA 0 0\n1 NA 1 1",
         "E1109 - First Typical Value Cannot Be 'NA' for Pulldown Beginning at Line 1\n"
         "E1109 - Last Typical Value Cannot Be 'NA' for Pulldown Beginning at Line 1\n"},
        {"a corner that no row gives may be NA", CurveKind::pulldown, "0 0 NA NA\n1 1 NA NA", ""},
        {"a missing cell is no NA", CurveKind::pulldown, "0 0 1 1\n1 1",
         "E1401 (line 3) - No minimum Value Was Provided for Pulldown\n"
         "E1401 (line 3) - No maximum Value Was Provided for Pulldown\n"},
    };
    expectMessages(rows);
}

TEST(Crv, directionGoesByKindAndType) {
    using enum ModelType;
    // Per type: r where the current has to rise, f where it has to fall, - where it may do either.
    const std::optional<ModelType> types[] = {input,     output,   terminator,    inputDiff, inputEcl,
                                              outputEcl, ioEcl,    threeStateEcl, series,    seriesSwitch,
                                              noType,    notGiven, std::nullopt};
    const struct {
        CurveKind kind;
        const char* label;
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
        const std::string decreasing = std::string("W1111 - Model drv: ") + row.label + " has Decreasing Current\n";
        const std::string increasing = std::string("W1112 - Model drv: ") + row.label + " has Increasing Current\n";
        for (std::size_t i = 0; i < std::size(types); ++i) {
            const char expected = row.expected[i];
            EXPECT_EQ(messages(row.kind, "0 1 NA NA\n1 -1 NA NA", types[i]), expected == 'r' ? decreasing : "")
                << row.label << i;
            EXPECT_EQ(messages(row.kind, "0 -1 NA NA\n1 1 NA NA", types[i]), expected == 'f' ? increasing : "")
                << row.label << i;
        }
        EXPECT_EQ(messages(row.kind, "0 0 NA NA\n1 0 NA NA"), "") << row.label;
    }
}

TEST(Crv, directionComparesTheOutermostVoltages) {
    const Row rows[] = {
        {"file order does not matter", CurveKind::pulldown, "1 0 NA NA\n0 1 NA NA",
         "W1111 - Model drv: Pulldown has Decreasing Current\n"},
        {"NA at the lowest voltage gives way to the next current there", CurveKind::pulldown,
         "0.5 6 NA NA\n0 NA NA NA\n0 5 NA NA\n1 4 NA NA",
         "N1110 (line 5) - Pulldown Voltage data is non-monotonic\nW1111 - Model drv: Pulldown has Decreasing Current\n"},
        {"NA at the highest voltage as well", CurveKind::pulldown, "0.5 6 NA NA\n1 NA NA NA\n1 5 NA NA\n0 7 NA NA",
         "N1110 (line 5) - Pulldown Voltage data is non-monotonic\n"
         "N1110 (line 5) - Pulldown Typical data is non-monotonic\n"
         "W1111 - Model drv: Pulldown has Decreasing Current\n"},
        {"a number there stays", CurveKind::pulldown, "0 3 NA NA\n0 5 NA NA\n1 4 NA NA",
         "N1110 (line 4) - Pulldown Typical data is non-monotonic\n"},
        {"a missing one stays, and without numbers nothing is compared", CurveKind::pulldown,
         "0.5 4 NA NA\n0\n0 6 NA NA\n0.2 7 NA NA",
         "E1401 (line 3) - No typical Value Was Provided for Pulldown\n"
         "E1401 (line 3) - No minimum Value Was Provided for Pulldown\n"
         "E1401 (line 3) - No maximum Value Was Provided for Pulldown\n"
         "N1110 (line 5) - Pulldown Voltage data is non-monotonic\n"},
        {"NA in an end row, although the outermost voltages have currents", CurveKind::pulldown,
         "0 5 NA NA\n1 4 NA NA\n0.5 NA NA NA",
         "N1110 (line 4) - Pulldown Voltage data is non-monotonic\n"
         "E1109 - Last Typical Value Cannot Be 'NA' for Pulldown Beginning at Line 1\n"},
    };
    expectMessages(rows);
}

TEST(Crv, clampCurrentsPassThroughZero) {
    const Row rows[] = {
        {"all above, all below", CurveKind::gndClamp, "0 1m -5m 1m\n1 5m -1m 2m",
         "W1113 - Model drv: GND Clamp : Typical value never becomes zero\n"
         "W1114 - Model drv: GND Clamp : Minimum value never becomes zero\n"
         "W1115 - Model drv: GND Clamp : Maximum value never becomes zero\n"},
        {"a microampere is zero, whatever its sign", CurveKind::gndClamp, "0 1u -5m -1m\n1 5m -1u -1.01u",
         "W1115 - Model drv: GND Clamp : Maximum value never becomes zero\n"},
        {"both sides", CurveKind::powerClamp, "0 1m 1m 1m\n1 -1m -1m -1m", ""},
        {"NA in the first or the last row", CurveKind::powerClamp, "0 2m NA 2m\n1 1.5m 1m 2m\n2 1m 1m NA",
         "E1109 - First Minimum Value Cannot Be 'NA' for POWER Clamp Beginning at Line 1\n"
         "E1109 - Last Maximum Value Cannot Be 'NA' for POWER Clamp Beginning at Line 1\n"
         "W1113 - Model drv: POWER Clamp : Typical value never becomes zero\n"},
        {"other tables need not", CurveKind::pulldown, "0 1m 1m 1m\n1 5m 5m 5m", ""},
    };
    expectMessages(rows);
    EXPECT_EQ(messages(CurveKind::gndClamp, "0 2m NA NA\n1 1m NA NA", std::nullopt, "Submodel"),
              "W1113 - Submodel drv: GND Clamp : Typical value never becomes zero\n");
}

TEST(Crv, tooManyRowsAreToldOnceAndKept) {
    std::string rows;
    for (int i = 0; i < 150; ++i)
        rows += std::to_string(i) + " 1 1 1\n";
    Table table;
    table.read(CurveKind::issoPd, "", rows);
    EXPECT_EQ(table.printed(), "E1107 (line 102) - More Than 100 Voltage Points Provided For ISSO PD\n");
    EXPECT_EQ(table.slot->rows.size(), 150U);
}

TEST(Crv, aSecondTableReplacesTheFirst) {
    Table table;
    table.read(CurveKind::pullup, "", "0 5 NA NA\n9 4 NA NA\n1 3 NA NA");
    table.read(CurveKind::pullup, "or two", "4 1 NA NA\n3 2 NA NA");
    closeCrv(table.run, table.state, *table.slot, CurveKind::pullup, {"Model", "drv", kModel});
    EXPECT_EQ(table.printed(),
              "N1110 (line 4) - Pullup Voltage data is non-monotonic\n"
              "E1100 (line 5) - Pullup Already Defined\n"
              "E1104 (line 5) - Incorrect Number of Line Items (3) For Pullup: Expecting 1\n");
    ASSERT_EQ(table.slot->rows.size(), 2U);
    EXPECT_EQ(table.slot->rows[0].value, (std::array{4.0, 1.0, 0.0, 0.0}));
}

TEST(Crv, sortedRowsLeaveOutRowsWithoutVoltage) {
    Table table;
    table.read(CurveKind::pulldown, "", "2 1 NA NA\nNA 2 NA NA\n-1 3 NA NA\n2 4 NA NA");
    std::vector<double> typical;
    for (const TableRow& row : sortedRows(*table.slot))
        typical.push_back(row.value[kTyp]);
    EXPECT_EQ(typical, (std::vector{3.0, 1.0, 4.0}));
}

TEST(SMos, tablesPastTheHundredthAreKept) {
    TableRun table;
    CrvState state;
    std::vector<SMos> list;
    for (int i = 0; i < 102; ++i) {
        ++table.run.parse.line;
        openSMos(table.run, state, list, i == 101 ? "one" : "");
    }
    EXPECT_EQ(list.size(), 102U);
    EXPECT_EQ(list.back().table.line, 102U);
    EXPECT_EQ(table.printed(),
              "E2811 (line 101) - More than 100 Series MOSFET tables are defined\n"
              "E2811 (line 102) - More than 100 Series MOSFET tables are defined\n"
              "E2801 (line 102) - Incorrect Number of Line Items (2) For Series MOSFET: Expecting 1\n");
}

} // namespace
} // namespace kestrel
