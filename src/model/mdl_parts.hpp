#pragma once

#include "model/mdl.hpp"
#include "reader/line_form.hpp"

/// What the files of the model reader share among themselves.
namespace kestrel {

/// True when the model has given what `Field` holds: a value, a table, at least one entry, a flag.
template <auto Field> [[nodiscard]] bool isPresent(const Mdl& model) {
    const auto& value = model.*Field;
    if constexpr (requires { value.empty(); }) {
        return !value.empty();
    } else {
        return static_cast<bool>(value);
    }
}
using Presence = bool (*)(const Mdl&);

/// How a model's own lines and keywords give ranges.
inline constexpr RangeLineRules kModelRangeRules{CheckedMessage<>(178), false};

/// Reports at the line that `name` was given before.
void reportAlreadyDefined(Context& context, const Mdl& model, std::string_view name);

/// Reads the model's name from its keyword line. Reports 128 to 131.
void readModelName(Run& run, Mdl& model, std::string_view text);

/// Reads a line "Model_type", "Vinl", "C_comp" and the like.
void readSubparameter(Context& context, Mdl& model, std::string_view text);

/// Reads a keyword such as "[Voltage Range]" whose range is on its own line.
void readRangeKeyword(Context& context, Mdl& model, const Line& line);

/// Reports "[Model Spec]" behind a keyword that it should precede (116).
void checkModelSpecOrder(Run& run, const Mdl& model);

/// Reports "[Receiver Thresholds]" behind a keyword that it should precede (120), or in a model that receives nothing
/// (117).
void checkReceiverThresholdsOrder(Run& run, const Mdl& model);

/// Judges the keyword line "[Add Submodel]". Reports 137, 208, 209.
void openAddSubmodel(Run& run, Mdl& model, std::string_view text);

/// Reads a row of "[Add Submodel]". Reports 136, 158, 210 to 217.
void readAddSubmodel(Run& run, Mdl& model, std::string_view text);

/// Once the subparameters are read: the type is there (180), the measuring voltage lies between the thresholds (182,
/// 183). No line.
void checkSubparameters(Run& run, const Mdl& model);

/// Once the model is read: what it lacks and what its type forbids (181, 184 to 202). No line.
void checkModel(Run& run, const Mdl& model);

} // namespace kestrel
