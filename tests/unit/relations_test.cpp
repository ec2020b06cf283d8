// What a component keeps of the lines that relate its pins, and what it makes of numbers, names and brackets in them.

#include "files.hpp"
#include "ibis/check_circuit_calls.hpp"

#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Relations, keepTheirRowsInTheirUnits) {
    const ComponentFile file("5.1",
                             "[Pin Mapping] pulldown_ref pullup_ref gnd_clamp_ref power_clamp_ref\n"
                             "1 G nc\n"
                             "2 G P na P\n"
                             "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n"
                             "1 2 -150mV -1ns NA 2n\n"
                             "3 4 NA 0\n"
                             "[Series Pin Mapping] pin_2 model_name function_table_group\n"
                             "1 2 Switch\n"
                             "1 2 Switch 4\n");
    const Cmpnt& component = file.component();
    ASSERT_EQ(component.pin_mapping->rows.size(), 2U);
    EXPECT_THAT(component.pin_mapping->rows[0].labels, ElementsAre("G", "nc", "", "", ""));
    EXPECT_THAT(component.pin_mapping->rows[1].labels, ElementsAre("G", "P", "NC", "P", ""));
    const DiffPins& diff_pins = *component.diff_pins;
    ASSERT_EQ(diff_pins.rows.size(), 2U);
    const DifPin& pair = diff_pins.rows[0];
    EXPECT_DOUBLE_EQ(pair.vdiff.value(), -0.15);
    EXPECT_DOUBLE_EQ(pair.tdelay.typ().value(), -1e-9);
    EXPECT_EQ(pair.tdelay.min().state(), CellState::na);
    EXPECT_DOUBLE_EQ(pair.tdelay.max().value(), 2e-9);
    EXPECT_EQ(diff_pins.rows[1].tdelay.min().state(), CellState::missing);
    EXPECT_TRUE(isInDiffPin(diff_pins, "4"));
    EXPECT_FALSE(isInDiffPin(diff_pins, "5"));
    const auto& series_pins = component.series_pins->rows;
    ASSERT_EQ(series_pins.size(), 2U);
    EXPECT_EQ(series_pins[0].group, "");
    EXPECT_EQ(series_pins[1].group, "4");
}

TEST(SwitchStates, runOverLinesUntilTheirSlash) {
    const ComponentFile file("5.1", "[Series Switch Groups]\nOn 1 2\nOff 3/ Off\n4\n/\n");
    const auto& states = file.component().switch_groups->states;
    ASSERT_EQ(states.size(), 2U);
    EXPECT_THAT(states[0].on, ElementsAre("1", "2"));
    EXPECT_THAT(states[0].off, ElementsAre("3"));
    EXPECT_THAT(states[1].on, IsEmpty());
    EXPECT_THAT(states[1].off, ElementsAre("4"));
}

TEST(CircuitCalls, nameTheirPinsInReportedLinesToo) {
    const ComponentFile file("5.1",
                             "[Pin] signal_name model_name\n"
                             "123456789 A CIRCUITCALL\n"
                             "[Circuit Call] Net\n"
                             "Diff_signal_pins 1 2\n"
                             "Signal_pin 3 10 11\n"
                             "Port_map a 4.pad\n"
                             "Port_map 5\n"
                             "Port_map b 123456789\n"
                             "Port_map b 6\n"
                             "Port_map c 7.x 8 9\n"
                             "Port_map d abcdefghi\n");
    const auto pins = circuitCallPins(file.component());
    for (const std::string_view pin : {"1", "2", "3", "10", "11", "4", "5", "12345678", "6", "7"})
        EXPECT_TRUE(pins.contains(pin)) << pin;
    for (const std::string_view other : {"c", "123456789", "abcdefgh"}) { // a port, and two that are not listed so
        EXPECT_FALSE(pins.contains(other)) << other;
    }
}

TEST(CircuitCalls, shouldMapThePortsThatNothingElseConnects) {
    constexpr std::string_view kCall = "[Circuit Call] Net\nSignal_pin 1\nPort_map a 1\n";
    constexpr std::string_view kCircuit =
        "[External Circuit] Net\n"
        "Language SPICE\n"
        "Corner Typ net.spi net\n"
        "Ports a A_gnd A_puref D_drive drive ref in b c\n"
        "D_to_A D_drive drive ref 0 1 1n 1n Typ\n"
        "A_to_D any in A_gnd 0 1 Typ\n"
        "[End External Circuit]\n";
    std::string lines = "[Pin] signal_name model_name\n1 A CIRCUITCALL\n";
    lines.append(kCall).append("[End Circuit Call]\n").append(kCall).append("Port_map b 1\nPort_map c 1\n");
    lines.append("[End Circuit Call]\n").append(kCircuit);
    const ComponentFile file("4.2", lines);
    // Of the first call alone, and there the first of two.
    EXPECT_THAT(file.out.text(),
                ::testing::EndsWith("CAUTION - Circuit Call of 'Net' in Component 'Chip': port 'b' is not mapped\n"));
    EXPECT_EQ(file.run.diagnostics.cautions, 1);
    EXPECT_EQ(file.run.diagnostics.errors + file.run.diagnostics.warnings, 0);
}

TEST(ExternalCircuits, keepFilesNamesAndConverters) {
    TestRun test;
    kestrel::Run& run = test.run;
    run.parse.version = IbisVersion::v5;
    ExtCkt circuit;
    const ExtOwner owner{.kind = "External Circuit", .name = "Net"};
    for (const std::string_view line :
         {"Language VHDL-A(MS)", "Corner Typ a.vhd buf(arch one)", "Corner Min b.vhd buf (two)", "Corner Max c.vhd buf",
          "Ports p q", "Parameters low=5 high = x slow", "D_to_A d p q low 3.3V 1n 2n Max Inverting",
          "A_to_D d p q -1 1"}) {
        extCktLine(run, circuit, owner, line);
    }
    checkExtCkt(run, circuit, owner);
    EXPECT_EQ(test.out.text(), "WARNING (line    0) - A_to_D line for port 'd' has no corner name\n");
    EXPECT_EQ(circuit.language, ExtLanguage::vhdlA);
    EXPECT_EQ(circuit.corners.typ()->circuit, "buf(arch one)");
    EXPECT_EQ(circuit.corners.min()->circuit, "buf (two)");
    EXPECT_EQ(circuit.corners.max()->circuit, "buf");
    EXPECT_EQ(circuit.corners.max()->file, "c.vhd");
    EXPECT_THAT(circuit.ports.names, ElementsAre("p", "q"));
    EXPECT_THAT(circuit.parameters.names, ElementsAre("low", "high", "slow"));
    ASSERT_EQ(circuit.converters.size(), 2U);
    const Converter& driver = circuit.converters[0];
    EXPECT_EQ(driver.corner, Corner::max);
    EXPECT_DOUBLE_EQ(driver.vhigh.value_or(0.0), 3.3);
    EXPECT_DOUBLE_EQ(driver.tfall.value_or(0.0), 2e-9);
    EXPECT_FALSE(circuit.converters[1].to_analog);
    EXPECT_EQ(circuit.converters[1].corner, std::nullopt);
}

TEST(ExternalCircuits, areMissedByTheirEndKeyword) {
    const std::string printed = checkText("[IBIS Ver] 5.1\n[End External Circuit] more\nlate\n[End]\n");
    EXPECT_NE(printed.find("Number of Line Items (1) For Keyword End External Circuit: Expecting 0\n"
                           "ERROR (line    2) -\n"
                           "    Keyword End_External_Circuit has no matching External_Circuit.\n"
                           "ERROR (line    3) - Expecting Keyword.  Invalid Line\n"),
              std::string::npos)
        << printed;
}

TEST(ExternalCircuits, ofVersion4TakeNumbersOnly) {
    TestRun test;
    kestrel::Run& run = test.run;
    run.parse.version = IbisVersion::v4;
    run.diagnostics.coded_form = true;
    ExtCkt circuit;
    const ExtOwner owner{.kind = "External Circuit", .name = "Net"};
    for (const std::string_view line : {"Language IBIS-ISS", "Converter_Parameters p", "Language SPICE", "Parameters p",
                                        "D_to_A d a b p 1 1n 1n Typ Inverting"}) {
        extCktLine(run, circuit, owner, line);
    }
    EXPECT_EQ(codesOf(test.out.text()), "E1809@ E1807@ E1811@ E1819@");
}

/// What an external model of one language says of its ports, given ahead of the language.
std::string portsOf(std::string_view language) {
    TestRun test;
    kestrel::Run& run = test.run;
    run.parse.version = IbisVersion::v5;
    ExtCkt external;
    const ExtOwner owner{.kind = "External Model", .name = "M", .is_model = true, .drives = true};
    for (const std::string& line : {std::string("Ports A_signal my_port D_mine A_gnd"),
                                    "Language " + std::string(language), std::string("Corner Typ a.file a")}) {
        extCktLine(run, external, owner, line);
    }
    checkExtCkt(run, external, owner);
    return test.out.text();
}

TEST(ExternalModels, nameTheirPortsByTheirLanguage) {
    const std::string mine = "WARNING - Port 'D_mine' is not a predefined port name of an External Model\n";
    EXPECT_EQ(portsOf("VHDL-AMS"),
              "WARNING - Port 'my_port' is not a predefined port name of an External Model\n" + mine);
    EXPECT_EQ(portsOf("Verilog-A(MS)"), mine);
    EXPECT_EQ(portsOf("SPICE"), mine + "WARNING - External Model 'M': no D_to_A line drives the port D_drive\n");
}

TEST(EmiComponents, keepTheirValuesAndTables) {
    const ComponentFile file("5.1",
                             "[Begin EMI Component]\n"
                             "Domain Mixed\n"
                             "Cpd NA 5p 7p\n"
                             "Cpd = 6p 5p 7p\n"
                             "C_Heatsink_gnd = 3.7pF\n"
                             "C_Heatsink_float = none\n"
                             "[Pin EMI] domain_name clock_div\n"
                             "123456789 MEM 0.5\n"
                             "2 na NA\n"
                             "3 IO 0\n"
                             "[Pin Domain EMI] percentage\n"
                             "MEM 40\n"
                             "IO all\n");
    const CmpntEmi& emi = *file.component().emi;
    EXPECT_EQ(emi.domain, EmiDomain::other);
    EXPECT_DOUBLE_EQ(emi.cpd.value_or(0.0), 6e-12);
    EXPECT_DOUBLE_EQ(emi.c_heatsink_gnd.value_or(0.0), 3.7e-12);
    EXPECT_FALSE(emi.c_heatsink_float);
    const auto& pins = emi.pins.rows;
    ASSERT_EQ(pins.size(), 3U);
    EXPECT_EQ(pins[0].pin, "123456789"); // as written: no message speaks of its length
    EXPECT_EQ(pins[0].domain, "MEM");
    EXPECT_EQ(pins[0].clock_div, 0.5);
    EXPECT_EQ(pins[1].domain, "");
    EXPECT_EQ(pins[1].clock_div, 1.0);
    EXPECT_EQ(pins[2].clock_div, 0.0);
    ASSERT_EQ(emi.pin_domains.rows.size(), 2U);
    EXPECT_EQ(emi.pin_domains.rows[0].percentage, 40.0);
    EXPECT_EQ(emi.pin_domains.rows[1].name, "IO");
}

} // namespace
} // namespace kestrel
