#pragma once

#include "ibis/run.hpp"
#include "model/extmdl.hpp"

/// The blocks of a model in the form that the model reader takes.
namespace kestrel {

template <const BlockEnd& End, auto Open, auto DataLine, auto Close>
constexpr Block<Mdl> mdlBlock(KeywordCode begin, KeywordCode end) {
    return {begin,
            end,
            {},
            Open,
            DataLine,
            Close,
            [](Run& run, std::string_view text) { End.text_behind(run, text); },
            [](Run& run) { End.not_ended(run); },
            [](Run& run) { End.no_begin(run); }};
}

inline constexpr auto kExternalModel =
    mdlBlock<kExtMdlEnd,
             [](Run& run, Mdl& model, std::string_view text) {
                 openExtMdl(run, run.mdl.external, model.external_model, model.name, text);
             },
             [](Run& run, Mdl& model, std::string_view text) { extMdlLine(run, *run.mdl.external, model.name, text); },
             [](Run& run, Mdl& model) {
                 closeExtMdl(run, run.mdl.external, model.external_model, model.name, model.model_type);
             }>(KeywordCode::externalModel, KeywordCode::endExternalModel);

inline constexpr auto kAlgorithmicModel =
    mdlBlock<kAlgModEnd,
             [](Run& run, Mdl& model, std::string_view text) { openAlgMod(run, model.algorithmic_model, text); },
             [](Run& run, Mdl& model, std::string_view text) { algModLine(run, *model.algorithmic_model, text); },
             [](Run& run, Mdl& model) { closeAlgMod(run, *model.algorithmic_model, model.name); }>(
        KeywordCode::algorithmicModel, KeywordCode::endAlgorithmicModel);

} // namespace kestrel
