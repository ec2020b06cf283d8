#include "quality/checks.hpp"

#include "quality/advised.hpp"
#include "quality/edges.hpp"
#include "quality/iv_tables.hpp"

#include <array>

namespace kestrel {

namespace {

constexpr auto kChecks = std::to_array<Check>({
    // magnitudes and order
    // I-V tables
    {201, "an I-V table ends before reflections do", checkTableSpan},
    {202, "the current of a state falls as the voltage rises", checkRisingCurrent},
    {203, "a driver table carries current at its own rail", checkCurrentAtRail},
    {204, "the clamps carry current between the supplies", checkOffCurrent},
    {205, "a clamp is counted twice", checkClampsCountedOnce},
    {206, "the corners of a driver table are equal or out of order", checkTableCorners},
    {207, "the rows of a driver table lie too far apart", checkTableSteps},
    {208, "the currents of a driver table are rounded to stairs", checkStairs},
    {209, "a driver is weaker or stronger than drivers are", checkDriveStrength},
    // waveforms and ramps
    {301, "the ends of a waveform do not agree with the I-V tables", checkWaveformEnds},
    {302, "an edge has no waveforms with two different loads", checkTwoLoads},
    {303, "the waveforms of an edge begin with dead time", checkDeadTime},
    {304, "a waveform is not settled at its end", checkSettled},
    {305, "the rows of a waveform lie too far apart", checkWaveformSteps},
    {306, "a waveform does not move", checkMovement},
    {307, "rising and falling waveforms have different levels", checkLevelsOfEdges},
    {308, "the corners of a waveform are out of order", checkWaveformCorners},
    {309, "the ramp and a waveform have different rates", checkRampRate},
    {310, "the dV of a ramp is not that of the I-V tables", checkRampSwing},
    {311, "the corners of a ramp are out of order", checkRampCorners},
    {312, "a ramp is slower or faster than edges are", checkRampSlew},
    {313, "a waveform goes back on its way", checkWayBack},
    // structure
});

consteval bool codesAscend() {
    for (std::size_t i = 1; i < kChecks.size(); ++i)
        if (kChecks[i].code <= kChecks[i - 1].code) return false;
    return true;
}
static_assert(codesAscend());

} // namespace

std::span<const Check> adviceChecks() { return kChecks; }

std::vector<Advice> adviseOn(const AdvisedFile& file) {
    AdviceList list;
    for (const Check& check : kChecks)
        if (const auto* const run = std::get_if<CheckOfFile>(&check.run)) (*run)(file, list);
    AdviceRoom room;
    for (const Mdl* const model : file.models) {
        const AdvisedModel advised(*model, file, room);
        for (const Check& check : kChecks)
            if (const auto* const run = std::get_if<CheckOfModel>(&check.run)) (*run)(advised, list);
    }
    return list.takeSorted();
}

} // namespace kestrel
