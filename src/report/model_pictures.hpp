#pragma once

#include "report/pictures.hpp"
#include "report/tables.hpp"

namespace kestrel {

struct Mdl;
struct SubMdl;
struct TestData;

/// Writes the rows of a ramp.
void writeRamp(CornerTable& table, const Ramp& ramp);

/// Writes what follows from a model's tables: the figures (resistances, levels, edges) into the element "values", which
/// it ends, then the pictures.
void writeModelTables(const PartContext& part, const Mdl& model);

/// Writes the pictures of a submodel.
void writeSubmodelPictures(const PartContext& part, const SubMdl& submodel);

/// Writes the pictures of the waveforms of test data.
void writeGoldenWaveforms(const PartContext& part, const TestData& data);

} // namespace kestrel
