#pragma once

#include "report/pictures.hpp"
#include "report/tables.hpp"

namespace kestrel {

struct Mdl;
struct SubMdl;

/// Writes the rows of a ramp.
void writeRamp(CornerTable& table, const Ramp& ramp);

/// Writes the figures that follow from a model's tables: resistances, levels, edges.
void writeModelNumbers(const PartContext& part, const Mdl& model);

/// Writes the pictures of a model.
void writeModelPictures(const PartContext& part, const Mdl& model);

/// Writes the pictures of a submodel.
void writeSubmodelPictures(const PartContext& part, const SubMdl& submodel);

} // namespace kestrel
