// Ramps: their edge rates cell by cell, and the load line.

#include "model/ramp.hpp"

#include "table_run.hpp"

#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// Reads the lines of a ramp whose keyword line is line 1.
struct Section : TableRun {
    explicit Section(std::string_view text) {
        ++run.parse.line;
        openRamp(run, slot, "");
        lines(text, [&](std::string_view line) { rampLine(run, *slot, line, "drv"); });
    }
    std::optional<Ramp> slot;
};

TEST(Ramp, keepsRatesAndLoad) {
    Section section("dV/dt_r 1.5/1n 1.2/2n 1.8/0.5n\n  dV/dt_f\t 2.5V/1.5ns na NA\nR_load=1k");
    closeRamp(section.run, *section.slot);
    EXPECT_EQ(section.printed(), "");
    const Ramp& ramp = *section.slot;
    EXPECT_DOUBLE_EQ(ramp.dv_dt_r->max().dv, 1.8);
    EXPECT_DOUBLE_EQ(ramp.dv_dt_r->max().dt, 0.5e-9);
    EXPECT_DOUBLE_EQ(ramp.dv_dt_f->typ().dv, 2.5);
    EXPECT_DOUBLE_EQ(ramp.dv_dt_f->typ().dt, 1.5e-9);
    EXPECT_EQ(ramp.dv_dt_f->min().state, CellState::na);
    EXPECT_EQ(ramp.r_load, 1000.0);
}

constexpr std::string_view kStep = "E1310 (line 2) - dV must be greater than 0 in a Ramp specification\n";
constexpr std::string_view kTime = "E1310 (line 2) - dT must be greater than 0 in a Ramp specification\n";

TEST(Ramp, ratesAreReadCellByCell) {
    const std::string zero = std::string(kStep) + std::string(kTime);
    const struct {
        const char* line;
        std::string printed;
    } rows[] = {
        {"dV/dt_r", zero + zero},
        {"dV/dt_r 1/1n",
         "E1308 (line 2) - No minimum Value Was Provided for dV/dt_r\n"
         "E1308 (line 2) - No maximum Value Was Provided for dV/dt_r\n" +
             zero + zero},
        {"dV/dt_f 1/1n NA", "E1308 (line 2) - No maximum Value Was Provided for dV/dt_f\n" + zero},
        {"dV/dt_r 1/1n 1/1n 1/1n x", "E1304 (line 2) - Incorrect Number of Line Items (4) For dV/dt_r: Expecting 3\n"},
        {"dV/dt_r 1.5 / 1n",
         "E1312 (line 2) - Invalid dV/dt_r Typical Value (\"1.5\")\n"
         "E1312 (line 2) - Invalid dV/dt_r Minimum Value (\"/\")\n"
         "E1312 (line 2) - Invalid dV/dt_r Maximum Value (\"1n\")\n" +
             zero + zero},
        {"dV/dt_r 1/NA 1/1n 1/1n", "E1312 (line 2) - Invalid dV/dt_r Typical Value (\"1/NA\")\n"},
        {"dV/dt_r 1/1n 1/1n/1n NA/NA",
         "E1312 (line 2) - Invalid dV/dt_r Minimum Value (\"1/1n/1n\")\n"
         "E1312 (line 2) - Invalid dV/dt_r Maximum Value (\"NA/NA\")\n" +
             zero + zero},
        {"dV/dt_f NA 1/1n 2/2n", "E1309 (line 2) - 'NA' not allowed for dV/dt_f Typical value\n"},
        {"dV/dt_f NA NA -2/0", "E1309 (line 2) - 'NA' not allowed for dV/dt_f Typical value\n" + zero},
        {"dV/dt_r 0/1n 1/-1n NA", std::string(kStep) + std::string(kTime)},
        {"dV/dt_r 1/1n5 1m2/1n 1k3/?",
         "W1311 (line 2) - Suspicious Typical dV/dt_r Value (\"1n5\"); Numeric in Scale\n"
         "W1311 (line 2) - Suspicious Minimum dV/dt_r Value (\"1m2\"); Numeric in Scale\n"
         "W1311 (line 2) - Suspicious Maximum dV/dt_r Value (\"1k3\"); Numeric in Scale\n"
         "E1312 (line 2) - Invalid dV/dt_r Maximum Value (\"1k3/?\")\n" +
             zero},
        {"dv/dt_r 1/1n NA NA", "E1305 (line 2) - Unknown Line Among Ramp Data\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Section(row.line).printed(), row.printed) << row.line;
}

TEST(Ramp, aLoadIsGivenOnceItsNumberReads) {
    Section section(
        "R_load 50\n"
        "R_load : 50\n"
        "R_load = 50/1\n"
        "R_load = -1k2 ohm\n"
        "R_load = 60");
    EXPECT_EQ(section.printed(),
              "E1313 (line 2) - Invalid Ramp R_load Line\n"
              "E1313 (line 3) - Invalid Ramp R_load Line\n"
              "E1314 (line 4) - Invalid R_load Value (\"50/1\")\n"
              "E1304 (line 5) - Incorrect Number of Line Items (4) For R_load: Expecting 3\n"
              "W1311 (line 5) - Suspicious Ramp R_load Value (\"-1k2\"); Numeric in Scale\n"
              "E1307 (line 6) - R_load Already Defined For Model 'drv'\n");
    EXPECT_EQ(section.slot->r_load, -1000.0);
}

TEST(Ramp, ratesAreGivenByTheirLine) {
    Section section("dV/dt_f NA NA NA\ndV/dt_f 1/1n NA NA\nR_load = 50");
    openRamp(section.run, section.slot, "fast");
    closeRamp(section.run, *section.slot);
    EXPECT_EQ(section.printed(),
              "E1309 (line 2) - 'NA' not allowed for dV/dt_f Typical value\n"
              "E1307 (line 3) - dV/dt_f Already Defined For Model 'drv'\n"
              "E1300 (line 4) - Ramp Already Defined\n"
              "E1304 (line 4) - Incorrect Number of Line Items (2) For Ramp: Expecting 1\n"
              "E1306 - dV/dt_r Not Defined For Ramp Beginning on Line 4\n"
              "E1306 - dV/dt_f Not Defined For Ramp Beginning on Line 4\n");
    EXPECT_FALSE(section.slot->r_load);
}

} // namespace
} // namespace kestrel
