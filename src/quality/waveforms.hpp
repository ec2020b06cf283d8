#pragma once

#include "quality/physics.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// What the waveforms of a model measure.
namespace kestrel {

/// One step from a row to the next.
struct WaveStep {
    double volts = 0.0; ///< magnitude
    double seconds = 0.0;
};

/// A waveform in one corner. Volts and seconds.
struct WaveCorner {
    bool given = false; ///< it has two rows; nothing else counts without
    double first = 0.0;
    double last = 0.0;
    double duration = 0.0;

    [[nodiscard]] double swing() const { return last - first; }
    [[nodiscard]] double size() const { return std::fabs(swing()); }

    bool moves = false; ///< what follows is measured where the swing is more than a tenth of Vcc
    WaveStep first_step;
    WaveStep largest_step;
    double dead_time = 0.0;     ///< in which it stays near its first value
    double late_movement = 0.0; ///< volts that it goes through at its end
    Point back_from{};          ///< where it goes back from,
    Point back_to{};            ///< and where to, at most
    GivenValue rate;            ///< V/s, from 20 % to 80 % of the swing

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
[[nodiscard]] std::vector<Waveform> waveformsOf(const Mdl& model, const ModelPhysics& physics,
                                                std::vector<Point>& room);

/// The voltage to which the fixture leads in a corner.
[[nodiscard]] GivenValue fixtureVoltage(const Wvfrm& waveform, Corner corner);
/// The fixture as a load in a corner.
[[nodiscard]] std::optional<DcLoad> fixtureLoad(const Wvfrm& waveform, Corner corner);
/// The typical fixture by which a waveform is known, "50 ohm to 3.3 V"; what is not given is "?".
[[nodiscard]] std::string fixtureText(const Wvfrm& waveform);
/// "[Rising Waveform] with 50 ohm to 3.3 V".
[[nodiscard]] std::string waveformText(const Waveform& waveform);
[[nodiscard]] std::string_view edgeWord(Edge edge);

} // namespace kestrel
