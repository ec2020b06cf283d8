#pragma once

#include "model/mdl.hpp"

#include <optional>
#include <string_view>

namespace kestrel {

struct Run;

/// Prints a block for each component of the comma-separated `selection`, or for all of them, the last-defined first,
/// when it is empty. False when a name is unknown or a component has no pins, which has been printed.
bool reportComponents(Run& run, std::string_view selection);

/// Prints a block for each model of the selection, or for all, and with `tables` its I-V and V-t tables, columns parted
/// by `delimiter`. False when a name is unknown.
bool reportModels(Run& run, std::string_view selection, bool tables, char delimiter);

/// The next name of a comma-separated list, taken off its front; nothing at its end. Empty pieces are passed over.
[[nodiscard]] std::optional<std::string_view> takePiece(std::string_view& list);

/// A model type as the reports print it.
[[nodiscard]] std::string_view reportedType(ModelType type);

} // namespace kestrel
