#pragma once

#include "quality/advice.hpp"
#include "quality/waveforms.hpp"
#include "quality/worst.hpp"

#include <cstddef>

/// The checks of waveforms and ramps of drivers: one finding for each model, at the waveform or at the ramp.
namespace kestrel {

struct AdvisedModel;

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
[[nodiscard]] EndComparison compareEnds(const AdvisedModel& advised);

void checkWaveformEnds(const AdvisedModel& advised, AdviceList& list);
void checkTwoLoads(const AdvisedModel& advised, AdviceList& list);
void checkDeadTime(const AdvisedModel& advised, AdviceList& list);
void checkSettled(const AdvisedModel& advised, AdviceList& list);
void checkWaveformSteps(const AdvisedModel& advised, AdviceList& list);
void checkMovement(const AdvisedModel& advised, AdviceList& list);
void checkLevelsOfEdges(const AdvisedModel& advised, AdviceList& list);
void checkWaveformCorners(const AdvisedModel& advised, AdviceList& list);
void checkRampRate(const AdvisedModel& advised, AdviceList& list);
void checkRampSwing(const AdvisedModel& advised, AdviceList& list);
void checkRampCorners(const AdvisedModel& advised, AdviceList& list);
void checkRampSlew(const AdvisedModel& advised, AdviceList& list);
void checkWayBack(const AdvisedModel& advised, AdviceList& list);

} // namespace kestrel
