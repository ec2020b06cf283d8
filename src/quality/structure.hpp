#pragma once

#include "quality/advice.hpp"

/// The checks of how a file is put together.
namespace kestrel {

struct AdvisedFile;

/// Pairs of pins whose models differ in type.
void checkPairTypes(const AdvisedFile& file, AdviceList& list);

/// A header that does not say where or when the model was made.
void checkOrigin(const AdvisedFile& file, AdviceList& list);

/// A date that is none.
void checkDate(const AdvisedFile& file, AdviceList& list);

/// A comment character of the file's own.
void checkCommentChar(const AdvisedFile& file, AdviceList& list);

/// Drivers without waveforms.
void checkWaveformsGiven(const AdvisedFile& file, AdviceList& list);

/// Components without any package.
void checkPackageGiven(const AdvisedFile& file, AdviceList& list);

/// Models that nothing leads to.
void checkModelsUsed(const AdvisedFile& file, AdviceList& list);

/// Converters whose levels are the wrong way round.
void checkConverterLevels(const AdvisedFile& file, AdviceList& list);

/// External models that lack a port of their model's type.
void checkExternalPorts(const AdvisedFile& file, AdviceList& list);

} // namespace kestrel
