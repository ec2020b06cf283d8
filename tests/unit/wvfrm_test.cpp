// Waveforms: fixture lines, rows over time, and what is asked of them at their end, by the form of the table.

#include "model/wvfrm.hpp"

#include "table_run.hpp"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

constexpr WaveformLabel kGolden{"Rising Waveform Far", "Rising Waveform Far", WaveformForm::golden};

/// Reads the lines of a table whose keyword line is line 1.
struct Section : TableRun {
    Section(const WaveformLabel& used, std::string_view text, IbisVersion version = IbisVersion::v5) : label(used) {
        run.parse.version = version;
        ++run.parse.line;
        openSingleWvfrm(run, slot, label, "");
        lines(text, [&](std::string_view line) { wvfrmLine(run, *slot, label, line); });
    }
    std::string close() {
        closeWvfrm(run, *slot, label);
        return printed();
    }
    const WaveformLabel& label;
    std::unique_ptr<Wvfrm> slot;
};

TEST(Wvfrm, keepsFixtureAndRows) {
    Section section(kRisingWaveform,
                    "R_fixture = 50\nV_fixture=3.3V\nV_fixture_min = 3.0\nV_fixture_max = 3.6\n"
                    "C_fixture = 10p\nL_fixture = 2n\nR_dut = 1m\nL_dut = 3n\nC_dut = 4p\n"
                    "0 0 0 0\n  .5n 1 1 1\n+1n 2 2 2\n");
    EXPECT_EQ(section.close(), "");
    const Wvfrm& w = *section.slot;
    const std::optional<double> values[] = {w.r_fixture, w.v_fixture, w.v_fixture_min, w.v_fixture_max, w.c_fixture,
                                            w.l_fixture, w.r_dut,     w.l_dut,         w.c_dut};
    const double expected[] = {50, 3.3, 3.0, 3.6, 10e-12, 2e-9, 1e-3, 3e-9, 4e-12};
    for (std::size_t i = 0; i < std::size(values); ++i)
        EXPECT_DOUBLE_EQ(values[i].value_or(-1.0), expected[i]) << i;
    ASSERT_EQ(w.rows.size(), 3U);
    EXPECT_DOUBLE_EQ(w.rows[1].value[kFirst], 0.5e-9);
}

TEST(Wvfrm, fixtureFaults) {
    Section section(kFallingWaveform,
                    "R_fixture 50\n"
                    "R_fixture : 50\n"
                    "R_fixture = NA\n"
                    "R_fixture = 50 ohm\n"
                    "R_fixture = 60\n"
                    "V_fixture = 1m5\n"
                    "r_fixture = 50\n"
                    "0 0 0 0\n"
                    "R_dut = 7\n"
                    "R_dut = 8\n");
    EXPECT_EQ(section.printed(),
              "E2015 (line 2) - Invalid Falling Waveform line\n"
              "E2015 (line 3) - Invalid Falling Waveform line\n"
              "E2017 (line 4) - Invalid Falling Waveform Value (\"NA\")\n"
              "E2003 (line 5) - Incorrect Number of Line Items (4) For Falling Waveform: Expecting 3\n"
              "E2014 (line 6) - Duplicate definition for Falling Waveform R_fixture\n"
              "W2016 (line 7) - Suspicious Falling Waveform V_fixture Value (\"1m5\"); Numeric in Scale\n"
              "E2011 (line 8) - Unknown Line Among Falling Waveform Data\n"
              "E2013 (line 10) - R_dut specified after beginning of timing data\n"
              "E2013 (line 11) - R_dut specified after beginning of timing data\n"
              "E2014 (line 11) - Duplicate definition for Falling Waveform R_dut\n");
    EXPECT_EQ(section.slot->r_fixture, 50.0);
    EXPECT_EQ(section.slot->v_fixture, 1e-3);
    EXPECT_EQ(section.slot->r_dut, 7.0);
}

TEST(Wvfrm, timeHasToIncrease) {
    Section section(kGndPulse,
                    "1/2 0 0 0\n"
                    "=\n"
                    "0 0 0 0\n"
                    "1n 0 0 0\n"
                    "1n 0 0\n"
                    "na 0 0 0\n"
                    "-5n 0 0 0\n"
                    "-6n3 0 0 0\n");
    EXPECT_EQ(section.printed(),
              "E2011 (line 2) - Unknown Line Among GND Pulse Table Data\n"
              "E2011 (line 3) - Unknown Line Among GND Pulse Table Data\n"
              "E1401 (line 6) - No maximum Value Was Provided for GND Pulse Table\n"
              "E2020 (line 6) - Time value did not increase\n"
              "E2019 (line 7) - 'NA' not allowed for Time value\n"
              "W1910 (line 9) - Suspicious Time GND Pulse Table Value (\"-6n3\"); Numeric in Scale\n"
              "E2020 (line 9) - Time value did not increase\n");
    EXPECT_EQ(section.slot->rows.size(), 6U);
}

TEST(Wvfrm, rowLimitGoesByVersionAndForm) {
    const struct {
        const WaveformLabel& label;
        IbisVersion version;
        int limit;
    } rows[] = {
        {kRisingWaveform, IbisVersion::v2, 100},  {kFallingWaveform, IbisVersion::v3, 100},
        {kRisingWaveform, IbisVersion::v4, 1000}, {kFallingWaveform, IbisVersion::v5, 1000},
        {kGolden, IbisVersion::v4, 1000},         {kGndPulse, IbisVersion::v4, 100},
        {kPowerPulse, IbisVersion::v5, 100},
    };
    for (const auto& row : rows) {
        std::string text;
        for (int i = 0; i < row.limit + 1; ++i)
            text += std::to_string(i) + " 0 0 0\n";
        text += "0 0 0 0\n";
        const std::string limit = std::to_string(row.limit);
        const std::string message =
            ") - More than " + limit + " data points provided for " + std::string(row.label.rows) + " table\n";
        const std::string first = std::to_string(row.limit + 2);
        const std::string second = std::to_string(row.limit + 3);
        Section section(row.label, text, row.version);
        EXPECT_EQ(section.printed(), "E2018 (line " + first + message + "E2018 (line " + second + message +
                                         "E2020 (line " + second + ") - Time value did not increase\n");
        EXPECT_EQ(section.slot->rows.size(), static_cast<std::size_t>(row.limit) + 2);
    }
}

TEST(Wvfrm, endOfATable) {
    const struct {
        const char* what;
        const WaveformLabel& label;
        const char* lines;
        const char* printed;
    } rows[] = {
        {"a model's waveform needs two fixture values and two rows", kRisingWaveform, "",
         "E2004 - R_fixture Not Defined For Rising Waveform Waveform Beginning on Line 1\n"
         "E2004 - V_fixture Not Defined For Rising Waveform Waveform Beginning on Line 1\n"
         "E2005 - Require at least 2 Data Points for Rising Waveform Waveform Beginning at Line 1\n"},
        {"values at both ends", kFallingWaveform, "V_fixture = 0\n0 NA NA 1\n1 0 NA 1\n2 NA NA NA",
         "E2004 - R_fixture Not Defined For Falling Waveform Waveform Beginning on Line 1\n"
         "E2006 - First Typical Value Cannot Be 'NA' for Falling Waveform Waveform Beginning at Line 1\n"
         "E2006 - Last Typical Value Cannot Be 'NA' for Falling Waveform Waveform Beginning at Line 1\n"
         "E2006 - Last Maximum Value Cannot Be 'NA' for Falling Waveform Waveform Beginning at Line 1\n"},
        {"no fixture of a golden waveform", kGolden, "R_fixture = 50\n0 1 NA NA",
         "E2010 (line 2) - SubParameters are not allowed in Golden Waveforms\n"
         "E2329 - Require at least 2 Data Points for Rising Waveform Far Beginning at Line 1\n"},
        {"ends of a golden waveform", kGolden, "0 NA NA 1\n1 1 NA NA",
         "E2330 - First Typical Value Cannot Be 'NA' for Rising Waveform Far Beginning at Line 1\n"
         "E2330 - Last Maximum Value Cannot Be 'NA' for Rising Waveform Far Beginning at Line 1\n"},
        {"no fixture of a current", kCompositeCurrent, "C_dut = 1p\n0 1 NA NA",
         "E1704 (line 2) - C_dut is not allowed in Composite Current\n"
         "E1705 - Require at least 2 Data Points for Composite Current Beginning at Line 1\n"},
        {"a pulse may stay at zero", kGndPulse, "0 0 NA NA\n1 0.5 NA NA\n2 0 NA NA", ""},
        {"a pulse ends where it began, numbers compared only", kGndPulse, "0 0 2 0\n1 0.5 1 1\n2 0.1 NA 0.2",
         "E2006 - Last Minimum Value Cannot Be 'NA' for GND Pulse Waveform Beginning at Line 1\n"
         "E2007 - First Typical Value should be the same as the Last for GND Pulse Waveform Beginning at Line 1\n"
         "E2007 - First Maximum Value should be the same as the Last for GND Pulse Waveform Beginning at Line 1\n"},
        {"a ground pulse goes up", kGndPulse, "0 -1 0 0\n1 -1 -2 1\n2 -1 0 0",
         "W2008 - Found some GND Pulse (Typical) offsets less than 0 for Table Beginning at Line 1\n"
         "W2008 - Found some GND Pulse (Minimum) offsets less than 0 for Table Beginning at Line 1\n"},
        {"a power pulse goes down", kPowerPulse, "0 0 0 0\n1 -1 0 1\n2 0 0 0",
         "W2009 - Found some POWER Pulse (Maximum) offsets greater than 0 for Table Beginning at Line 1\n"},
        {"one row", kPowerPulse, "0 1 NA NA",
         "E2005 - Require at least 2 Data Points for POWER Pulse Waveform Beginning at Line 1\n"
         "W2009 - Found some POWER Pulse (Typical) offsets greater than 0 for Table Beginning at Line 1\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Section(row.label, row.lines).close(), row.printed) << row.what;
}

TEST(Wvfrm, waveformsPastTheHundredthAreKept) {
    TableRun table;
    std::vector<std::unique_ptr<Wvfrm>> list;
    for (int i = 0; i < 102; ++i) {
        ++table.run.parse.line;
        const Wvfrm& opened = openWvfrm(table.run, list, kRisingWaveform, i == 101 ? "slow" : "");
        EXPECT_EQ(&opened, list.back().get());
    }
    EXPECT_EQ(list.size(), 102U);
    EXPECT_EQ(table.printed(),
              "E2000 (line 101) - More than 100 Rising Waveforms are defined\n"
              "E2000 (line 102) - More than 100 Rising Waveforms are defined\n"
              "E2003 (line 102) - Incorrect Number of Line Items (2) For Rising Waveform: Expecting 1\n");
}

} // namespace
} // namespace kestrel
