#pragma once

#include "model/mdl.hpp"
#include "reader/line_form.hpp"

#include <type_traits>

/// What the files of the model reader share among themselves.
namespace kestrel {

/// What `Field` holds, in whichever of the parts has it.
template <auto Field, class Part, class... Others>
[[nodiscard]] const auto& fieldOf(const Part& part, const Others&... others) {
    if constexpr (std::is_invocable_v<decltype(Field), const Part&>) {
        return part.*Field;
    } else {
        return fieldOf<Field>(others...);
    }
}

/// True when the model has what `Field` names or holds: a range, a value, a table, at least one entry, a flag.
template <auto Field> [[nodiscard]] bool isPresent(const Mdl& model) {
    if constexpr (std::is_same_v<decltype(Field), MdlRange>) {
        return findRange(model, Field) != nullptr;
    } else {
        const auto& value = fieldOf<Field>(model, *model.values, *model.tables);
        if constexpr (requires { value.empty(); }) {
            return !value.empty();
        } else {
            return static_cast<bool>(value);
        }
    }
}
using Presence = bool (*)(const Mdl&);

/// How a model's own lines and keywords give ranges.
inline constexpr RangeLineRules kModelRangeRules{CheckedMessage<>(178), false};

/// Reports at the line that `name` was given before.
void reportAlreadyDefined(Context& context, const Mdl& model, std::string_view name);

/// Reads the model's name from its keyword line.
void readModelName(Context& context, MdlState& state, Mdl& model, std::string_view text);

/// Reads a line "Model_type", "Vinl", "C_comp" and the like.
void readSubparameter(Context& context, Mdl& model, std::string_view text);

/// Reads a keyword such as "[Voltage Range]" whose range is on its own line.
void readRangeKeyword(Context& context, Mdl& model, const Line& line);

/// Reports "[Model Spec]" behind a keyword that it should precede.
void checkModelSpecOrder(Context& context, const Mdl& model);

/// Reports "[Receiver Thresholds]" behind a keyword that it should precede, or in a model that receives nothing.
void checkReceiverThresholdsOrder(Context& context, const Mdl& model);

/// Judges the keyword line "[Add Submodel]".
void openAddSubmodel(Context& context, Mdl& model, std::string_view text);

/// Reads a row of "[Add Submodel]".
void readAddSubmodel(Context& context, Mdl& model, std::string_view text);

/// The section that series keywords and their lines go to; opened when none is, which a "Series_switch" model should
/// have done. Null, with an error, when the model is no series model.
SeriesBlock* currentSeriesBlock(Context& context, MdlState& state, Mdl& model);

/// Once the subparameters are read: the type is there, the measuring voltage lies between the thresholds. No line.
void checkSubparameters(Context& context, const Mdl& model);

/// Once the model is read: what it lacks and what its type forbids. No line.
void checkModel(Context& context, const Mdl& model);

} // namespace kestrel
