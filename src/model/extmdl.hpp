#pragma once

#include "external/circuit.hpp"
#include "model/types.hpp"

#include <memory>
#include <string_view>

namespace kestrel {

/// Begins an "[External Model]" of the model of this name. `kept` is the one that the model has already, of which a
/// second is reported.
void openExtMdl(Context& context, std::unique_ptr<ExtCkt>& reading, const std::unique_ptr<ExtCkt>& kept,
                std::string_view model, std::string_view text);

/// Reads a line of it.
void extMdlLine(Context& context, ExtCkt& reading, std::string_view model, std::string_view text);

/// Checks the whole; the first of a model becomes the one that is kept.
void closeExtMdl(Context& context, std::unique_ptr<ExtCkt>& reading, std::unique_ptr<ExtCkt>& kept,
                 std::string_view model, ModelType type);

/// "[End External Model]".
extern const BlockEnd kExtMdlEnd;

} // namespace kestrel
