// Levels and currents of models whose solutions are known by hand.

#include "quality/physics.hpp"

#include "files.hpp"
#include "quality/waveforms.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// A model of a file that has nothing else, and what it means.
struct OneModel {
    explicit OneModel(const std::string& lines) {
        files.add("m.ibs", "[Model] m\n" + lines, "5.1").check("m.ibs");
        physics.emplace(model(), room);
    }
    [[nodiscard]] const Mdl& model() const { return *files.root().models.find("m"); }

    [[nodiscard]] std::optional<double> level(DriveState state, DcLoad load, Corner corner = Corner::typ) const {
        return physics->level(state, corner, load);
    }
    [[nodiscard]] std::optional<double> open(DriveState state, Corner corner = Corner::typ) const {
        return physics->levelWithoutLoad(state, corner);
    }

    Files files;
    std::vector<Point> room;
    std::optional<ModelPhysics> physics;
};

void expectLevel(const std::optional<double>& found, double expected) {
    ASSERT_TRUE(found.has_value());
    EXPECT_NEAR(*found, expected, 1e-9 * std::fmax(std::fabs(expected), 1.0));
}

constexpr const char* kSupply = "[Voltage Range] 3.3 3.0 3.6\n";
constexpr const char* kPulldown25 = "[Pulldown]\n-3.3 -132m -132m -132m\n6.6 264m 264m 264m\n";
constexpr const char* kPullup25 = "[Pullup]\n-3.3 132m 132m 132m\n6.6 -264m -264m -264m\n";

TEST(Physics, linearTablesDivideTheLoad) {
    const OneModel push_pull(std::string("Model_type Output\n") + kSupply + kPulldown25 + kPullup25);
    // 25 ohm to 0 V against 50 ohm to 3.3 V, and the other way round; each corner has its own supply.
    expectLevel(push_pull.level(DriveState::low, {50.0, 3.3}), 1.1);
    expectLevel(push_pull.level(DriveState::high, {50.0, 0.0}), 2.2);
    expectLevel(push_pull.level(DriveState::high, {50.0, 0.0}, Corner::min), 2.0);
    expectLevel(push_pull.level(DriveState::high, {50.0, 0.0}, Corner::max), 2.4);
    expectLevel(push_pull.open(DriveState::low), 0.0);
    expectLevel(push_pull.open(DriveState::high), 3.3);
    // A load below the rail pulls current out of the pulldown: 25 of the 75 ohm.
    expectLevel(push_pull.level(DriveState::low, {50.0, -3.0}), -1.0);
    EXPECT_NEAR(push_pull.physics->current(DriveState::low)->at(-1.0), -0.04, 1e-12);
    EXPECT_TRUE(push_pull.physics->isPushPull());
    EXPECT_TRUE(push_pull.physics->isAtRail(DriveState::low) && push_pull.physics->isAtRail(DriveState::high));
    EXPECT_FALSE(push_pull.open(DriveState::off)); // nothing there, so no level either
}

TEST(Physics, referencesNeedNotBeZeroAndVcc) {
    const OneModel both_signs(
        "Model_type 3-state\n[Pullup Reference] 5 NA 5\n[Pulldown Reference] -5 -5 NA\n"
        "[Pulldown]\n-10 -500m -500m -500m\n20 1 1 1\n[Pullup]\n-10 500m 500m 500m\n20 -1 -1 -1\n");
    // 20 ohm from a rail, 30 ohm to the load.
    expectLevel(both_signs.level(DriveState::low, {30.0, 0.0}), -3.0);
    expectLevel(both_signs.level(DriveState::high, {30.0, 0.0}), 3.0);
    expectLevel(both_signs.level(DriveState::low, {30.0, -10.0}), -7.0);
    EXPECT_DOUBLE_EQ(*both_signs.physics->vcc(), 10.0);
    // A corner that a keyword gives as "NA" has no supply.
    EXPECT_FALSE(both_signs.physics->vcc(Corner::min));
    EXPECT_FALSE(both_signs.physics->vcc(Corner::max));
    EXPECT_FALSE(both_signs.level(DriveState::low, {30.0, 0.0}, Corner::min));
}

TEST(Physics, aDiodeBendsTheSolution) {
    // 3 ohm below -0.7 V: (V + 0.7) / 3 = (-2 - V) / 50.
    const OneModel receiver(std::string("Model_type Input\n") + kSupply +
                            "[GND Clamp]\n-1 -100m -100m -100m\n-0.7 0 0 0\n3.3 0 0 0\n");
    expectLevel(receiver.level(DriveState::off, {50.0, -2.0}), -41.0 / 53.0);
    expectLevel(receiver.level(DriveState::off, {50.0, 1.5}), 1.5);
    // Below the table its outer slope goes on: (V + 0.7) / 3 = (-7 - V) / 2.
    expectLevel(receiver.level(DriveState::off, {2.0, -7.0}), -22.4 / 5.0);
    EXPECT_FALSE(receiver.physics->isDriver());
}

TEST(Physics, aClampHoldsItsLastCurrent) {
    const OneModel leaky(std::string("Model_type Input\n") + kSupply + "[GND Clamp]\n-1 -20m -20m -20m\n0 1m 1m 1m\n");
    expectLevel(leaky.level(DriveState::off, {1000.0, 3.3}), 2.3);
    // The tables of drivers go on with their slope, here 1 mA for 100 mV.
    const OneModel driver(std::string("Model_type Output\n") + kSupply + "[Pulldown]\n0 0 0 0\n0.1 1m 1m 1m\n");
    expectLevel(driver.level(DriveState::low, {100.0, 3.3}), 1.65);
}

TEST(Physics, openTypesHaveOneDrivenState) {
    const OneModel drain(std::string("Model_type Open_drain\n") + kSupply + kPulldown25 + kPullup25);
    expectLevel(drain.level(DriveState::low, {50.0, 1.5}), 0.5);
    expectLevel(drain.level(DriveState::high, {50.0, 1.5}), 1.5); // the pullup is not asked
    EXPECT_TRUE(drain.physics->drivesLow() && !drain.physics->drivesHigh());
    EXPECT_DOUBLE_EQ(*drain.physics->farRail(Edge::rising), 3.3);

    const OneModel source(std::string("Model_type I/O_open_source\n") + kSupply + kPulldown25 + kPullup25);
    expectLevel(source.level(DriveState::low, {50.0, 1.5}), 1.5);
    expectLevel(source.level(DriveState::high, {50.0, 0.0}), 2.2);
    EXPECT_DOUBLE_EQ(*source.physics->farRail(Edge::falling), 0.0);

    // A pullup of zeros makes an open drain of an output.
    const OneModel zeros(std::string("Model_type Output\n") + kSupply + kPulldown25 + "[Pullup]\n-3 0 0 0\n6 0 0 0\n");
    EXPECT_TRUE(zeros.physics->drivesLow() && !zeros.physics->drivesHigh());
}

TEST(Physics, terminatorsBelongToAllStates) {
    const std::string divider =
        std::string("Model_type Terminator\n") + kSupply + "[Rgnd] 100 NA 100\n[Rpower] 200 200 200\n";
    const OneModel split(divider);
    expectLevel(split.open(DriveState::off), 1.1);
    // 66.67 ohm to 1.1 V against 50 ohm to 0 V.
    expectLevel(split.level(DriveState::off, {50.0, 0.0}), 3.3 / 7.0);
    expectLevel(split.open(DriveState::off, Corner::max), 1.2);
    EXPECT_EQ(split.physics->current(DriveState::off, Corner::min), nullptr); // Rgnd is "NA" there
    EXPECT_EQ(
        OneModel("Model_type Terminator\n[Voltage Range] 3.3 3 3.6\n[Rgnd] 0 0 0\n").physics->current(DriveState::off),
        nullptr);
}

TEST(Physics, whatIsMissingHasNoCurrent) {
    const OneModel gaps(std::string("Model_type Output\n") + kSupply +
                        "[Pulldown]\n-3.3 -132m NA -132m\n0 0 0 0\n6.6 264m NA 264m\n" + kPullup25);
    EXPECT_NE(gaps.physics->current(DriveState::low), nullptr);
    EXPECT_EQ(gaps.physics->current(DriveState::low, Corner::min), nullptr);
    EXPECT_NE(gaps.physics->current(DriveState::high, Corner::min), nullptr);
    // Clamp references stand for the supply of a receiver that has none, not for that of a driver.
    const std::string clamps = "[POWER Clamp Reference] 2.5 2.3 2.7\n[GND Clamp Reference] 0.5 0.5 0.5\n";
    EXPECT_DOUBLE_EQ(*OneModel("Model_type Input\n" + clamps).physics->vcc(), 2.0);
    EXPECT_FALSE(OneModel("Model_type Output\n" + clamps).physics->vcc());
    EXPECT_FALSE(OneModel("Model_type Output\n[Voltage Range] 0 0 0\n").physics->vcc());
    EXPECT_FALSE(OneModel("Model_type Output\n[Voltage Range] -3.3 -3 -3.6\n").physics->vcc());
    EXPECT_FALSE(OneModel("Model_type Output\n[Voltage Range] 1e400 1e400 1e400\n").physics->vcc());
}

TEST(Physics, ofSeveralSolutionsHalvingFindsOne) {
    const std::string supply = "Model_type Output\n[Voltage Range] 4 4 4\n";
    // Zero at -3, 3 and 7 V. The range is -4 to 8 V; the current in its middle says which part remains.
    const OneModel down(supply +
                        "[Pulldown]\n-4 -4m NA NA\n-2 4m NA NA\n2 4m NA NA\n4 -4m NA NA\n6 -4m NA NA\n8 4m NA NA\n");
    expectLevel(down.open(DriveState::low), -3.0);
    const OneModel up(supply +
                      "[Pulldown]\n-4 -4m NA NA\n-2 4m NA NA\n0 4m NA NA\n1 -4m NA NA\n6 -4m NA NA\n8 4m NA NA\n");
    expectLevel(up.open(DriveState::low), 7.0);
    // Nothing below zero, or nothing above it: no solution.
    EXPECT_FALSE(OneModel(supply + "[Pulldown]\n-4 1m NA NA\n8 4m NA NA\n").open(DriveState::low));
    EXPECT_FALSE(OneModel(supply + "[Pulldown]\n-4 4m NA NA\n8 -4m NA NA\n").open(DriveState::low));
}

/// The table that rows of a pulldown make.
struct TableOf {
    explicit TableOf(const std::string& rows)
        : one(std::string("Model_type Output\n") + kSupply + "[Pulldown]\n" + rows) {}
    [[nodiscard]] const IvTable& table() const { return one.physics->table(TableKind::pulldown); }
    OneModel one;
};

TEST(IvTable, isOrderedAndLinear) {
    const TableOf downward("2 20m NA NA\n1 10m NA NA\n0 0 NA NA\n-1 -30m NA NA\n");
    EXPECT_DOUBLE_EQ(downward.table().at(0.5), 5e-3);
    EXPECT_DOUBLE_EQ(downward.table().at(-0.5), -15e-3);
    EXPECT_DOUBLE_EQ(downward.table().at(1.0), 10e-3);
    EXPECT_DOUBLE_EQ(downward.table().at(4.0), 40e-3);
    EXPECT_DOUBLE_EQ(downward.table().at(-2.0), -60e-3);
    EXPECT_DOUBLE_EQ(downward.table().largestBetween(-0.5, 0.5), 15e-3);
}

TEST(IvTable, takesTheLaterOfEqualVoltagesAndSkipsGaps) {
    const TableOf equal("0 0 NA NA\n1 10m NA NA\n1 20m NA NA\n2 30m NA NA\n");
    EXPECT_DOUBLE_EQ(equal.table().at(1.0), 20e-3);
    EXPECT_DOUBLE_EQ(equal.table().at(0.5), 10e-3);
    const TableOf gap("0 0 NA NA\n1 NA 1m NA\n2 30m NA NA\n1e400 1 NA NA\n3 1e400 NA NA\n");
    EXPECT_DOUBLE_EQ(gap.table().at(1.0), 15e-3);
    EXPECT_EQ(gap.table().points().size(), 2U);
    EXPECT_FALSE(TableOf("1 10m NA NA\n1 20m NA NA\n").table().hasData());
    EXPECT_FALSE(TableOf("1 10m NA NA\n").table().hasData());
}

TEST(StateCurrent, isSweptOverAllRows) {
    const OneModel one(std::string("Model_type Input\n") + kSupply +
                       "[GND Clamp]\n-3.3 -1 -1 -1\n-0.7 0 0 0\n3.3 0 0 0\n"
                       "[POWER Clamp]\n-3.3 1 1 1\n-0.7 0 0 0\n0 0 0 0\n[Rgnd] 100 100 100\n");
    std::vector<double> voltages;
    one.physics->current(DriveState::off)->sweep(-1.0, 5.0, [&](double voltage, double current) {
        voltages.push_back(voltage);
        EXPECT_NEAR(current, one.physics->current(DriveState::off)->at(voltage), 1e-12) << voltage;
    });
    const std::vector<double> expected{-1.0, -0.7, 3.3, 4.0, 5.0}; // the rail is a row of both clamps
    ASSERT_EQ(voltages.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(voltages[i], expected[i], 1e-12);
}

TEST(TypicalValues, ofASpecComeFirst) {
    const OneModel one(
        "Model_type I/O\nVinl = 0.8\nVinh = 2.0\nVmeas = 1.5\nRref = 50\nVref = 0\n[Model Spec]\nVinh 2.2 NA NA\nVref NA 1 2\n");
    const TypicalValues values = typicalValuesOf(one.model());
    EXPECT_DOUBLE_EQ(*values.vinl, 0.8);
    EXPECT_DOUBLE_EQ(*values.vinh, 2.2);
    EXPECT_DOUBLE_EQ(*values.vref, 0.0); // that of the spec is no number
    EXPECT_DOUBLE_EQ(*values.rref, 50.0);
    const TypicalValues zeros = typicalValuesOf(OneModel("Model_type I/O\nVinh = x\nVmeas = x\nRref = -5\n").model());
    EXPECT_FALSE(zeros.vinh || zeros.vmeas || zeros.rref || zeros.vinl || zeros.vref);
}

TEST(Waveform, isMeasured) {
    // 0 V until 1 ns, over to 2 V in 1 ns with a step back, 10 ns in all.
    const std::vector<Point> points{{0.0, 0.0},  {1e-9, 0.0}, {1.25e-9, 1.0}, {1.5e-9, 0.5},
                                    {2e-9, 2.0}, {9e-9, 2.0}, {10e-9, 2.1}};
    const WaveCorner wave = measureWave(points, 3.3);
    EXPECT_TRUE(wave.moves);
    EXPECT_TRUE(wave.isCoarse()); // a step of 1.5 V of 2.1 V
    EXPECT_NEAR(wave.dead_time, 1e-9 + 0.25e-9 * 0.021, 1e-18);
    EXPECT_NEAR(wave.largest_step.volts, 1.5, 1e-12);
    EXPECT_NEAR(wave.back(), 0.5, 1e-12);
    EXPECT_NEAR(wave.back_from.x, 1.25e-9, 1e-18);
    // From 9.5 ns on, where it is at 2.05 V.
    EXPECT_NEAR(wave.late_movement, 0.05, 1e-9);
    // 20 % is 0.42 V, crossed upward once at 1.105 ns; the step back ends above it. 80 % is 1.68 V.
    EXPECT_NEAR(*wave.rate, 0.6 * 2.1 / (1.5e-9 + 0.5e-9 * 1.18 / 1.5 - 1.105e-9), 1.0);
}

TEST(Waveform, withoutMovementHasLevelsOnly) {
    const WaveCorner flat = measureWave(std::vector<Point>{{0.0, 1.0}, {1e-9, 1.1}}, 3.3);
    EXPECT_TRUE(flat.given && !flat.moves && !flat.rate);
    EXPECT_FALSE(measureWave(std::vector<Point>{{0.0, 1.0}}, 3.3).given);
    EXPECT_FALSE(measureWave(std::vector<Point>{{0.0, 0.0}, {1e-9, 3.0}}, GivenValue()).moves);
    // A step in no time has no rate.
    const WaveCorner step = measureWave(std::vector<Point>{{0.0, 0.0}, {1e-9, 0.0}, {1e-9, 3.0}, {2e-9, 3.0}}, 3.3);
    EXPECT_TRUE(step.moves && step.isCoarse() && !step.rate);
}

} // namespace
} // namespace kestrel
