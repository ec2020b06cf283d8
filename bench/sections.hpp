#pragma once

#include "text_writer.hpp"

#include <cstddef>
#include <string_view>

namespace kestrel::bench {

/// Writes a component up to its "[Pin]" header line; `package_model` may be empty.
void writeComponent(TextWriter& writer, std::string_view name, std::string_view package_model = {});

/// Writes one row of the "[Pin]" table.
void writePin(TextWriter& writer, std::string_view pin, std::string_view model);

/// Writes an output model with two short I-V tables and a ramp, or an input model without any.
void writeSmallModel(TextWriter& writer, std::string_view name, std::string_view type);

/// Fillers for SampleKind::write.
void writeComponents(TextWriter& writer, std::size_t count);
void writeOneComponent(TextWriter& writer, std::size_t pins);
void writeModels(TextWriter& writer, std::size_t count);
void writeSmallModels(TextWriter& writer, std::size_t count);
void writeSelectors(TextWriter& writer, std::size_t count);
void writeSubmodels(TextWriter& writer, std::size_t count);
void writeSchedules(TextWriter& writer, std::size_t count);
void writeFullMatrices(TextWriter& writer, std::size_t pins);
void writeSparseMatrices(TextWriter& writer, std::size_t pins);

/// A parameter file with branches of 20 parameters.
void writeParameters(TextWriter& writer, std::size_t count);

} // namespace kestrel::bench
