#pragma once

#include "quality/advice.hpp"

/// The checks of waveforms and ramps.
namespace kestrel {

struct AdvisedModel;

/// The slew of a ramp, typical, against what edges have.
void checkRampSlew(const AdvisedModel& advised, AdviceList& list);

} // namespace kestrel
