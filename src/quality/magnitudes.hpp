#pragma once

#include "quality/advice.hpp"

/// The checks of magnitudes and of the order of corners.
namespace kestrel {

struct AdvisedFile;
struct AdvisedModel;

/// The capacitance of a model, typical, against that of dies.
void checkDieCapacitance(const AdvisedModel& advised, AdviceList& list);

/// The typical values of components' packages against what packages have.
void checkPackageValues(const AdvisedFile& file, AdviceList& list);

/// The same for the values of pins.
void checkPinValues(const AdvisedFile& file, AdviceList& list);

/// The order of the corners of a package's values.
void checkPackageOrder(const AdvisedFile& file, AdviceList& list);

/// The order of the corners of a model's resistors and supplies.
void checkRangeOrder(const AdvisedModel& advised, AdviceList& list);

/// The temperatures of a model.
void checkTemperatures(const AdvisedModel& advised, AdviceList& list);

/// The supply of a model against what supplies are.
void checkSupply(const AdvisedModel& advised, AdviceList& list);

/// The thresholds of a receiver against each other and its supplies.
void checkThresholdOrder(const AdvisedModel& advised, AdviceList& list);

/// Whether a driver's output crosses the voltage at which it is measured.
void checkMeasuredLevel(const AdvisedModel& advised, AdviceList& list);

/// What else is silent about the thresholds and the type of a model, and about its pins.
void checkCautionsOfModels(const AdvisedModel& advised, AdviceList& list);
void checkCautionsOfPins(const AdvisedFile& file, AdviceList& list);

} // namespace kestrel
