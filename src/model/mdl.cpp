#include "model/mdl.hpp"

#include "model/extmdl.hpp"
#include "model/mdl_parts.hpp"

namespace kestrel {

namespace {

using K = KeywordCode;

/// Calls into modules that take the whole run.
template <void (*Function)(Run&, Mdl&, std::string_view)>
void lineByRun(Context& context, Mdl& model, std::string_view text) {
    Function(runOf(context), model, text);
}
template <void (*Function)(Run&, const Mdl&)> void closeByRun(Context& context, const Mdl& model) {
    Function(runOf(context), model);
}
template <const Block<Mdl>& Form>
constexpr BlockEnd kEndByRun{
    .name = {},
    .text_behind = [](Context& context, std::string_view text) { Form.text_behind_end(runOf(context), text); },
    .not_ended = [](Context& context) { Form.not_ended(runOf(context)); },
    .no_begin = [](Context& context) { Form.no_begin(runOf(context)); },
};
template <const Block<Mdl>& Form> constexpr Section<MdlState> blockByRun(K key, K end_key) {
    constexpr auto kOpen = [](Context& context, Mdl& model, std::string_view text) {
        Form.open(runOf(context), model, text);
    };
    constexpr auto kLine = [](Context& context, Mdl& model, std::string_view text) {
        Form.line(runOf(context), model, text);
    };
    constexpr auto kClose = [](Context& context, Mdl& model) { Form.close(runOf(context), model); };
    return blockSection<MdlState, kOpen, kLine, kClose>(key, end_key, kEndByRun<Form>);
}

/// A data line under a keyword that has none.
void strayLine(Context& context, std::string_view /*text*/) { errorAtLine(context.diagnostics, 121); }

void readRange(Context& context, Mdl& model, const Line& line) { readRangeKeyword(runOf(context), model, line); }

constexpr Section<MdlState> range(K key) { return section<MdlState, readRange, strayLine>(key); }

void openSchedule(Context& context, Mdl& model, std::string_view text) {
    openDrvSh(context, model.driver_schedule, text);
}

void scheduleLine(Context& context, Mdl& model, std::string_view text) {
    drvShLine(context, *model.driver_schedule, text, model.name);
}

void openSpec(Context& context, Mdl& model, std::string_view text) {
    checkModelSpecOrder(context, model);
    openMSpec(runOf(context), model, text);
}

void openThresholds(Context& context, Mdl& model, std::string_view text) {
    checkReceiverThresholdsOrder(context, model);
    openRcvTh(runOf(context), model, text);
}

template <std::unique_ptr<SeriesBlock> Mdl::*Slot, const std::string_view& Label>
constexpr Section<MdlState> seriesSection(K key) {
    constexpr auto kOpen = [](Context& context, MdlState& state, Mdl& model, std::string_view text) {
        if (model.model_type != ModelType::seriesSwitch) {
            errorAtLine(context.diagnostics, 205);
        } else {
            state.series_block = &openSeriesBlock(context, model.*Slot, Label, text);
        }
    };
    return section<MdlState, kOpen, strayLine>(key);
}

void readSeriesElement(Context& context, MdlState& state, Mdl& model, const Line& line) {
    SeriesBlock* const block = currentSeriesBlock(context, state, model);
    if (block != nullptr) readSeriesRange(context, *block, line, model.name);
}

constexpr Section<MdlState> seriesElement(K key) { return section<MdlState, readSeriesElement, strayLine>(key); }

void openSeriesCurrent(Context& context, MdlState& state, Mdl& model, std::string_view text) {
    SeriesBlock* const block = currentSeriesBlock(context, state, model);
    if (block != nullptr) openCrv(context, state.crv, block->series_current, CurveKind::seriesCurrent, text);
}

void seriesCurrentLine(Context& context, MdlState& state, Mdl& model, std::string_view text) {
    SeriesBlock* const block = currentSeriesBlock(context, state, model);
    if (block != nullptr) crvLine(context, state.crv, *block->series_current, CurveKind::seriesCurrent, text);
}

/// Outside series models the keyword opened no table; so with the next one.
void closeSeriesCurrent(Context& context, const MdlState& state, const Mdl& model) {
    if (state.series_block == nullptr) return;
    closeCrv(context, state.crv, *state.series_block->series_current, CurveKind::seriesCurrent, curveOwner(model));
}

void openSeriesMosfet(Context& context, MdlState& state, Mdl& model, std::string_view text) {
    SeriesBlock* const block = currentSeriesBlock(context, state, model);
    if (block != nullptr) openSMos(context, state.crv, block->mosfets, text);
}

void seriesMosfetLine(Context& context, MdlState& state, Mdl& model, std::string_view text) {
    SeriesBlock* const block = currentSeriesBlock(context, state, model);
    if (block != nullptr) sMosLine(context, state.crv, block->mosfets.back(), text);
}

void closeSeriesMosfet(Context& context, const MdlState& state, const Mdl& model) {
    if (state.series_block == nullptr) return;
    closeSMos(context, state.crv, state.series_block->mosfets.back(), curveOwner(model));
}

/// Without a waveform before it the keyword is reported and its rows are passed over.
void openCompositeCurrent(Context& context, MdlState& state, std::string_view text) {
    if (state.last_waveform == nullptr) {
        errorAtLine(context.diagnostics, 1701);
        return;
    }
    std::unique_ptr<Wvfrm>& current = state.last_waveform->composite_current;
    if (current) errorAtLine(context.diagnostics, 1702);
    openSingleWvfrm(context, current, kCompositeCurrent, text);
}

void compositeCurrentLine(Context& context, MdlState& state, std::string_view text) {
    if (state.last_waveform == nullptr) return;
    wvfrmLine(context, *state.last_waveform->composite_current, kCompositeCurrent, text);
}

void closeCompositeCurrent(Context& context, const MdlState& state) {
    if (state.last_waveform == nullptr) return;
    closeWvfrm(context, *state.last_waveform->composite_current, kCompositeCurrent);
}

void openExternal(Context& context, MdlState& state, Mdl& model, std::string_view text) {
    openExtMdl(context, state.external, model.external_model, model.name, text);
}

void externalLine(Context& context, MdlState& state, const Mdl& model, std::string_view text) {
    extMdlLine(context, *state.external, model.name, text);
}

void closeExternal(Context& context, MdlState& state, Mdl& model) {
    closeExtMdl(context, state.external, model.external_model, model.name, model.model_type);
}

void openAlgorithmic(Context& context, Mdl& model, std::string_view text) {
    openAlgMod(context, model.algorithmic_model, text);
}

void algorithmicLine(Context& context, Mdl& model, std::string_view text) {
    algModLine(context, *model.algorithmic_model, text);
}

void closeAlgorithmic(Context& context, const Mdl& model) {
    closeAlgMod(context, *model.algorithmic_model, model.name);
}

constexpr auto kSections = sectionTable<MdlState>({
    section<MdlState, readModelName, lineByRun<readSubparameter>, checkSubparameters>(K::model),
    range(K::temperatureRange),
    range(K::voltageRange),
    range(K::pullupReference),
    range(K::pulldownReference),
    range(K::powerClampReference),
    range(K::gndClampReference),
    range(K::externalReference),
    range(K::rgnd),
    range(K::rpower),
    range(K::rac),
    range(K::cac),
    range(K::ttgnd),
    range(K::ttpower),
    curveSection<MdlState, &Tables::pulldown, CurveKind::pulldown>(K::pulldown),
    curveSection<MdlState, &Tables::pullup, CurveKind::pullup>(K::pullup),
    curveSection<MdlState, &Tables::gnd_clamp, CurveKind::gndClamp>(K::gndClamp),
    curveSection<MdlState, &Tables::power_clamp, CurveKind::powerClamp>(K::powerClamp),
    curveSection<MdlState, &MdlTables::isso_pd, CurveKind::issoPd>(K::issoPd),
    curveSection<MdlState, &MdlTables::isso_pu, CurveKind::issoPu>(K::issoPu),
    rampSection<MdlState>(K::ramp),
    waveformSection<MdlState, &Tables::rising_waveforms, kRisingWaveform>(K::risingWaveform),
    waveformSection<MdlState, &Tables::falling_waveforms, kFallingWaveform>(K::fallingWaveform),
    section<MdlState, openCompositeCurrent, compositeCurrentLine, closeCompositeCurrent>(K::compositeCurrent),
    section<MdlState, openSchedule, scheduleLine>(K::driverSchedule),
    section<MdlState, openAddSubmodel, readAddSubmodel>(K::addSubmodel),
    section<MdlState, openSpec, lineByRun<mSpecLine>, closeByRun<closeMSpec>>(K::modelSpec),
    section<MdlState, openThresholds, lineByRun<rcvThLine>>(K::receiverThresholds),
    section<MdlState, lineByRun<openCCorner>, lineByRun<cCornerLine>, closeByRun<closeCCorner>>(K::cCompCorner),
    seriesSection<&Mdl::on_block, kOnLabel>(K::on),
    seriesSection<&Mdl::off_block, kOffLabel>(K::off),
    seriesElement(K::rSeries),
    seriesElement(K::lSeries),
    seriesElement(K::rlSeries),
    seriesElement(K::cSeries),
    seriesElement(K::lcSeries),
    seriesElement(K::rcSeries),
    section<MdlState, openSeriesCurrent, seriesCurrentLine, closeSeriesCurrent>(K::seriesCurrent),
    section<MdlState, openSeriesMosfet, seriesMosfetLine, closeSeriesMosfet>(K::seriesMosfet),
    blockSection<MdlState, openExternal, externalLine, closeExternal>(K::externalModel, K::endExternalModel,
                                                                      kExtMdlEnd),
    blockSection<MdlState, openAlgorithmic, algorithmicLine, closeAlgorithmic>(K::algorithmicModel,
                                                                               K::endAlgorithmicModel, kAlgModEnd),
    blockByRun<kEmiModel>(K::beginEmiModel, K::endEmiModel),
});

void closeModel(Context& context, MdlState& /*state*/, Mdl& model) {
    if (model.driver_schedule) closeDrvSh(context, *model.driver_schedule, model.name);
    checkModel(context, model);
}

} // namespace

const RecordModule<MdlState> kMdl{
    .opens = K::model,
    .find = [](K code) { return kSections.find(code); },
    .close = closeModel,
    .orphan = reportOrphan<102, 107>,
    .behind_end = [](Context& context, const BlockEnd&) { errorAtLine(context.diagnostics, 121); },
    .impossible = [](Context& context, LineKind) { programBugHereAtLine(context.diagnostics, 122); },
};

CurveOwner curveOwner(const Mdl& model) { return {"Model", model.name, model.model_type}; }

bool isDifferential(const Mdl& model) { return kDifferentialTypes.has(model.model_type); }

bool isSeries(const Mdl& model) { return kSeriesTypes.has(model.model_type); }

} // namespace kestrel
