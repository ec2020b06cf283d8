#pragma once

#include "quality/physics.hpp"
#include "quality/worst.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the waveforms of a model measure.
namespace kestrel {

/// One step from a row to the next.
struct WaveStep {
    double volts = 0.0; ///< magnitude
    double seconds = 0.0;
    double end = 0.0; ///< the time of the second row
};

/// The middle of an edge: from the last crossing of 20 % of the swing ahead of the first one of 80 % to that.
struct WaveMiddle {
    Point low;
    Point high;
};

/// A waveform in one corner. Volts and seconds.
struct WaveCorner {
    bool given = false; ///< it has two rows; nothing else counts without
    double first = 0.0;
    double last = 0.0;
    double begin = 0.0; ///< the time of the first value
    double duration = 0.0;

    [[nodiscard]] double end() const { return begin + duration; }
    [[nodiscard]] double swing() const { return last - first; }
    [[nodiscard]] double size() const { return std::fabs(swing()); }

    bool moves = false; ///< what follows is measured where the swing is more than a tenth of Vcc
    WaveStep first_step;
    WaveStep largest_step;
    double dead_time = 0.0;     ///< in which it stays near its first value
    double late_movement = 0.0; ///< volts that it goes through at its end
    double late_time = 0.0;     ///< when its end begins
    Point back_from{};          ///< where it goes back from,
    Point back_to{};            ///< and where to, at most
    std::optional<WaveMiddle> middle;
    GivenValue rate; ///< V/s, from 20 % to 80 % of the swing

    [[nodiscard]] double back() const { return std::fabs(back_to.y - back_from.y); }
    /// The rows are too far apart for the edge to be seen.
    [[nodiscard]] bool isCoarse() const {
        constexpr double kCoarse = 0.6;
        return largest_step.volts > kCoarse * size();
    }
};

/// Measures ordered points; `vcc` says what a movement is.
[[nodiscard]] WaveCorner measureWave(std::span<const Point> points, GivenValue vcc);

/// A waveform of a model.
struct Waveform {
    const Wvfrm* record;
    Edge edge;
    PerCorner<WaveCorner> corners;
};

/// The waveforms of a model in the order of the file. `room` is for points in between.
[[nodiscard]] std::vector<Waveform> waveformsOf(const Mdl& model, const ModelPhysics& physics, PointRoom& room);

/// The load of a ramp in ohms; nothing where its line gives none that can be used.
[[nodiscard]] GivenValue rampLoad(const Ramp& ramp);

/// The part of a swing that a ramp gives: from 20 % to 80 %.
inline constexpr double kRampPart = 0.6;
/// The typical levels from which to which an edge goes with a load; nothing where one of them is not known.
[[nodiscard]] std::optional<std::pair<double, double>> levelsOfEdge(const ModelPhysics& physics, Edge edge,
                                                                    const DcLoad& load);
/// How far the typical dV of a ramp is from its part of the swing with a load, as a part of that.
[[nodiscard]] std::optional<double> rampDeviation(const ModelPhysics& physics, Edge edge, double dv,
                                                  const DcLoad& load);
/// The loads that the ramp of an edge may have: its own to the far rail; of a model that drives one way only, which is
/// often measured with the pull-up of its timing load, also its own or Rref to Vref, and Rref to the far rail.
[[nodiscard]] std::vector<DcLoad> loadsOfRamp(const Mdl& model, const ModelPhysics& physics, Edge edge);
/// The fixture leads to the far rail of the waveform's edge.
[[nodiscard]] bool leadsToFarRail(const Waveform& waveform, Corner corner, const ModelPhysics& physics);
/// The fixture is the load for which the ramp of the waveform's edge is given: its resistance and nothing else, to the
/// far rail.
[[nodiscard]] bool hasLoadOfRamp(const Waveform& waveform, Corner corner, const Ramp& ramp,
                                 const ModelPhysics& physics);

/// The voltage to which the fixture leads in a corner.
[[nodiscard]] GivenValue fixtureVoltage(const Wvfrm& waveform, Corner corner);
/// The fixture as a load in a corner.
[[nodiscard]] std::optional<DcLoad> fixtureLoad(const Wvfrm& waveform, Corner corner);
/// The typical fixture by which a waveform is known, "50 ohm to 3.3 V"; what is not given is "?".
[[nodiscard]] std::string fixtureText(const Wvfrm& waveform);
/// "[Rising Waveform] with 50 ohm to 3.3 V".
[[nodiscard]] std::string waveformText(const Waveform& waveform);
[[nodiscard]] std::string_view edgeWord(Edge edge);

/// Levels are different that differ by this part of the swing, but by no less than that.
inline constexpr double kLevelOfSwing = 0.05;
[[nodiscard]] inline double leastDifference(double vcc) {
    constexpr double kLeast = 10e-3;
    constexpr double kLeastOfVcc = 0.005;
    return std::fmax(kLeast, kLeastOfVcc * vcc);
}

/// An end of a waveform that is not at the level that the tables give.
struct EndDifference {
    const Waveform* waveform;
    Corner corner;
    bool at_end;
    double level;     ///< of the waveform
    double of_tables; ///< what the I-V tables give with the fixture
};

/// The ends of all waveforms that have a level by the tables.
struct EndComparison {
    std::size_t compared = 0;
    Worst<EndDifference> differences{};

    [[nodiscard]] bool allAgree() const { return compared != 0 && !differences; }
};
[[nodiscard]] EndComparison compareEnds(const ModelPhysics& physics, const std::vector<Waveform>& waveforms);

} // namespace kestrel
