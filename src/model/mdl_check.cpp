#include "base/rows.hpp"
#include "ibis/run.hpp"
#include "model/acdc.hpp"
#include "model/mdl_parts.hpp"

#include <algorithm>

namespace kestrel {

namespace {

using ModelMessage = CheckedMessage<ArgKind::text>;
using ModelWordMessage = CheckedMessage<ArgKind::text, ArgKind::text>;

/// A keyword and the word that messages about it use.
struct NamedPart {
    std::string_view word;
    Presence present;
};

constexpr std::array<Presence, 6> kCapacitances{isPresent<&Mdl::c_comp>,           isPresent<&Mdl::c_comp_pullup>,
                                                isPresent<&Mdl::c_comp_pulldown>,  isPresent<&Mdl::c_comp_power_clamp>,
                                                isPresent<&Mdl::c_comp_gnd_clamp>, isPresent<&Mdl::external_model>};

constexpr std::array<NamedPart, 2> kThresholds{{{"Vinl", isPresent<&Mdl::vinl>}, {"Vinh", isPresent<&Mdl::vinh>}}};

constexpr std::array<NamedPart, 4> kTerminatorParts{{{"Rgnd", isPresent<&Mdl::rgnd>},
                                                     {"Rpower", isPresent<&Mdl::rpower>},
                                                     {"Rac", isPresent<&Mdl::rac>},
                                                     {"Cac", isPresent<&Mdl::cac>}}};

constexpr std::array<NamedPart, 2> kPullReferences{{{"Pullup Reference", isPresent<&Mdl::pullup_reference>},
                                                    {"Pulldown Reference", isPresent<&Mdl::pulldown_reference>}}};

constexpr std::array<NamedPart, 2> kClampReferences{{{"POWER Clamp Reference", isPresent<&Mdl::power_clamp_reference>},
                                                     {"GND Clamp Reference", isPresent<&Mdl::gnd_clamp_reference>}}};

constexpr std::array<NamedPart, 9> kNotInSeries{{{"Pullup", isPresent<&Mdl::pullup>},
                                                 {"Pulldown", isPresent<&Mdl::pulldown>},
                                                 {"POWER_Clamp", isPresent<&Mdl::power_clamp>},
                                                 {"GND_Clamp", isPresent<&Mdl::gnd_clamp>},
                                                 {"Rising Waveform", isPresent<&Mdl::rising_waveforms>},
                                                 {"Falling Waveform", isPresent<&Mdl::falling_waveforms>},
                                                 {"TTgnd", isPresent<&Mdl::ttgnd>},
                                                 {"TTpower", isPresent<&Mdl::ttpower>},
                                                 {"Driver Schedule", isPresent<&Mdl::driver_schedule>}}};

constexpr ModelTypeSet kMeasuredBothWays{ModelType::io, ModelType::ioOpenDrain, ModelType::ioOpenSink,
                                         ModelType::ioOpenSource, ModelType::ioEcl};
constexpr ModelTypeSet kPullReferenceOptional{ModelType::input, ModelType::inputEcl};
constexpr ModelTypeSet kRampOptional{ModelType::input, ModelType::inputEcl, ModelType::terminator,
                                     ModelType::inputDiff};
constexpr ModelTypeSet kNeedVmeas{ModelType::output, ModelType::io, ModelType::threeState};
constexpr ModelTypeSet kNeedWholeLoad{ModelType::openDrain,  ModelType::ioOpenDrain, ModelType::openSink,
                                      ModelType::ioOpenSink, ModelType::openSource,  ModelType::ioOpenSource,
                                      ModelType::outputEcl,  ModelType::ioEcl,       ModelType::threeStateEcl};
constexpr ModelTypeSet kNeedDiffLoad{ModelType::ioDiff, ModelType::outputDiff, ModelType::threeStateDiff};

void checkThresholds(Run& run, const Mdl& model) {
    if (!kInputTypes.has(model.model_type) || model.receiver_thresholds) return;
    for (const NamedPart& threshold : kThresholds) {
        if (!threshold.present(model)) {
            warning(run.diagnostics, 184, model.name, modelTypeText(model.model_type), threshold.word);
        }
    }
}

void checkTerminator(Run& run, const Mdl& model) {
    if (model.model_type != ModelType::terminator) {
        for (const NamedPart& part : kTerminatorParts) {
            if (part.present(model)) error(run.diagnostics, 185, model.name, part.word);
        }
    }
    if (model.cac && !model.rac) error(run.diagnostics, 186, model.name);
    if (model.rac && !model.cac) error(run.diagnostics, 187, model.name);
}

void checkReferenceVoltages(Run& run, const Mdl& model) {
    if (model.voltage_range) return;
    for (const NamedPart& reference : kPullReferences) {
        if (reference.present(model)) continue;
        if (kPullReferenceOptional.has(model.model_type)) {
            warning(run.diagnostics, 188, model.name, reference.word);
        } else {
            error(run.diagnostics, 188, model.name, reference.word);
        }
    }
    for (const NamedPart& reference : kClampReferences) {
        if (!reference.present(model)) error(run.diagnostics, 188, model.name, reference.word);
    }
}

void checkRamp(Run& run, const Mdl& model) {
    if (kRampOptional.has(model.model_type)) return;
    if (isSeries(model)) {
        if (model.ramp) error(run.diagnostics, 189, model.name);
    } else if (!model.ramp) {
        error(run.diagnostics, 190, model.name);
    }
}

void checkNotInSeries(Run& run, const Mdl& model, ModelWordMessage message) {
    for (const NamedPart& part : kNotInSeries) {
        if (part.present(model)) error(run.diagnostics, message, model.name, part.word);
    }
    if (model.model_spec) warning(run.diagnostics, message, model.name, "Model Spec");
}

void checkSeries(Run& run, const Mdl& model) {
    if (model.model_type == ModelType::series) checkNotInSeries(run, model, 191);
    if (model.model_type == ModelType::seriesSwitch) checkNotInSeries(run, model, 192);
    checkSeriesBlocks(run, model);
}

/// What a model has to give when its thresholds follow a supply.
struct SupplyKeyword {
    ReferenceSupply supply;
    std::optional<Rng> Mdl::*reference;
    CheckedMessage<ArgKind::text> missing;
};
constexpr auto kSupplyKeywords = std::to_array({
    SupplyKeyword{ReferenceSupply::powerClamp, &Mdl::power_clamp_reference, 195},
    SupplyKeyword{ReferenceSupply::gndClamp, &Mdl::gnd_clamp_reference, 196},
    SupplyKeyword{ReferenceSupply::pullup, &Mdl::pullup_reference, 197},
    SupplyKeyword{ReferenceSupply::pulldown, &Mdl::pulldown_reference, 198},
    SupplyKeyword{ReferenceSupply::external, &Mdl::external_reference, 199},
});

/// Thresholds that follow a supply need its reference keyword.
void checkReferenceSupply(Run& run, const Mdl& model) {
    if (!model.receiver_thresholds) return;
    const auto* const row = rowOf(kSupplyKeywords, model.receiver_thresholds->reference_supply, &SupplyKeyword::supply);
    if (row != nullptr && !(model.*row->reference)) error(run.diagnostics, row->missing, model.name);
}

void checkTestLoad(Run& run, const Mdl& model) {
    // "[Model Spec]" may give what "[Model]" leaves out.
    const MSpec* const spec = model.model_spec.get();
    const bool vmeas = model.vmeas || (spec != nullptr && spec->vmeas);
    const bool vref = model.vref || (spec != nullptr && spec->vref);
    const bool rref = model.rref || (spec != nullptr && spec->rref);
    if (kNeedVmeas.has(model.model_type) && !vmeas) warning(run.diagnostics, 201, model.name);
    if (kNeedWholeLoad.has(model.model_type) && !(vmeas && vref && rref)) warning(run.diagnostics, 200, model.name);
    if (kNeedDiffLoad.has(model.model_type) && !model.cref_diff && !model.rref_diff) {
        warning(run.diagnostics, 202, model.name);
    }
}

} // namespace

void checkSubparameters(Run& run, const Mdl& model) {
    if (model.model_type == ModelType::notGiven) error(run.diagnostics, 180, model.name, "Model_type");
    if (!kMeasuredBothWays.has(model.model_type) || !model.vmeas) return;
    if (model.vinl && *model.vinl >= *model.vmeas) caution(run.diagnostics, 182, model.name);
    if (model.vinh && *model.vinh <= *model.vmeas) caution(run.diagnostics, 183, model.name);
}

void checkModel(Run& run, const Mdl& model) {
    if (std::ranges::none_of(kCapacitances, [&model](Presence present) { return present(model); })) {
        error(run.diagnostics, 181, model.name);
    }
    checkThresholds(run, model);
    checkTerminator(run, model);
    checkReferenceVoltages(run, model);
    checkRamp(run, model);
    checkSeries(run, model);
    checkReferenceSupply(run, model);
    checkTestLoad(run, model);
    if (isDifferential(model) && !model.external_model) {
        caution(run.diagnostics, 1829, model.name, modelTypeText(model.model_type));
    }
    if (model.emi_model) checkMdlEmi(run, *model.emi_model, model.name, model.model_type);
    checkIsso(run, model);
    for (const SeriesBlock* const block : {model.on_block.get(), model.off_block.get()}) {
        if (block != nullptr) checkSMosVoltages(run, block->mosfets, model.name);
    }
    if (model.c_comp_corner) checkCCorner(run, *model.c_comp_corner, model, model.name);
    checkAlgModType(run, model);
}

} // namespace kestrel
