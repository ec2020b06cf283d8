// What a component keeps of the lines that relate its pins, and what it makes of numbers, names and brackets in them.

#include "codes.hpp"
#include "ibis/run.hpp"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using K = KeywordCode;
using testing::ElementsAre;
using testing::IsEmpty;

/// An open component of version 5 whose keywords are told and read as from a file.
struct Relations {
    Relations() : root(createRoot(run)) {
        run.parse.version = IbisVersion::v5;
        openCmpnt(run);
    }
    void read(K code, std::string_view text, std::initializer_list<std::string_view> rows) {
        cmpntKeywordSeen(run, code);
        cmpntLine(run, {LineKind::keyword, code, text});
        for (const std::string_view row : rows) {
            cmpntLine(run, {LineKind::data, code, row});
        }
    }
    [[nodiscard]] const Cmpnt& component() const { return *run.cmpnt.current; }

    Output out;
    Run run{out};
    Ibis& root;
};

TEST(Relations, keepTheirRowsInTheirUnits) {
    Relations test;
    test.read(K::pinMapping, "pulldown_ref pullup_ref gnd_clamp_ref power_clamp_ref", {"1 G nc", "2 G P na P"});
    test.read(K::diffPin, "inv_pin vdiff tdelay_typ tdelay_min tdelay_max", {"1 2 150mV -1ns NA 2n", "3 4 NA 0"});
    test.read(K::seriesPinMapping, "pin_2 model_name function_table_group", {"1 2 Switch", "1 2 Switch 4"});
    const Cmpnt& component = test.component();
    ASSERT_EQ(component.pin_maps.size(), 2U);
    EXPECT_THAT(component.pin_maps[0].labels, ElementsAre("G", "nc", "", "", ""));
    EXPECT_THAT(component.pin_maps[1].labels, ElementsAre("G", "P", "NC", "P", ""));
    ASSERT_EQ(component.diff_pins.size(), 2U);
    const DifPin& pair = component.diff_pins[0];
    EXPECT_DOUBLE_EQ(pair.vdiff.value, 0.15);
    EXPECT_DOUBLE_EQ(pair.tdelay_typ.value, -1e-9);
    EXPECT_EQ(pair.tdelay_min.state, CellState::na);
    EXPECT_DOUBLE_EQ(pair.tdelay_max.value, 2e-9);
    EXPECT_EQ(component.diff_pins[1].tdelay_min.state, CellState::missing);
    EXPECT_TRUE(isInDiffPin(component, "4"));
    EXPECT_FALSE(isInDiffPin(component, "5"));
    ASSERT_EQ(component.series_pins.size(), 2U);
    EXPECT_EQ(component.series_pins[0].group, "");
    EXPECT_EQ(component.series_pins[1].group, "4");
    EXPECT_EQ(test.run.diagnostics.errors, 0);
}

TEST(SwitchStates, runOverLinesUntilTheirSlash) {
    Relations test;
    test.read(K::seriesSwitchGroups, "", {"On 1 2", "Off 3/ Off", "4"});
    EXPECT_TRUE(test.run.parse.continuation_pending);
    cmpntLine(test.run, {LineKind::data, K::seriesSwitchGroups, "/"});
    EXPECT_FALSE(test.run.parse.continuation_pending);
    const auto& states = test.component().switch_states;
    ASSERT_EQ(states.size(), 2U);
    EXPECT_THAT(states[0].on, ElementsAre("1", "2"));
    EXPECT_THAT(states[0].off, ElementsAre("3"));
    EXPECT_THAT(states[1].on, IsEmpty());
    EXPECT_THAT(states[1].off, ElementsAre("4"));
}

TEST(CircuitCalls, nameTheirPinsInReportedLinesToo) {
    Relations test;
    test.read(K::pin, "signal_name model_name", {"123456789 A CIRCUITCALL"});
    test.read(K::circuitCall, "Net",
              {"Diff_signal_pins 1 2", "Signal_pin 3 10 11", "Port_map a 4.pad", "Port_map 5", "Port_map b 123456789",
               "Port_map b 6", "Port_map c 7.x 8 9", "Port_map d abcdefghi"});
    const auto pins = circuitCallPins(test.component());
    for (const std::string_view pin : {"1", "2", "3", "10", "11", "4", "5", "12345678", "6", "7"}) {
        EXPECT_TRUE(pins.contains(pin)) << pin;
    }
    for (const std::string_view other : {"c", "123456789", "abcdefgh"}) { // a port, and two that are not listed so
        EXPECT_FALSE(pins.contains(other)) << other;
    }
}

TEST(ExternalCircuits, keepFilesNamesAndConverters) {
    Relations test;
    ExtCkt circuit;
    const ExtOwner owner{"External Circuit", "Net", nullptr};
    for (const std::string_view line :
         {"Language VHDL-A(MS)", "Corner Typ a.vhd buf(arch one)", "Corner Min b.vhd buf (two)", "Corner Max c.vhd buf",
          "Ports p q", "Parameters low=5 high = x slow", "D_to_A d p q low 3.3V 1n 2n Max Inverting",
          "A_to_D d p q -1 1"}) {
        extCktLine(test.run, circuit, owner, line);
    }
    checkExtCkt(test.run, circuit, owner);
    EXPECT_EQ(test.out.text(), "");
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
    EXPECT_DOUBLE_EQ(driver.vhigh, 3.3);
    EXPECT_DOUBLE_EQ(driver.tfall, 2e-9);
    EXPECT_FALSE(circuit.converters[1].to_analog);
    EXPECT_EQ(circuit.converters[1].corner, std::nullopt);
}

TEST(ExternalCircuits, ofVersion4TakeNumbersOnly) {
    Relations test;
    test.run.parse.version = IbisVersion::v4;
    test.run.diagnostics.coded_form = true;
    ExtCkt circuit;
    const ExtOwner owner{"External Circuit", "Net", nullptr};
    for (const std::string_view line : {"Language IBIS-ISS", "Converter_Parameters p", "Language SPICE", "Parameters p",
                                        "D_to_A d a b p 1 1n 1n Typ Inverting"}) {
        extCktLine(test.run, circuit, owner, line);
    }
    EXPECT_EQ(codesOf(test.out.text()), "E1809@ E1807@ E1811@ E1819@");
}

TEST(EmiComponents, keepTheirValuesAndTables) {
    Relations test;
    test.read(K::beginEmiComponent, "",
              {"Domain Mixed", "Cpd NA 5p 7p", "Cpd = 6p 5p 7p", "C_Heatsink_gnd = 3.7pF", "C_Heatsink_float = none"});
    test.read(K::pinEmi, "domain_name clock_div", {"123456789 MEM 0.5", "2 na NA", "3 IO 0"});
    test.read(K::pinDomainEmi, "percentage", {"MEM 40", "IO all"});
    const auto& emi = test.component().emi;
    ASSERT_TRUE(emi);
    EXPECT_EQ(emi->domain, EmiDomain::other);
    EXPECT_DOUBLE_EQ(emi->cpd.value_or(0.0), 6e-12);
    EXPECT_DOUBLE_EQ(emi->c_heatsink_gnd.value_or(0.0), 3.7e-12);
    EXPECT_EQ(emi->c_heatsink_float, std::nullopt);
    ASSERT_EQ(emi->pins.size(), 3U);
    EXPECT_EQ(emi->pins[0].pin, "123456789"); // as written: no message speaks of its length
    EXPECT_EQ(emi->pins[0].domain, "MEM");
    EXPECT_EQ(emi->pins[0].clock_div, 0.5);
    EXPECT_EQ(emi->pins[1].domain, "");
    EXPECT_EQ(emi->pins[1].clock_div, 1.0);
    EXPECT_EQ(emi->pins[2].clock_div, 0.0);
    ASSERT_EQ(emi->pin_domains.size(), 2U);
    EXPECT_EQ(emi->pin_domains[0].percentage, 40.0);
    EXPECT_EQ(emi->pin_domains[1].name, "IO");
}

} // namespace
} // namespace kestrel
