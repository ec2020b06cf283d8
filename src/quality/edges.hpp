#pragma once

#include "quality/advice.hpp"

/// The checks of waveforms and ramps of drivers: one finding for each model, at the waveform or at the ramp.
namespace kestrel {

struct AdvisedModel;

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
