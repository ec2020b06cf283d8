// What is told of two files that differ. Every expectation is worked out by hand from the two texts.

#include "compare/compare.hpp"

#include "compare/curve.hpp"
#include "compare/output.hpp"
#include "files.hpp"

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Two texts as files of one name, compared.
struct Compared {
    Compared(std::string_view old_text, std::string_view new_text, const CompareSettings& settings = {},
             const std::string& name = "a.ibs") {
        was.add(name, old_text, "5.1").check(name);
        is.add(name, new_text, "5.1").check(name);
        changes = compareFiles({was.root(), was.run.diagnostics.file}, {is.root(), is.run.diagnostics.file}, settings);
    }

    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (const ChangeGroup* const group : changes.groups)
            lines.push_back(lineOf(*group, 20));
        return lines;
    }
    [[nodiscard]] std::string summary() const { return summaryOf(changes); }

    Files was;
    Files is;
    FileChanges changes;
};

std::vector<std::string> linesOf(std::string_view was, std::string_view is, const CompareSettings& settings = {}) {
    return Compared(was, is, settings).lines();
}

std::string model(std::string_view name, std::string_view lines, std::string_view type = "Output") {
    return std::string("[Model] ").append(name).append("\nModel_type ").append(type).append("\n").append(lines) + "\n";
}

constexpr CompareSettings kExact{.tolerance = 0.0};

TEST(Compare, tellsOfNumbersByTheLargerOfBoth) {
    const auto lines = [](std::string_view was, std::string_view is) {
        return linesOf(model("m", was), model("m", is));
    };
    EXPECT_THAT(lines("C_comp 5p 4p 6p", "C_comp 4p 4p 6p"),
                ElementsAre("Model m: C_comp typ: 4 pF, was 5 pF (-20 %)"));
    // 1 of 101 is less than one per cent, 2 of 102 is more.
    EXPECT_THAT(lines("Rref = 100\nVmeas = 1", "Rref = 101\nVmeas = 1"), IsEmpty());
    EXPECT_THAT(lines("Rref = 100", "Rref = 102"), ElementsAre("Model m: Rref: 102 ohm, was 100 ohm (+2 %)"));
    EXPECT_THAT(lines("Vref = 1", "Vref = -1"), ElementsAre("Model m: Vref: -1 V, was 1 V (-200 %)"));
    EXPECT_THAT(lines("Vref = 0", "Vref = 2"), ElementsAre("Model m: Vref: 2 V, was 0 V"));
    EXPECT_THAT(lines("Vmeas = 1.5V", "Cref = 0"),
                ElementsAre("Model m: Vmeas: not given, was 1.5 V", "Model m: Cref: 0 F, was not given"));
    EXPECT_THAT(lines("C_comp 5p NA NA", "C_comp 5p"), IsEmpty());
    EXPECT_THAT(lines("[Voltage Range] 3.3 3 3.6", "[Voltage Range] 5 5 5"),
                ElementsAre("Model m: [Voltage Range] typ: 5 V, was 3.3 V (+51.5 %); min: 5 V, was 3 V (+66.7 %); "
                            "max: 5 V, was 3.6 V (+38.9 %)"));
    EXPECT_THAT(lines("[Rgnd] 50 50 50", "[Rgnd] 100 100 100"),
                ElementsAre("Model m: [Rgnd] typ, min and max: 100 ohm, was 50 ohm (+100 %)"));
    EXPECT_THAT(lines("[Temperature Range] 25 85 0", "[Temperature Range] 25 100 0"),
                ElementsAre("Model m: [Temperature Range] min: 100 C, was 85 C (+15 C)"));
    EXPECT_THAT(
        lines("Polarity Inverting", "Enable Active-Low"),
        ElementsAre("Model m: Polarity: not given, was Inverting", "Model m: Enable: Active-Low, was not given"));
}

TEST(Compare, smallChangesCountOnlyWhenAskedFor) {
    const std::string was = model("m", "Vmeas = 3.3V\nRref = 3k");
    const std::string is = model("m", "Vmeas = 3300mV\nRref = 3001");
    EXPECT_THAT(linesOf(was, is), IsEmpty());
    EXPECT_THAT(linesOf(was, is, kExact), ElementsAre("Model m: Rref: 3.001 kohm, was 3 kohm (+0.0333 %)"));
    EXPECT_THAT(linesOf(model("m", "Rref = 100"), model("m", "Rref = 130"), {.tolerance = 25}), IsEmpty());
}

TEST(Compare, tablesAreComparedOverWhatBothHave) {
    const auto lines = [](std::string_view was, std::string_view is, const CompareSettings& settings = {}) {
        return linesOf(model("m", std::string("[Pulldown]\n").append(was)),
                       model("m", std::string("[Pulldown]\n").append(is)), settings);
    };
    constexpr std::string_view kLine = "0 0 0 0\n1 20m 18m 22m\n2 40m 36m 44m";
    // The same line with other rows, and the other way round.
    EXPECT_THAT(lines(kLine, "2 40m 36m 44m\n1.5 30m 27m 33m\n0.5 10m 9m 11m\n0 0 0 0", kExact), IsEmpty());
    // 42.48 mA of 40 mA.
    EXPECT_THAT(lines(kLine, "0 0 0 0\n2 42.48m 36m 44m"),
                ElementsAre("Model m: [Pulldown] typ: up to 6.2 % more current (at 2 V: 42.5 mA, was 40 mA)"));
    // Both end at 2 V; of what comes behind only the end is told, once for all corners.
    EXPECT_THAT(lines(kLine, "0 0 0 0\n2 40m 36m 44m\n3 90m 90m 90m"),
                ElementsAre("Model m: [Pulldown] typ, min and max: covers 0 V to 3 V, was 0 V to 2 V"));
    EXPECT_EQ(
        Compared(model("m", "[Pulldown]\n0 0 NA NA\n2 40m NA NA"), model("m", "[Pulldown]\n0 0 NA NA\n3 60m NA NA"))
            .summary(),
        "1 model changed; largest change 50 % in what is covered by m [Pulldown]");
    EXPECT_THAT(
        lines("0 0 0 0\n1 20m NA NA", "0 0 0 0\n1 -20m NA NA"),
        ElementsAre("Model m: [Pulldown] typ: current the other way, by up to 200 % (at 1 V: -20 mA, was 20 mA)"));
    EXPECT_THAT(lines(kLine, "0 0 NA 0\n1 20m NA 22m\n2 40m NA 44m"),
                ElementsAre("Model m: [Pulldown] min: not given, was 3 rows"));
    // 9 uA of 100 uA are nothing, 11 uA are something.
    EXPECT_THAT(lines("0 0 NA NA\n1 100u NA NA", "0 0 NA NA\n1 109u NA NA"), IsEmpty());
    EXPECT_THAT(lines("0 0 NA NA\n1 100u NA NA", "0 0 NA NA\n1 109u NA NA", kExact),
                ElementsAre("Model m: [Pulldown] typ: up to 9 % more current (at 1 V: 109 uA, was 100 uA)"));
    EXPECT_THAT(lines("0 0 NA NA\n1 100u NA NA", "0 0 NA NA\n1 89u NA NA"),
                ElementsAre("Model m: [Pulldown] typ: up to 11 % less current (at 1 V: 89 uA, was 100 uA)"));
    // Of a table of 9 uA a tenth is nothing, of one that only leaks, 1 nA.
    EXPECT_THAT(lines("0 0 NA NA\n1 9u NA NA", "0 0 NA NA\n1 8.2u NA NA"), IsEmpty());
    EXPECT_THAT(lines("0 0 NA NA\n1 9u NA NA", "0 0 NA NA\n1 0.9u NA NA"),
                ElementsAre("Model m: [Pulldown] typ: up to 90 % less current (at 1 V: 900 nA, was 9 uA)"));
    EXPECT_THAT(lines("0 0 NA NA\n1 1p NA NA", "0 0 NA NA\n1 0.9n NA NA"), IsEmpty());
}

TEST(Compare, rowsBetweenThoseOfAKneeAreNoChange) {
    // A clamp that grows tenfold from row to row, with and without a row between; the line there is at 55 mA.
    const std::string was = model("m", "[GND Clamp]\n-3 -1 NA NA\n-2 -0.1 NA NA\n-1 -0.01 NA NA\n0 0 NA NA");
    const std::string is =
        model("m", "[GND Clamp]\n-3 -1 NA NA\n-2 -0.1 NA NA\n-1.5 -0.0316 NA NA\n-1 -0.01 NA NA\n0 0 NA NA");
    EXPECT_THAT(linesOf(was, is), IsEmpty());
    EXPECT_THAT(linesOf(was, is, kExact),
                ElementsAre("Model m: [GND Clamp] typ: up to 2.34 % less current (at -1.5 V: -31.6 mA, was -55 mA)"));
    // At a row that both have there is nothing to doubt.
    const std::string other = model("m", "[GND Clamp]\n-3 -1 NA NA\n-2 -0.07 NA NA\n-1 -0.01 NA NA\n0 0 NA NA");
    EXPECT_THAT(linesOf(was, other),
                ElementsAre("Model m: [GND Clamp] typ: up to 3 % less current (at -2 V: -70 mA, was -100 mA)"));
}

std::string wave(std::string_view rows, std::string_view fixture = "R_fixture = 50\nV_fixture = 0") {
    return std::string("[Rising Waveform]\n").append(fixture).append("\n").append(rows).append("\n");
}

TEST(Compare, shiftsOfWaveformsAreToldApart) {
    const std::string was = wave("0 0 0 NA\n1n 0 0 NA\n2n 2 1.5 NA\n5n 2 1.5 NA");
    EXPECT_THAT(linesOf(model("m", was), model("m", wave("0 0 0 NA\n1.5n 0 0 NA\n2.5n 2 1.5 NA\n5n 2 1.5 NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ and min: 500 ps later"));
    // All of the table is moved: what it covers moves with it.
    EXPECT_THAT(linesOf(model("m", was), model("m", wave("-0.5n 0 0 NA\n0.5n 0 0 NA\n1.5n 2 1.5 NA\n4.5n 2 1.5 NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ and min: 500 ps earlier"));
    // It comes later and ends higher, at 2.1 V and at 3 V instead of 2 V.
    EXPECT_THAT(linesOf(model("m", was), model("m", wave("0 0 0 NA\n1.5n 0 0 NA\n2.5n 2.1 1.5 NA\n5n 2.1 1.5 NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ and min: 500 ps later; typ: then up to "
                            "5 % higher (at 2 ns: 2.1 V, was 2 V)"));
    EXPECT_THAT(linesOf(model("m", was), model("m", wave("0 0 0 NA\n2n 0 0 NA\n3n 3 1.5 NA\n5n 3 1.5 NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ and min: 1 ns later; typ: then up to "
                            "50 % higher (at 2 ns: 3 V, was 2 V)"));
    const Compared alone(model("m", wave("0 0 NA NA\n1n 0 NA NA\n2n 2 NA NA\n5n 2 NA NA")),
                         model("m", wave("0 0 NA NA\n2n 0 NA NA\n3n 3 NA NA\n5n 3 NA NA")));
    EXPECT_THAT(alone.lines(), ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ: 1 ns later, and up to "
                                           "50 % higher (at 2 ns: 3 V, was 2 V)"));
    EXPECT_EQ(alone.summary(),
              "1 model changed; largest change 50 % in m [Rising Waveform] with 50 ohm to 0 V; "
              "largest shift 1 ns later in m [Rising Waveform] with 50 ohm to 0 V");
    // Corners whose shifts differ by less than the tolerance shows have one: 1.5 mV of 1.5 V are 1 ps of its edge.
    EXPECT_THAT(linesOf(model("m", was), model("m", wave("0 0 0 NA\n1.5n 0 0.0015 NA\n2.5n 2 1.5 NA\n5n 2 1.5 NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ and min: 500 ps later"));
    // Half of the table is moved out of what both have, and no more.
    EXPECT_THAT(linesOf(model("m", wave("0 0 NA NA\n1n 2 NA NA\n4n 2 NA NA")),
                        model("m", wave("0 0 NA NA\n2n 0 NA NA\n3n 2 NA NA\n4n 2 NA NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ: 2 ns later"));
    EXPECT_EQ(Compared(model("m", was), model("m", wave("-0.5n 0 0 NA\n0.5n 0 0 NA\n1.5n 2 1.5 NA\n4.5n 2 1.5 NA")))
                  .summary(),
              "1 model changed; largest shift 500 ps earlier in m [Rising Waveform] with 50 ohm to 0 V");
    // A change of form alone: the edge takes twice as long.
    EXPECT_THAT(linesOf(model("m", wave("0 0 NA NA\n1n 2 NA NA\n4n 2 NA NA")),
                        model("m", wave("0 0 NA NA\n2n 2 NA NA\n4n 2 NA NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ: up to 50 % lower "
                            "(at 1 ns: 1 V, was 2 V)"));
    // What both have lies ahead of the edge of the old one: 1 V is half of its 2 V. The end is 6 ns of 10 ns ahead.
    EXPECT_THAT(linesOf(model("m", wave("0 0 NA NA\n8n 0.02 NA NA\n10n 2 NA NA")),
                        model("m", wave("0 0 NA NA\n4n 1.01 NA NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ: covers 0 s to 4 ns, was 0 s to 10 ns",
                            "Model m: [Rising Waveform] with 50 ohm to 0 V typ: up to 50 % higher (at 4 ns: 1.01 V, "
                            "was 10 mV)"));
}

TEST(Compare, waveformsThatAreHigherAllAlongAreToldSo) {
    const auto lines = [](std::string_view was, std::string_view is) {
        return linesOf(model("m", wave(was)), model("m", wave(is)));
    };
    const std::string was = "0 0 0 0\n1n 0 0 0\n2n 2 1.5 2.5\n5n 2 1.5 2.5";
    EXPECT_THAT(lines(was, "0 0.3 0.3 -0.2\n1n 0.3 0.3 -0.2\n2n 2.3 1.8 2.3\n5n 2.3 1.8 2.3"),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ and min: all of it 300 mV higher; max: "
                            "all of it 200 mV lower"));
    // 0.3 V of 2 V, and of 1.5 V.
    EXPECT_EQ(Compared(model("m", wave(was)), model("m", wave("0 0.3 0 0\n1n 0.3 0 0\n2n 2.3 1.5 2.5\n5n 2.3 1.5 2.5")))
                  .summary(),
              "1 model changed; largest change 15 % in m [Rising Waveform] with 50 ohm to 0 V");
    // Higher by half of that at one end is another form.
    EXPECT_THAT(lines("0 0 NA NA\n1n 0 NA NA\n2n 2 NA NA\n5n 2 NA NA",
                      "0 0.3 NA NA\n1n 0.3 NA NA\n2n 2.15 NA NA\n5n 2.15 NA NA"),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ: up to 15 % higher (at 0 s: 300 mV, "
                            "was 0 V)"));
}

TEST(Compare, waveformsAreMatchedByTheirFixtures) {
    constexpr std::string_view kRows = "0 0 NA NA\n1n 2 NA NA";
    constexpr std::string_view kOther = "0 1 NA NA\n1n 2 NA NA";
    const std::string low = wave(kRows);
    const std::string high = wave(kOther, "R_fixture = 50\nV_fixture = 2");
    EXPECT_THAT(linesOf(model("m", low + high), model("m", high + low)), IsEmpty());
    EXPECT_THAT(linesOf(model("m", low), model("m", low + high)),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 2 V added"));
    // Of two that are left one field differs: they are the same, at another load.
    EXPECT_THAT(linesOf(model("m", low + high), model("m", wave(kOther, "R_fixture = 50\nV_fixture = 3") + low)),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 2 V V_fixture: 3 V, was 2 V (+50 %)"));
    EXPECT_THAT(linesOf(model("m", low), model("m", wave(kRows, "R_fixture = 75\nV_fixture = 3"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V V_fixture: 3 V, was 0 V",
                            "Model m: [Rising Waveform] with 50 ohm to 0 V R_fixture: 75 ohm, was 50 ohm (+50 %)"));
    // Of several of one fixture those that are alike belong together, wherever they are.
    const std::string flat = wave("0 2 NA NA\n1n 2 NA NA");
    EXPECT_THAT(linesOf(model("m", low), model("m", flat + low)),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V added"));
    EXPECT_THAT(linesOf(model("m", low + flat), model("m", flat + wave("0 0 NA NA\n1n 1.8 NA NA"))),
                ElementsAre("Model m: [Rising Waveform] with 50 ohm to 0 V typ: up to 10 % lower (at 1 ns: 1.8 V, "
                            "was 2 V)"));
}

TEST(Compare, rampsAreComparedByTheirSlewAndByWhatItHides) {
    const auto ramp = [](std::string_view lines) { return model("m", std::string("[Ramp]\n").append(lines)); };
    const std::string was = ramp("dV/dt_r 1/1n NA NA\ndV/dt_f 1/1n 0.9/1n NA");
    EXPECT_THAT(linesOf(was, ramp("dV/dt_r 1/1n NA NA\ndV/dt_f 1/1n 0.9/2n NA\nR_load = 75")),
                ElementsAre("Model m: [Ramp] R_load: 75 ohm, was not given",
                            "Model m: [Ramp] dV/dt_f min: 450 mV/ns, was 900 mV/ns (-50 %)"));
    EXPECT_THAT(linesOf(was, ramp("dV/dt_r 2/2n NA NA\ndV/dt_f 2/4n 0.9/1n NA")),
                ElementsAre("Model m: [Ramp] dV/dt_f dt typ: 4 ns, was 1 ns (+300 %)",
                            "Model m: [Ramp] dV/dt_r dV typ: 2 V, was 1 V (+100 %)",
                            "Model m: [Ramp] dV/dt_r dt typ: 2 ns, was 1 ns (+100 %)",
                            "Model m: [Ramp] dV/dt_f dV typ: 2 V, was 1 V (+100 %)",
                            "Model m: [Ramp] dV/dt_f typ: 500 mV/ns, was 1 V/ns (-50 %)"));
}

TEST(Compare, whatIsMeantWhereNothingIsGivenIsNoChange) {
    const auto lines = [](std::string_view was, std::string_view is) {
        return linesOf(model("m", was), model("m", is));
    };
    EXPECT_THAT(lines("", "Polarity Non-Inverting\nEnable Active-High"), IsEmpty());
    EXPECT_THAT(lines("[Ramp]\ndV/dt_r 1/1n NA NA", "[Ramp]\ndV/dt_r 1/1n NA NA\nR_load = 50"), IsEmpty());
    // The range of the supply stands for both upper references, 0 V for the lower ones.
    constexpr std::string_view kSupply = "[Voltage Range] 3.3 3 3.6";
    EXPECT_THAT(lines(kSupply,
                      "[Pullup Reference] 3.3 3 3.6\n[POWER Clamp Reference] 3.3 NA NA\n"
                      "[Pulldown Reference] 0 0 0\n[GND Clamp Reference] 0 NA NA"),
                IsEmpty());
    EXPECT_THAT(
        lines("[Pullup Reference] 5 5 5\n[POWER Clamp Reference] 3.3 3 3.6\n[GND Clamp Reference] -1 -1 -1", kSupply),
        ElementsAre("Model m: [GND Clamp Reference] typ, min and max: 0 V, was -1 V (+100 %)",
                    "Model m: [Pullup Reference] typ: 3.3 V, was 5 V (-34 %); min: 3 V, was 5 V (-40 %); "
                    "max: 3.6 V, was 5 V (-28 %)"));
    EXPECT_THAT(lines("[Voltage Range] 3.3 NA NA", ""),
                ElementsAre("Model m: [Voltage Range] typ: not given, was 3.3 V"));
}

TEST(Compare, equalChangesAreOneAndThoseOfManyModelsComeFirst) {
    const auto file = [](std::string_view c_comp, std::string_view rref) {
        std::string text;
        for (const std::string_view name : {"a", "b", "c"})
            text += model(name, std::string("C_comp ").append(c_comp));
        return text + model("d", std::string("C_comp 9p\nRref = ").append(rref));
    };
    const Compared compared(file("5p", "50"), file("4p", "100"));
    EXPECT_THAT(compared.lines(), ElementsAre("Models a, b and c: C_comp typ: 4 pF, was 5 pF (-20 %)",
                                              "Model d: Rref: 100 ohm, was 50 ohm (+100 %)"));
    EXPECT_EQ(compared.summary(), "4 models changed; largest change 100 % in d Rref");
    ASSERT_EQ(compared.changes.groups.size(), 2U);
    EXPECT_EQ(lineOf(*compared.changes.groups[0], 1), "Models a and 2 more: C_comp typ: 4 pF, was 5 pF (-20 %)");
    EXPECT_EQ(Compared(file("5p", "50"), file("5p", "50")).summary(), "No difference");
}

TEST(Compare, modelsThatHaveOnlyAnotherNameAreRenamed) {
    constexpr std::string_view kStrong = "C_comp 5p\n[Pulldown]\n0 0 NA NA\n1 40m NA NA";
    constexpr std::string_view kWeak = "C_comp 5p\n[Pulldown]\n0 0 NA NA\n1 20m NA NA";
    constexpr std::string_view kSelector = "[Model Selector] s\n";
    const auto file = [&](std::string_view strong, std::string_view weak) {
        return std::string(kSelector)
            .append(strong)
            .append(" fast\n")
            .append(weak)
            .append(" slow\n")
            .append(model(strong, kStrong))
            .append(model(weak, kWeak));
    };
    const Compared renamed(file("a", "b"), file("b_v2", "a_v2"));
    EXPECT_THAT(renamed.lines(), ElementsAre("Model b_v2: renamed, was a", "Model a_v2: renamed, was b"));
    EXPECT_EQ(renamed.summary(), "2 models renamed");
    // Another type or other tables: another model.
    EXPECT_THAT(linesOf(model("a", kStrong), model("b", kStrong, "I/O")),
                ElementsAre("Model b: added", "Model a: removed"));
    EXPECT_THAT(linesOf(model("a", kStrong), model("b", kWeak)), ElementsAre("Model b: added", "Model a: removed"));
    // Of two that fit the one with fewer other changes is taken.
    const std::string other = model("x", "C_comp 9p\n[Pulldown]\n0 0 NA NA\n1 40m NA NA");
    EXPECT_THAT(linesOf(other + model("a", kStrong), model("b", kStrong)),
                ElementsAre("Model b: renamed, was a", "Model x: removed"));
    EXPECT_THAT(linesOf(model("a", kStrong), other + model("b", kStrong)),
                ElementsAre("Model x: added", "Model b: renamed, was a"));
    // However many are alike in most, in whatever order they come: here but for the smallest current of one corner.
    const auto many = [](std::string_view prefix, int first, int step) {
        std::string text;
        for (int i = 0, number = first; i < 20; ++i, number += step) {
            const std::string number_text = std::to_string(number);
            text += model(std::string(prefix) + number_text, "[Pulldown]\n0 0 0 0\n1 40m 2" + number_text + "m 50m");
        }
        return text;
    };
    EXPECT_EQ(Compared(many("a", 10, 1), many("b", 29, -1)).summary(), "20 models renamed");
    // Without tables they have to be the same in all.
    EXPECT_THAT(linesOf(model("a", "C_comp 5p"), model("b", "C_comp 5p")), ElementsAre("Model b: renamed, was a"));
    EXPECT_THAT(linesOf(model("a", "C_comp 5p"), model("b", "C_comp 6p")),
                ElementsAre("Model b: added", "Model a: removed"));
}

TEST(Compare, selectorsHaveEntriesAndTheirOrder) {
    const auto selector = [](std::string_view lines) { return std::string("[Model Selector] s\n").append(lines); };
    const std::string was = selector("a one\nb two\nc three\n");
    EXPECT_THAT(linesOf(was, selector("a one\nc third\nd four\n")),
                ElementsAre("Selector s: description of c: third, was three", "Selector s: entry d added",
                            "Selector s: entry b removed"));
    EXPECT_THAT(linesOf(was, selector("d four\na one\nb two\nc three\n")),
                ElementsAre("Selector s: entry d added", "Selector s: first entry: d, was a"));
    EXPECT_THAT(linesOf(was, selector("b two\na one\nc three\n")),
                ElementsAre("Selector s: entries in another order; the first is b, was a"));
    EXPECT_THAT(linesOf(was, selector("a one\nc three\nb two\n")), ElementsAre("Selector s: entries in another order"));
}

std::string component(std::string_view lines) {
    return std::string("[Component] Chip\n").append(kComponentStart).append(lines).append("\n");
}

TEST(Compare, pinsThatChangeAlikeAreOneLine) {
    const std::string was = component(
        "[Pin] signal_name model_name R_pin L_pin C_pin\n"
        "1 A in\n2 B in\n3 C in 1m 1n 1p\n4 D NC");
    const std::string is = component(
        "[Pin] signal_name model_name R_pin L_pin C_pin\n"
        "1 A out\n2 B out\n3 C2 in 1m 2n NA\n5 E NC\n6 F NC");
    const Compared compared(was, is);
    EXPECT_THAT(
        compared.lines(),
        ElementsAre("Component Chip, pins 1 and 2: model: out, was in", "Component Chip, pin 3: signal: C2, was C",
                    "Component Chip, pin 3: C_pin: not given, was 1 pF", "Component Chip, pins 5 and 6: added",
                    "Component Chip, pin 4: removed", "Component Chip, pin 3: L_pin: 2 nH, was 1 nH (+100 %)"));
    EXPECT_EQ(compared.summary(), "1 component changed; largest change 100 % in Chip pin 3 L_pin");
}

TEST(Compare, relationsOfPinsAreFieldsOfThem) {
    const auto file = [](std::string_view bus, std::string_view vdiff, std::string_view series) {
        std::string text = component("[Pin] signal_name model_name\n1 A x\n2 B x\n3 V POWER");
        text.append("[Pin Mapping] pulldown_ref pullup_ref\n1 NC ").append(bus).append("\n");
        text.append("[Diff Pin] inv_pin vdiff tdelay_typ\n1 2 ").append(vdiff).append(" 1n\n");
        return text.append("[Series Pin Mapping] pin_2 model_name\n1 2 ").append(series).append("\n");
    };
    EXPECT_THAT(linesOf(file("VB", "200m", "r"), file("VC", "150m", "s")),
                ElementsAre("Component Chip, pin 1: [Pin Mapping] pullup_ref: VC, was VB",
                            "Component Chip: [Series Pin Mapping] 1 to 2 model: s, was r",
                            "Component Chip, pin 1: [Diff Pin] vdiff: 150 mV, was 200 mV (-25 %)"));
}

std::string package(std::string_view pins, std::string_view matrix) {
    std::string text = "[Define Package Model] p\n[Manufacturer] Ours\n[OEM] Theirs\n[Description] d\n";
    text.append("[Number Of Pins] 3\n[Pin Numbers]\n").append(pins).append("\n[Model Data]\n[Inductance Matrix] ");
    return text.append(matrix).append("\n[End Model Data]\n[End Package Model]\n");
}

TEST(Compare, matricesAreComparedByTheirPins) {
    const auto lines = [](std::string_view was, std::string_view is) { return Compared(was, is).lines(); };
    const std::string full = package("1\n2\n3", "Full_matrix\n[Row] 1\n3n 1n 0\n[Row] 2\n4n 1.5n\n[Row] 3\n5n");
    // The same entries, those of 0 left out, and with the pins in another order.
    EXPECT_THAT(
        lines(full, package("1\n2\n3", "Sparse_matrix\n[Row] 1\n1 3n\n2 1n\n[Row] 2\n2 4n\n3 1.5n\n[Row] 3\n3 5n")),
        IsEmpty());
    EXPECT_THAT(lines(full, package("3\n1\n2", "Full_matrix\n[Row] 3\n5n 0 1.5n\n[Row] 1\n3n 1n\n[Row] 2\n4n")),
                IsEmpty());
    // 2 is 33.3 % more than 1.5, 5 25 % more than 4; 0.1 and 0 cannot be measured.
    EXPECT_THAT(lines(full, package("1\n2\n3", "Full_matrix\n[Row] 1\n3n 1n 0.1n\n[Row] 2\n5n 2n\n[Row] 3\n5n")),
                ElementsAre("Package model p: [Inductance Matrix]: 3 entries changed, at most by 33.3 % "
                            "(pin 2 to 3: 2 nH, was 1.5 nH)"));
    // Room for a pin that is not listed.
    EXPECT_THAT(lines(package("1\n2", "Full_matrix\n[Row] 1\n3n 1n 1n\n[Row] 2\n4n 1.5n"),
                      package("1\n2", "Full_matrix\n[Row] 1\n6n 1n 2n\n[Row] 2\n4n 3n")),
                ElementsAre("Package model p: [Inductance Matrix]: 1 entry changed by 100 % (pin 1: 6 nH, "
                            "was 3 nH)"));
    const std::string banded =
        package("1\n2\n3", "Banded_matrix\n[Bandwidth] 1\n[Row] 1\n3n 1n\n[Row] 2\n4n 1.5n\n[Row] 3\n5n");
    EXPECT_THAT(lines(full, banded), IsEmpty());
    EXPECT_THAT(lines(banded, package("1\n2\n4", "Full_matrix\n[Row] 1\n3n 1n 0\n[Row] 2\n4n 1.5n\n[Row] 4\n5n")),
                ElementsAre("Package model p, pin 4: added", "Package model p, pin 3: removed"));
}

TEST(Compare, externalModelsWithTheirParameters) {
    const auto external = [](std::string_view parameters, std::string_view vhigh, std::string_view polarity) {
        std::string lines("[External Model]\nLanguage VHDL-AMS\nCorner Typ a.vhd e(a)\nParameters ");
        lines.append(parameters).append("\nPorts A_signal D_drive\nD_to_A D_drive my_d my_e 0 ").append(vhigh);
        return model("m", lines.append(" 1n 1n Typ ").append(polarity).append("\n[End External Model]\n"));
    };
    const std::string was = external("p = 5 q = file.txt r s", "3.3", "Non-Inverting");
    EXPECT_THAT(linesOf(was, external("p = 5000m q = file.txt r s", "3300m", "Non-Inverting")), IsEmpty());
    EXPECT_THAT(
        linesOf(was, external("p = 6 q = other.txt r = 1 t = 7", "p", "Inverting")),
        ElementsAre("Model m: [External Model] Parameters t added", "Model m: [External Model] Parameters s removed",
                    "Model m: [External Model] Parameters q: other.txt, was file.txt",
                    "Model m: [External Model] Parameters r: 1, was not given",
                    "Model m: [External Model] D_to_A D_drive my_d my_e Typ vhigh: p, was 3.3 V",
                    "Model m: [External Model] D_to_A D_drive my_d my_e Typ polarity: Inverting, was "
                    "Non-Inverting",
                    "Model m: [External Model] Parameters p: 6, was 5 (+20 %)"));
}

TEST(Compare, capacitanceOfEmiInAllCorners) {
    const auto emi = [](std::string_view cpd) {
        return component(std::string("[Pin] signal_name model_name\n1 A NC\n[Begin EMI Component]\nCpd = ")
                             .append(cpd)
                             .append("\n[End EMI Component]"));
    };
    EXPECT_THAT(linesOf(emi("6p 5p 7p"), emi("6p 4p 7p")),
                ElementsAre("Component Chip: [Begin EMI Component] Cpd min: 4 pF, was 5 pF (-20 %)"));
    EXPECT_THAT(linesOf(emi("6p"), emi("9p")),
                ElementsAre("Component Chip: [Begin EMI Component] Cpd typ: 9 pF, was 6 pF (+50 %)"));
}

TEST(Compare, sectionsOfPackagePins) {
    const auto sections = [](std::string_view pin) {
        return std::string(
                   "[Define Package Model] p\n[Manufacturer] O\n[OEM] T\n[Description] d\n[Number Of Sections] "
                   "2\n[Number Of Pins] 2\n[Pin Numbers]\n1 Len=0 L=1n / Len=2 C=3p /\n")
            .append(pin)
            .append("\n[End Package Model]\n");
    };
    EXPECT_THAT(linesOf(sections("2 Len=0 L=1n / Len=2 C=3p /"), sections("2 Len=0 L=1n / Len=4 C=3p /")),
                ElementsAre("Package model p, pin 2: section 2 Len: 4, was 2 (+100 %)"));
    EXPECT_THAT(linesOf(sections("2 Len=0 L=1n / Len=2 C=3p /"), sections("2 Len=0 L=1n /")),
                ElementsAre("Package model p, pin 2: path: 1 section, was 2 sections"));
}

TEST(Compare, packageModelsOfOtherFilesDoNotCount) {
    const auto change = [](const std::string& package_lines) {
        Files files;
        files.put("p.pkg", "[IBIS Ver] 4.2\n[File Name] p.pkg\n[File Rev] 1\n" + package_lines + "[End]\n");
        files.add("a.ibs", component("[Package Model] p")).check("a.ibs");
        EXPECT_EQ(files.root().package_models.size(), 1U);
        Files same;
        same.add("a.ibs", component("[Package Model] p")).check("a.ibs");
        return compareFiles({files.root(), files.run.diagnostics.file}, {same.root(), same.run.diagnostics.file}, {});
    };
    EXPECT_THAT(change(package("1\n2\n3", "Full_matrix\n[Row] 1\n1n 0 0\n[Row] 2\n1n 0\n[Row] 3\n1n")).groups,
                IsEmpty());
}

TEST(Compare, headersCountOnlyWhenAskedFor) {
    Files was;
    Files is;
    was.put("a.ibs", "[IBIS Ver] 3.2\n[File Name] a.ibs\n[File Rev] 1\n[Notes] one\n[End]\n").check("a.ibs");
    is.put("a.ibs", "[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n[Notes] one\ntwo\n[End]\n").check("a.ibs");
    const ComparedFile before{was.root(), was.run.diagnostics.file};
    const ComparedFile now{is.root(), is.run.diagnostics.file};
    EXPECT_THAT(compareFiles(before, now, {}).groups, IsEmpty());
    const FileChanges changes = compareFiles(before, now, {.header_texts = true});
    ASSERT_EQ(changes.groups.size(), 2U);
    EXPECT_EQ(lineOf(*changes.groups[0], 20), "Header: [IBIS Ver]: 4.2, was 3.2");
    EXPECT_EQ(lineOf(*changes.groups[1], 20), "Header: [Notes]: another text");
    EXPECT_EQ(summaryOf(changes), "1 header changed");
}

TEST(CompareCurves, oddTablesAreNoDanger) {
    using Points = std::vector<Point>;
    constexpr CurveTolerance kNone{.share = 0.0, .nothing = 0.0, .between_rows = true, .of_whole = false};
    const Points one{{1, 5}};
    const Points line{{0, 0}, {2, 8}};
    const Points far{{10, 1}, {11, 2}};
    const Points huge{{-1e308, -1e308}, {1e308, 1e308}};
    EXPECT_FALSE(differenceOf({}, line, kNone));
    EXPECT_FALSE(differenceOf(line, far, kNone));
    const auto difference = differenceOf(line, one, kNone);
    ASSERT_TRUE(difference);
    EXPECT_EQ(difference->x, 1.0);
    EXPECT_EQ(difference->was, 4.0);
    EXPECT_EQ(difference->scale, 4.0);
    EXPECT_TRUE(differenceOf(one, line, kNone));
    EXPECT_FALSE(shiftOf(line, Points{{0, 9}, {1, 9}}));
    EXPECT_FALSE(shiftOf(one, one));
    static_cast<void>(differenceOf(huge, line, kNone));
    static_cast<void>(differenceOf(line, huge, kNone));
    static_cast<void>(shiftOf(huge, line));
    // A step has no finite slope.
    const Points steps{{0, 0}, {1, 0}, {1, 4}, {2, 5}, {2, 7}, {3, 7}};
    const Points bent{{0, 0}, {1.5, 4.75}, {3, 7}};
    const auto at_step = differenceOf(steps, bent, kNone);
    ASSERT_TRUE(at_step);
    EXPECT_EQ(at_step->x, 2.0);
    EXPECT_EQ(at_step->was, 7.0);
    EXPECT_EQ(at_step->is, 5.5);
}

TEST(CompareCurves, whatStaysAtOneLevelIsNotDrawnOutToOthers) {
    using Points = std::vector<Point>;
    const Points line{{0, 1}, {2, 9}};
    const Points flat{{0, 5}, {2, 5}};
    Points room;
    EXPECT_TRUE(atLevelsOf(line, flat, room).empty());
    EXPECT_TRUE(atLevelsOf(flat, line, room).empty());
    const Curve drawn_out = atLevelsOf(line, Points{{0, 0}, {1, 1}, {2, 2}}, room);
    ASSERT_EQ(drawn_out.size(), 3U);
    EXPECT_EQ(drawn_out[1].y, 5.0);
    EXPECT_EQ(drawn_out[2].y, 9.0);
}

} // namespace
} // namespace kestrel
