// What a component keeps of its lines, faulty ones included, and how its pins find their models.

#include "ibis/run.hpp"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_literals;
using K = KeywordCode;
using V = IbisVersion;
using testing::ElementsAre;

/// An open component "Chip", read at line 3.
struct OpenComponent {
    explicit OpenComponent(V version = V::v4) : root(createRoot(run)) {
        run.parse.line = 3;
        run.parse.version = version;
        open("Chip");
    }
    void open(std::string_view name) {
        openCmpnt(run);
        keyword(K::component, name);
    }
    void keyword(K code, std::string_view text) { cmpntLine(run, {LineKind::keyword, code, text}); }
    void data(K code, std::string_view text) { cmpntLine(run, {LineKind::data, code, text}); }
    void pins(std::initializer_list<std::string_view> rows) {
        keyword(K::pin, "signal_name model_name");
        for (const std::string_view row : rows) {
            data(K::pin, row);
        }
    }
    void addModel(std::string_view name, ModelType type) {
        Mdl& model = root.models.add(std::make_unique<Mdl>());
        model.name = name;
        model.model_type = type;
        root.models.enterName(model, model.name);
    }
    void addSelector(std::string_view name, std::initializer_list<std::string_view> entries) {
        MSel& selector = root.model_selectors.add(std::make_unique<MSel>());
        selector.name = name;
        for (const std::string_view entry : entries) {
            selector.entries.push_back({.model_name = std::string(entry), .description = {}});
        }
        root.model_selectors.enterName(selector, selector.name);
    }
    /// What was printed since the last call.
    std::string said() { return out.text().substr(std::exchange(told, out.text().size())); }

    Output out;
    Run run{out};
    Ibis& root;
    std::size_t told = 0;
};

TEST(Component, keepsWhatWasReadInItsUnits) {
    OpenComponent test;
    test.data(K::component, "Timing_location = Die");
    test.keyword(K::package, "");
    test.data(K::package, "L_pkg 5n NA 7n");
    test.keyword(K::pin, "signal_name model_name L_pin C_pin R_pin");
    test.data(K::pin, "1 RAS# POWER 5nH na 200m");
    test.data(K::pin, "2 CAS# GND");
    EXPECT_EQ(test.said(), "");
    const Cmpnt& component = *test.root.components.find("Chip");
    EXPECT_EQ(component.timing_location, Location::die);
    EXPECT_EQ(component.si_location, Location::notGiven);
    EXPECT_DOUBLE_EQ(component.package->l_pkg->max().value, 7e-9);
    EXPECT_FALSE(component.package->r_pkg.has_value());
    ASSERT_EQ(component.pins.size(), 2U);
    const Pin& pin = component.pins[0];
    EXPECT_EQ(pin.signal_name, "RAS#");
    EXPECT_DOUBLE_EQ(pin.r_pin.value, 0.2);
    EXPECT_DOUBLE_EQ(pin.l_pin.value, 5e-9);
    EXPECT_EQ(pin.c_pin.state, CellState::na);
    EXPECT_EQ(component.pins[1].r_pin.state, CellState::missing);
}

TEST(Pins, haveNamesCutToTheLimitsOfTheVersion) {
    struct Row {
        V version;
        std::size_t pin, other;
    };
    for (const Row& row :
         {Row{V::none, 5, 20}, Row{V::v2, 5, 20}, Row{V::v3, 5, 20}, Row{V::v4, 5, 40}, Row{V::v5, 8, 40}}) {
        const std::string pin(row.pin, 'p');
        const std::string other(row.other, 's');
        OpenComponent test(row.version);
        test.pins({pin + " " + other + " " + other});
        EXPECT_EQ(test.said(), "");
        test.data(K::pin, pin + "x " + other + "y " + other + "z"); // cut to the row before, which is not told
        EXPECT_EQ(test.run.diagnostics.errors, 3);
        const Pin& cut = test.run.cmpnt.current->pins[1];
        EXPECT_EQ(cut.name, pin);
        EXPECT_EQ(cut.signal_name, other);
        EXPECT_EQ(cut.model_name, other);
    }
}

TEST(Pins, areFoundAmongManyByTheFirstOfTheirName) {
    constexpr std::size_t kPins = 5000;
    constexpr std::size_t kNames = 3000;
    OpenComponent test;
    test.pins({});
    for (std::size_t i = 0; i < kPins; ++i) {
        test.data(K::pin, std::to_string(i % kNames) + " s GND");
    }
    EXPECT_EQ(test.run.diagnostics.errors, kPins - kNames);
    const Cmpnt& component = *test.run.cmpnt.current;
    for (std::size_t i = 0; i < kNames; ++i) {
        ASSERT_EQ(findPin(component, std::to_string(i)), &component.pins[i]);
    }
    EXPECT_EQ(findPin(component, std::to_string(kNames)), nullptr);
    EXPECT_EQ(findPin(Cmpnt{}, "1"), nullptr);
}

TEST(Pins, markTheirModelsAndAreReportedOncePerName) {
    OpenComponent test(V::v3);
    constexpr std::string_view kTwenty = "12345678901234567890";
    test.addModel("buf", ModelType::io);
    test.addModel("diff", ModelType::ioDiff);
    test.addModel(kTwenty, ModelType::seriesSwitch);
    test.addModel("entry", ModelType::series);
    test.addModel("idle", ModelType::io);
    test.addSelector("sel", {"nowhere", "entry"});
    test.pins({"1 s buf", "2 s diff", "3 s 12345678901234567890x", "4 s diff", "5 s sel"});
    test.open("Second");
    test.pins({"1 s diff", "2 s sel", "3 s 12345678901234567890"});
    test.keyword(K::diffPin, "inv_pin vdiff tdelay_typ tdelay_min tdelay_max");
    test.data(K::diffPin, "1 2 NA NA");
    test.said();
    test.run.diagnostics.silence_cautions = false;

    checkCmpnts(test.run);
    EXPECT_EQ(
        test.said(),
        "ERROR - Pin '2' of Component 'Second' names 'sel', which holds a Series or Series_switch model.\n"
        "ERROR - Pin '3' of Component 'Second' names '12345678901234567890', which holds a Series or Series_switch "
        "model.\n"
        "CAUTION - Model 'diff' of Pin '2', Component 'Chip', is differential but the pin is in no Diff Pin line.\n"
        "ERROR - Pin '5' of Component 'Chip' names 'sel', which holds a Series or Series_switch model.\n");
    std::vector<std::string_view> marked;
    for (const Mdl& model : test.root.models.newestFirst()) {
        if (model.referenced) marked.push_back(model.name);
    }
    EXPECT_THAT(marked, ElementsAre(kTwenty, "diff", "buf"));
}

TEST(FinalChecks, tellEveryPairOfEqualNamesFromTheNewestOn) {
    OpenComponent test;
    test.pins({"1 s GND"});
    for (const std::string_view name : {"B", "Chip", "B", "chip", "Chip"}) {
        test.open(name);
        test.pins({"1 s GND"});
    }
    checkCmpnts(test.run);
    const auto twice = [](std::string_view name) {
        return "ERROR - Component '"s.append(name) + "' is duplicated within the .ibs file.\n";
    };
    EXPECT_EQ(test.said(), twice("Chip") + twice("Chip") + twice("B") + twice("Chip"));
}

} // namespace
} // namespace kestrel
