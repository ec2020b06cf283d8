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

/// The order of the corners of packages' values, and of models' resistors and supplies.
void checkOrder(const AdvisedFile& file, AdviceList& list);

/// The temperatures of a model.
void checkTemperatures(const AdvisedModel& advised, AdviceList& list);

/// The supply of a model against what supplies are.
void checkSupply(const AdvisedModel& advised, AdviceList& list);

/// The thresholds of a receiver against each other and its supplies.
void checkThresholdOrder(const AdvisedModel& advised, AdviceList& list);

/// Whether a driver's output crosses the voltage at which it is measured.
void checkMeasuredLevel(const AdvisedModel& advised, AdviceList& list);

/// The cautions that are silent elsewhere: thresholds and types of models, pins of differential models.
void checkCautions(const AdvisedFile& file, AdviceList& list);

} // namespace kestrel
