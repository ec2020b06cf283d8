// What a component keeps of its lines, faulty ones included, and how its pins find their models.

#include "files.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Component, keepsWhatWasReadInItsUnits) {
    const ComponentFile file("4.2",
                             "[Pin] signal_name model_name L_pin C_pin R_pin\n"
                             "1 RAS# POWER 5nH na 200m\n"
                             "2 CAS# GND\n"
                             "[Component] Die\n"
                             "Timing_location = Die\n");
    const Cmpnt& component = file.component();
    EXPECT_EQ(component.line, 4U);
    EXPECT_EQ(component.manufacturer, "Ours");
    EXPECT_DOUBLE_EQ(component.package->l_pkg->typ().value(), 1e-9);
    ASSERT_EQ(component.pins.size(), 2U);
    const Pin& pin = component.pins[0];
    EXPECT_EQ(pin.signal_name, "RAS#");
    EXPECT_DOUBLE_EQ(pin.r_pin.value(), 0.2);
    EXPECT_DOUBLE_EQ(pin.l_pin.value(), 5e-9);
    EXPECT_EQ(pin.c_pin.state(), CellState::na);
    EXPECT_EQ(component.pins[1].r_pin.state(), CellState::missing);
    const Cmpnt& second = *file.root().components.find("Die");
    EXPECT_EQ(second.timing_location, Location::die);
    EXPECT_EQ(second.si_location, Location::notGiven);
}

TEST(Pins, haveNamesCutToTheLimitsOfTheVersion) {
    struct Row {
        std::string_view version;
        std::size_t pin, other;
    };
    for (const Row& row : {Row{"2.1", 5, 20}, Row{"3.2", 5, 20}, Row{"4.2", 5, 40}, Row{"5.1", 8, 40}}) {
        const std::string pin(row.pin, 'p');
        const std::string other(row.other, 's');
        // The second row is cut to the first, which is no repetition; the model of the first is not defined.
        const ComponentFile file(row.version,
                                 "[Pin] signal_name model_name\n" + pin + " " + other + " " + other + "\n" + pin +
                                     "x " + other + "y " + other + "z\n",
                                 true);
        EXPECT_EQ(codesOf(file.out.text()), "E0604@ E0605@ E0606@ E0609") << row.version;
        const Pin& cut = file.component().pins[1];
        EXPECT_EQ(cut.name, pin);
        EXPECT_EQ(cut.signal_name, other);
        EXPECT_EQ(cut.model_name, other);
    }
}

TEST(Pins, areFoundAmongManyByTheFirstOfTheirName) {
    constexpr std::size_t kPins = 5000;
    constexpr std::size_t kNames = 3000;
    std::string lines = "[Pin] signal_name model_name\n";
    for (std::size_t i = 0; i < kPins; ++i)
        lines.append(std::to_string(i % kNames)).append(" s GND\n");
    const ComponentFile file("4.2", lines);
    EXPECT_EQ(file.run.diagnostics.errors, kPins - kNames);
    const PinList& pins = file.component().pins;
    for (std::size_t i = 0; i < kNames; ++i)
        ASSERT_EQ(pins.find(std::to_string(i)), &pins[i]);
    EXPECT_EQ(pins.find(std::to_string(kNames)), nullptr);
}

TEST(Pins, markTheirModelsAndAreReportedOncePerName) {
    const std::string longest(40, 'm');
    const std::string lines =
        "[Pin] signal_name model_name\n"
        "1 s buf\n2 s diff\n3 s "s +
        longest + "x\n4 s diff\n5 s sel\n[Component] Second\n" + std::string(kComponentStart) +
        "[Pin] signal_name model_name\n1 s diff\n2 s sel\n3 s " + longest +
        "\n[Diff Pin] inv_pin vdiff tdelay_typ\n1 2 NA NA\n"
        "[Model Selector] sel\nnowhere one\nentry two\n"
        "[Model] buf\nModel_type I/O\n"
        "[Model] diff\nModel_type I/O_diff\n"
        "[Model] entry\nModel_type Series\n"
        "[Model] idle\nModel_type I/O\n"
        "[Model] " +
        longest + "\nModel_type Series_switch\n";
    const ComponentFile file("4.2", lines);
    constexpr std::string_view kSeries = "', which holds a Series or Series_switch model.\n";
    EXPECT_THAT(file.out.text(),
                HasSubstr("ERROR - Pin '2' of Component 'Second' names 'sel"s.append(kSeries) +
                          "ERROR - Pin '3' of Component 'Second' names '" + longest + std::string(kSeries) +
                          "CAUTION - Model 'diff' of Pin '2', Component 'Chip', is differential but the pin is in no "
                          "Diff Pin line.\n"
                          "ERROR - Pin '5' of Component 'Chip' names 'sel" +
                          std::string(kSeries)));
    std::vector<std::string_view> marked;
    for (const Mdl& model : file.root().models.newestFirst())
        if (model.referenced) marked.push_back(model.name);
    EXPECT_THAT(marked, ElementsAre(longest, "entry", "diff", "buf")); // the second by the selector
}

TEST(FinalChecks, tellEveryPairOfEqualNamesFromTheNewestOn) {
    std::string lines = "[Pin] signal_name model_name\n1 s GND\n";
    for (const std::string_view name : {"B", "Chip", "B", "chip", "Chip"}) {
        lines.append("[Component] ").append(name).append("\n").append(kComponentStart);
        lines.append("[Pin] signal_name model_name\n1 s GND\n");
    }
    const ComponentFile file("4.2", lines);
    const auto twice = [](std::string_view name) {
        return "ERROR - Component '"s.append(name) + "' is duplicated within the .ibs file.\n";
    };
    EXPECT_THAT(file.out.text(), HasSubstr("\n" + twice("Chip") + twice("Chip") + twice("B") + twice("Chip")));
    EXPECT_EQ(file.run.diagnostics.errors, 4);
}

} // namespace
} // namespace kestrel
