#include "model/mdl.hpp"

#include "ibis/run.hpp"
#include "model/acdc.hpp"
#include "model/mdl_parts.hpp"

#include <array>
#include <unordered_set>
#include <utility>

namespace kestrel {

namespace {

/// How the lines of a model's keyword are read.
enum class Form : std::uint8_t {
    subparameters,
    range,
    curve,
    ramp,
    waveform,
    driverSchedule,
    addSubmodel,
    modelSpec,
    receiverThresholds,
    block,
    seriesSection,
    seriesRange,
    seriesCurrent,
    seriesMosfet,
    cCompCorner,
    compositeCurrent,
    foreign ///< not a keyword of a model
};

constexpr Form formOf(KeywordCode code) {
    switch (code) {
    case KeywordCode::model: return Form::subparameters;
    case KeywordCode::temperatureRange:
    case KeywordCode::voltageRange:
    case KeywordCode::pullupReference:
    case KeywordCode::pulldownReference:
    case KeywordCode::powerClampReference:
    case KeywordCode::gndClampReference:
    case KeywordCode::externalReference:
    case KeywordCode::rgnd:
    case KeywordCode::rpower:
    case KeywordCode::rac:
    case KeywordCode::cac:
    case KeywordCode::ttgnd:
    case KeywordCode::ttpower: return Form::range;
    case KeywordCode::pulldown:
    case KeywordCode::pullup:
    case KeywordCode::gndClamp:
    case KeywordCode::powerClamp:
    case KeywordCode::issoPd:
    case KeywordCode::issoPu: return Form::curve;
    case KeywordCode::ramp: return Form::ramp;
    case KeywordCode::risingWaveform:
    case KeywordCode::fallingWaveform: return Form::waveform;
    case KeywordCode::driverSchedule: return Form::driverSchedule;
    case KeywordCode::addSubmodel: return Form::addSubmodel;
    case KeywordCode::modelSpec: return Form::modelSpec;
    case KeywordCode::receiverThresholds: return Form::receiverThresholds;
    case KeywordCode::externalModel:
    case KeywordCode::endExternalModel:
    case KeywordCode::algorithmicModel:
    case KeywordCode::endAlgorithmicModel:
    case KeywordCode::beginEmiModel:
    case KeywordCode::endEmiModel: return Form::block;
    case KeywordCode::on:
    case KeywordCode::off: return Form::seriesSection;
    case KeywordCode::rSeries:
    case KeywordCode::lSeries:
    case KeywordCode::rlSeries:
    case KeywordCode::cSeries:
    case KeywordCode::lcSeries:
    case KeywordCode::rcSeries: return Form::seriesRange;
    case KeywordCode::seriesCurrent: return Form::seriesCurrent;
    case KeywordCode::seriesMosfet: return Form::seriesMosfet;
    case KeywordCode::compositeCurrent: return Form::compositeCurrent;
    case KeywordCode::cCompCorner: return Form::cCompCorner;
    default: return Form::foreign;
    }
}

/// True for the keywords that go on with the model being read.
constexpr bool keepsModelOpen(KeywordCode code) { return code != KeywordCode::model && formOf(code) != Form::foreign; }

/// An I-V table of a model.
struct CurveField {
    CurveKind kind;
    std::optional<Crv> Mdl::*table;
};

constexpr CurveField curveField(KeywordCode code) {
    switch (code) {
    case KeywordCode::pulldown: return {CurveKind::pulldown, &Mdl::pulldown};
    case KeywordCode::pullup: return {CurveKind::pullup, &Mdl::pullup};
    case KeywordCode::gndClamp: return {CurveKind::gndClamp, &Mdl::gnd_clamp};
    case KeywordCode::powerClamp: return {CurveKind::powerClamp, &Mdl::power_clamp};
    case KeywordCode::issoPd: return {CurveKind::issoPd, &Mdl::isso_pd};
    default: return {CurveKind::issoPu, &Mdl::isso_pu};
    }
}

/// A list of waveforms of a model.
struct WaveformField {
    const WaveformLabel& label;
    std::vector<std::unique_ptr<Wvfrm>> Mdl::*list;
};

constexpr WaveformField waveformField(KeywordCode code) {
    if (code == KeywordCode::risingWaveform) return {kRisingWaveform, &Mdl::rising_waveforms};
    return {kFallingWaveform, &Mdl::falling_waveforms};
}

constexpr Block<Mdl> kEmiModel{
    .begin = KeywordCode::beginEmiModel,
    .end = KeywordCode::endEmiModel,
    .end_name = "End_EMI_Model",
    .open = [](Run& run, Mdl& model, std::string_view text) { openMdlEmi(run, model.emi_model, text); },
    .line = [](Run& run, Mdl& model, std::string_view text) { mdlEmiLine(run, *model.emi_model, text, model.name); },
    .close = [](Run&, Mdl&) {}, // what it gives is judged with the model
    .text_behind_end = [](Run& run, std::string_view text) { kMdlEmiEnd.text_behind(run, text); },
    .not_ended = [](Run& run) { kMdlEmiEnd.not_ended(run); },
    .no_begin = [](Run& run) { kMdlEmiEnd.no_begin(run); },
};

constexpr auto kBlocks = std::to_array<const Block<Mdl>*>({&kExternalModel, &kAlgorithmicModel, &kEmiModel});

void blockData(Run& run, Mdl& model, const Block<Mdl>& block, const Line& line) {
    if (line.key == block.begin) {
        block.line(run, model, line.text);
    } else {
        errorAtLine(run.diagnostics, 121);
    }
}

void shouldNotBeHere(Run& run, SourceMark mark) { programBugAtLine(run.diagnostics, 122, mark.file, mark.line); }

/// Does what is due when the lines of a keyword end.
void closeSection(Run& run, const Mdl& model) {
    const KeywordCode section = std::exchange(run.mdl.section, KeywordCode::notKey);
    switch (formOf(section)) {
    case Form::subparameters: checkSubparameters(run, model); break;
    case Form::curve: {
        const CurveField field = curveField(section);
        closeCrv(run, run.mdl.crv, *(model.*field.table), field.kind, "Model", model.name, model.model_type);
        break;
    }
    case Form::ramp: closeRamp(run, *model.ramp); break;
    case Form::modelSpec: closeMSpec(run, *model.model_spec, model.name, model.model_type); break;
    case Form::waveform: {
        const WaveformField field = waveformField(section);
        closeWvfrm(run, *(model.*field.list).back(), field.label);
        break;
    }
    case Form::seriesCurrent:
        // Outside series models the keyword opened no table.
        if (run.mdl.series_block != nullptr) {
            closeCrv(run, run.mdl.crv, *run.mdl.series_block->series_current, CurveKind::seriesCurrent, "Model",
                     model.name, model.model_type);
        }
        break;
    case Form::seriesMosfet:
        if (run.mdl.series_block != nullptr) closeSMos(run, run.mdl.series_block->mosfets.back(), model);
        break;
    case Form::compositeCurrent: closeCompositeCurrent(run); break;
    case Form::cCompCorner: closeCCorner(run, *model.c_comp_corner, model.name); break;
    default: break;
    }
}

void keywordLine(Run& run, Mdl& model, const Line& line) {
    run.mdl.section = line.key;
    switch (formOf(line.key)) {
    case Form::subparameters: readModelName(run, model, line.text); break;
    case Form::range: readRangeKeyword(run, model, line); break;
    case Form::curve: {
        const CurveField field = curveField(line.key);
        openCrv(run, run.mdl.crv, model.*field.table, field.kind, line.text);
        break;
    }
    case Form::ramp: openRamp(run, model.ramp, line.text); break;
    case Form::waveform: {
        const WaveformField field = waveformField(line.key);
        run.mdl.last_waveform = &openWvfrm(run, model.*field.list, field.label, line.text);
        break;
    }
    case Form::driverSchedule: openDrvSh(run, model, line.text); break;
    case Form::addSubmodel: openAddSubmodel(run, model, line.text); break;
    case Form::modelSpec:
        checkModelSpecOrder(run, model);
        openMSpec(run, model.model_spec, line.text);
        break;
    case Form::receiverThresholds:
        checkReceiverThresholdsOrder(run, model);
        openRcvTh(run, model.receiver_thresholds, line.text);
        break;
    case Form::block: blockKeywordLine(run, model, *blockOf<Mdl>(kBlocks, line.key), run.mdl.block, line); break;
    case Form::seriesSection: openSeriesSection(run, model, line); break;
    case Form::seriesRange:
        if (SeriesBlock* const block = currentSeriesBlock(run, model)) readSeriesRange(run, model, *block, line);
        break;
    case Form::seriesCurrent:
        if (SeriesBlock* const block = currentSeriesBlock(run, model)) {
            openCrv(run, run.mdl.crv, block->series_current, CurveKind::seriesCurrent, line.text);
        }
        break;
    case Form::seriesMosfet:
        if (SeriesBlock* const block = currentSeriesBlock(run, model)) openSMos(run, block->mosfets, line.text);
        break;
    case Form::compositeCurrent: openCompositeCurrent(run, line.text); break;
    case Form::cCompCorner: openCCorner(run, model.c_comp_corner, line.text); break;
    case Form::foreign: shouldNotBeHere(run, here()); break;
    }
}

void dataLine(Run& run, Mdl& model, const Line& line) {
    switch (formOf(line.key)) {
    case Form::curve: {
        const CurveField field = curveField(line.key);
        crvLine(run, run.mdl.crv, *(model.*field.table), field.kind, line.text);
        break;
    }
    case Form::waveform: {
        const WaveformField field = waveformField(line.key);
        wvfrmLine(run, *(model.*field.list).back(), field.label, line.text);
        break;
    }
    case Form::subparameters: readSubparameter(run, model, line.text); break;
    case Form::ramp: rampLine(run, *model.ramp, line.text, model.name); break;
    case Form::driverSchedule: drvShLine(run, model, line.text); break;
    case Form::addSubmodel: readAddSubmodel(run, model, line.text); break;
    case Form::seriesCurrent:
        if (SeriesBlock* const block = currentSeriesBlock(run, model)) {
            crvLine(run, run.mdl.crv, *block->series_current, CurveKind::seriesCurrent, line.text);
        }
        break;
    case Form::seriesMosfet:
        if (SeriesBlock* const block = currentSeriesBlock(run, model)) {
            sMosLine(run, block->mosfets.back(), line.text);
        }
        break;
    case Form::compositeCurrent: compositeCurrentLine(run, line.text); break;
    case Form::cCompCorner: cCornerLine(run, *model.c_comp_corner, line.text, model.name); break;
    case Form::range:
    case Form::seriesSection:
    case Form::seriesRange: errorAtLine(run.diagnostics, 121); break;
    case Form::modelSpec: mSpecLine(run, *model.model_spec, line.text, model.name); break;
    case Form::receiverThresholds: rcvThLine(run, *model.receiver_thresholds, line.text, model.name); break;
    case Form::block: blockData(run, model, *blockOf<Mdl>(kBlocks, line.key), line); break;
    case Form::foreign: shouldNotBeHere(run, here()); break;
    }
}

} // namespace

void openMdl(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        programBug(run.diagnostics, 101);
        return;
    }
    run.mdl.current = &root->models.add(std::make_unique<Mdl>());
    run.mdl.series_block = nullptr;
    run.mdl.last_waveform = nullptr;
}

void mdlKeywordSeen(Run& run, KeywordCode code) {
    if (run.mdl.current == nullptr) return;
    Mdl& model = *run.mdl.current;
    closeSection(run, model);
    blockKeywordSeen(run, model, run.mdl.block, code);
    if (keepsModelOpen(code)) return;
    if (model.driver_schedule) closeDrvSh(run, model);
    checkModel(run, model);
    run.mdl.current = nullptr;
}

void mdlLine(Run& run, const Line& line) {
    const bool keyword = line.kind == LineKind::keyword;
    if (run.mdl.current == nullptr) {
        if (keyword) {
            errorAtLine(run.diagnostics, 102);
        } else {
            errorAtLine(run.diagnostics, 107);
        }
    } else if (keyword) {
        keywordLine(run, *run.mdl.current, line);
    } else {
        dataLine(run, *run.mdl.current, line);
    }
}

Mdl* referenceMdl(Run& run, std::string_view name) {
    const Ibis* const root = currentRoot(run);
    Mdl* const model = root == nullptr ? nullptr : root->models.find(name);
    if (model != nullptr) model->referenced = true;
    return model;
}

bool isDifferential(const Mdl& model) { return kDifferentialTypes.has(model.model_type); }

bool isSeries(const Mdl& model) { return kSeriesTypes.has(model.model_type); }

void checkAddedSubmodels(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    std::unordered_set<std::string_view> added;
    for (const Mdl& model : root->models.newestFirst()) {
        for (const AddSubmodel& row : model.add_submodels) {
            added.insert(row.name);
        }
    }
    for (const SubMdl& submodel : root->submodels.newestFirst()) {
        if (!added.contains(submodel.name)) warning(run.diagnostics, 220, submodel.name);
    }
    for (const Mdl& model : root->models.newestFirst()) {
        for (const AddSubmodel& row : model.add_submodels) {
            if (root->submodels.find(row.name) == nullptr) error(run.diagnostics, 218, row.name, model.name);
        }
    }
}

void checkReferences(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const Mdl& model : root->models.newestFirst()) {
        if (model.referenced) continue;
        warning(run.diagnostics, 219, model.name);
        return;
    }
}

} // namespace kestrel
