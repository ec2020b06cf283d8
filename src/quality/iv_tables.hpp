#pragma once

#include "quality/advice.hpp"

/// The checks of I-V tables. What is about one table is said at its line, the rest at the model's.
namespace kestrel {

struct AdvisedModel;

void checkTableSpan(const AdvisedModel& advised, AdviceList& list);
void checkRisingCurrent(const AdvisedModel& advised, AdviceList& list);
void checkCurrentAtRail(const AdvisedModel& advised, AdviceList& list);
void checkOffCurrent(const AdvisedModel& advised, AdviceList& list);
void checkClampsCountedOnce(const AdvisedModel& advised, AdviceList& list);
void checkTableCorners(const AdvisedModel& advised, AdviceList& list);
void checkTableSteps(const AdvisedModel& advised, AdviceList& list);
void checkStairs(const AdvisedModel& advised, AdviceList& list);
void checkDriveStrength(const AdvisedModel& advised, AdviceList& list);

} // namespace kestrel
