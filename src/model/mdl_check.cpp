#include "base/rows.hpp"
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

constexpr std::array<Presence, 6> kCapacitances{
    isPresent<&MdlValues::c_comp>,           isPresent<&MdlValues::c_comp_pullup>,
    isPresent<&MdlValues::c_comp_pulldown>,  isPresent<&MdlValues::c_comp_power_clamp>,
    isPresent<&MdlValues::c_comp_gnd_clamp>, isPresent<&Mdl::external_model>};

constexpr std::array<NamedPart, 2> kThresholds{
    {{"Vinl", isPresent<&MdlValues::vinl>}, {"Vinh", isPresent<&MdlValues::vinh>}}};

constexpr std::array<NamedPart, 4> kTerminatorParts{{{"Rgnd", isPresent<MdlRange::rgnd>},
                                                     {"Rpower", isPresent<MdlRange::rpower>},
                                                     {"Rac", isPresent<MdlRange::rac>},
                                                     {"Cac", isPresent<MdlRange::cac>}}};

constexpr std::array<NamedPart, 2> kPullReferences{{{"Pullup Reference", isPresent<MdlRange::pullupReference>},
                                                    {"Pulldown Reference", isPresent<MdlRange::pulldownReference>}}};

constexpr std::array<NamedPart, 2> kClampReferences{
    {{"POWER Clamp Reference", isPresent<MdlRange::powerClampReference>},
     {"GND Clamp Reference", isPresent<MdlRange::gndClampReference>}}};

constexpr std::array<NamedPart, 9> kNotInSeries{{{"Pullup", isPresent<&Tables::pullup>},
                                                 {"Pulldown", isPresent<&Tables::pulldown>},
                                                 {"POWER_Clamp", isPresent<&Tables::power_clamp>},
                                                 {"GND_Clamp", isPresent<&Tables::gnd_clamp>},
                                                 {"Rising Waveform", isPresent<&Tables::rising_waveforms>},
                                                 {"Falling Waveform", isPresent<&Tables::falling_waveforms>},
                                                 {"TTgnd", isPresent<MdlRange::ttgnd>},
                                                 {"TTpower", isPresent<MdlRange::ttpower>},
                                                 {"Driver Schedule", isPresent<&Mdl::driver_schedule>}}};

constexpr ModelTypeSet kPullReferenceOptional{ModelType::input, ModelType::inputEcl};
constexpr ModelTypeSet kRampOptional{ModelType::input, ModelType::inputEcl, ModelType::terminator,
                                     ModelType::inputDiff};
constexpr ModelTypeSet kNeedVmeas{ModelType::output, ModelType::io, ModelType::threeState};
constexpr ModelTypeSet kNeedWholeLoad{ModelType::openDrain,  ModelType::ioOpenDrain, ModelType::openSink,
                                      ModelType::ioOpenSink, ModelType::openSource,  ModelType::ioOpenSource,
                                      ModelType::outputEcl,  ModelType::ioEcl,       ModelType::threeStateEcl};
constexpr ModelTypeSet kNeedDiffLoad{ModelType::ioDiff, ModelType::outputDiff, ModelType::threeStateDiff};

void checkThresholds(Context& context, const Mdl& model) {
    if (!kInputTypes.has(model.type()) || model.receiver_thresholds) return;
    for (const NamedPart& threshold : kThresholds) {
        if (!threshold.present(model)) {
            warning(context.diagnostics, 184, model.name, modelTypeText(model.type()), threshold.word);
        }
    }
}

void checkTerminator(Context& context, const Mdl& model) {
    if (model.type() != ModelType::terminator) {
        for (const NamedPart& part : kTerminatorParts) {
            if (part.present(model)) error(context.diagnostics, 185, model.name, part.word);
        }
    }
    const bool rac = isPresent<MdlRange::rac>(model);
    const bool cac = isPresent<MdlRange::cac>(model);
    if (cac && !rac) error(context.diagnostics, 186, model.name);
    if (rac && !cac) error(context.diagnostics, 187, model.name);
}

void checkReferenceVoltages(Context& context, const Mdl& model) {
    if (isPresent<MdlRange::voltageRange>(model)) return;
    for (const NamedPart& reference : kPullReferences) {
        if (reference.present(model)) continue;
        if (kPullReferenceOptional.has(model.type())) {
            warning(context.diagnostics, 188, model.name, reference.word);
        } else {
            error(context.diagnostics, 188, model.name, reference.word);
        }
    }
    for (const NamedPart& reference : kClampReferences) {
        if (!reference.present(model)) error(context.diagnostics, 188, model.name, reference.word);
    }
}

void checkRamp(Context& context, const Mdl& model) {
    if (kRampOptional.has(model.type())) return;
    if (isSeries(model)) {
        if (model.tables->ramp) error(context.diagnostics, 189, model.name);
    } else if (!model.tables->ramp) {
        error(context.diagnostics, 190, model.name);
    }
}

void checkNotInSeries(Context& context, const Mdl& model, ModelWordMessage message) {
    for (const NamedPart& part : kNotInSeries) {
        if (part.present(model)) error(context.diagnostics, message, model.name, part.word);
    }
    if (model.model_spec) warning(context.diagnostics, message, model.name, "Model Spec");
}

/// Of a series model that an external model describes nothing more is expected, and an empty "[Off]" is an open switch.
void checkSeriesSection(Context& context, const Mdl& model, const SeriesBlock& block, std::string_view label) {
    const bool may_be_empty = model.external_model != nullptr || label == kOffLabel;
    if (!may_be_empty && !hasElements(block)) warning(context.diagnostics, 2904, model.name, label);
    checkSeriesBlock(context, block, label, model.name);
}

/// What a model has to give when its thresholds follow a supply.
struct SupplyKeyword {
    ReferenceSupply supply;
    MdlRange reference;
    CheckedMessage<ArgKind::text> missing;
};
constexpr auto kSupplyKeywords = std::to_array({
    SupplyKeyword{ReferenceSupply::powerClamp, MdlRange::powerClampReference, 195},
    SupplyKeyword{ReferenceSupply::gndClamp, MdlRange::gndClampReference, 196},
    SupplyKeyword{ReferenceSupply::pullup, MdlRange::pullupReference, 197},
    SupplyKeyword{ReferenceSupply::pulldown, MdlRange::pulldownReference, 198},
    SupplyKeyword{ReferenceSupply::external, MdlRange::externalReference, 199},
});

/// Thresholds that follow a supply need its reference keyword.
void checkReferenceSupply(Context& context, const Mdl& model) {
    if (!model.receiver_thresholds) return;
    const auto* const row = rowOf(kSupplyKeywords, model.receiver_thresholds->reference_supply, &SupplyKeyword::supply);
    if (row != nullptr && findRange(model, row->reference) == nullptr) {
        error(context.diagnostics, row->missing, model.name);
    }
}

void checkSeriesSections(Context& context, const Mdl& model) {
    if (model.type() == ModelType::series && model.on_block) {
        checkSeriesSection(context, model, *model.on_block, "Series");
    }
    if (model.type() != ModelType::seriesSwitch) return;
    if (model.on_block) {
        checkSeriesSection(context, model, *model.on_block, kOnLabel);
    } else {
        error(context.diagnostics, 193, model.name);
    }
    if (model.off_block) {
        checkSeriesSection(context, model, *model.off_block, kOffLabel);
    } else {
        error(context.diagnostics, 194, model.name);
    }
}

void checkSeries(Context& context, const Mdl& model) {
    if (model.type() == ModelType::series) checkNotInSeries(context, model, 191);
    if (model.type() == ModelType::seriesSwitch) checkNotInSeries(context, model, 192);
    checkSeriesSections(context, model);
}

void checkTestLoad(Context& context, const Mdl& model) {
    // "[Model Spec]" may give what "[Model]" leaves out.
    const MdlValues& values = *model.values;
    const MSpec* const spec = model.model_spec.get();
    const bool vmeas = values.vmeas || (spec != nullptr && spec->vmeas);
    const bool vref = values.vref || (spec != nullptr && spec->vref);
    const bool rref = values.rref || (spec != nullptr && spec->rref);
    if (kNeedVmeas.has(model.type()) && !vmeas) warning(context.diagnostics, 201, model.name);
    if (kNeedWholeLoad.has(model.type()) && !(vmeas && vref && rref)) warning(context.diagnostics, 200, model.name);
    if (kNeedDiffLoad.has(model.type()) && !values.cref_diff && !values.rref_diff) {
        warning(context.diagnostics, 202, model.name);
    }
}

/// An I-V table of the supplies and the one that it belongs to.
struct IssoTable {
    std::string_view name;
    Crv MdlTables::*table;
    std::string_view main_name;
    Crv MdlTables::*main;
};
constexpr auto kIssoTables = std::to_array({
    IssoTable{"ISSO PD", &MdlTables::isso_pd, "Pulldown", &Tables::pulldown},
    IssoTable{"ISSO PU", &MdlTables::isso_pu, "Pullup", &Tables::pullup},
});

/// True when the voltages of a table reach from -`supply` to `supply`; without any voltage there is nothing to say.
bool covers(const Crv& curve, double supply) {
    double low = supply;
    double high = -supply;
    bool any = false;
    for (const TableRow& row : curve.rows) {
        if (!row[kFirst].isNumber()) continue;
        low = any ? std::min(low, row[kFirst].value()) : row[kFirst].value();
        high = any ? std::max(high, row[kFirst].value()) : row[kFirst].value();
        any = true;
    }
    return !any || (low <= -supply && high >= supply);
}

void checkIsso(Context& context, const Mdl& model) {
    const MdlTables& tables = *model.tables;
    const Rng* const range = findRange(model, MdlRange::voltageRange);
    for (const IssoTable& row : kIssoTables) {
        const Crv& table = tables.*row.table;
        if (!table) continue;
        if (!(tables.*row.main)) warning(context.diagnostics, 1501, model.name, row.name, row.main_name);
        if (kNoTestLoadTypes.has(model.type())) {
            warning(context.diagnostics, 1502, model.name, row.name, modelTypeText(model.type()));
        }
        if (range == nullptr || !range->typ().isNumber()) continue;
        const double supply = range->typ().value();
        if (!covers(table, supply)) caution(context.diagnostics, 1503, model.name, row.name, -supply, supply);
    }
}

} // namespace

void checkSubparameters(Context& context, const Mdl& model) {
    if (model.type() == ModelType::notGiven) error(context.diagnostics, 180, model.name, "Model_type");
    const MdlValues& values = *model.values;
    if (!kMeasuredBothWays.has(values.model_type) || !values.vmeas) return;
    if (values.vinl && *values.vinl >= *values.vmeas) caution(context.diagnostics, 182, model.name);
    if (values.vinh && *values.vinh <= *values.vmeas) caution(context.diagnostics, 183, model.name);
}

void checkModel(Context& context, const Mdl& model) {
    // "[C Comp Model]" may take the place of C_comp.
    if (!wasPassedOver(context.parse, LaterKeyword::cCompModel) &&
        std::ranges::none_of(kCapacitances, [&model](Presence present) { return present(model); })) {
        error(context.diagnostics, 181, model.name);
    }
    checkThresholds(context, model);
    checkTerminator(context, model);
    checkReferenceVoltages(context, model);
    checkRamp(context, model);
    checkSeries(context, model);
    checkReferenceSupply(context, model);
    checkTestLoad(context, model);
    if (isDifferential(model) && !model.external_model) {
        caution(context.diagnostics, 1829, model.name, modelTypeText(model.type()));
    }
    if (model.emi_model) checkMdlEmi(context, *model.emi_model, model.name, model.type());
    checkIsso(context, model);
    for (const SeriesBlock* const block : {model.on_block.get(), model.off_block.get()}) {
        if (block != nullptr) checkSMosVoltages(context, block->mosfets, model.name);
    }
    if (model.c_comp_corner) checkCCorner(context, *model.c_comp_corner, *model.values, model.name);
    if (model.algorithmic_model) checkAlgModType(context, model.name, model.type());
}

} // namespace kestrel
