#include "model/mdl.hpp"

#include "model/extmdl.hpp"
#include "model/mdl_parts.hpp"

namespace kestrel {

namespace {

using K = KeywordCode;

/// A part of a model that has a reader of its own: opened at its keyword, then read line by line.
template <auto Part, auto Open> void openPart(Context& context, Mdl& model, std::string_view text) {
    Open(context, model.*Part, text);
}

template <auto Part, auto Read> void partLine(Context& context, Mdl& model, std::string_view text) {
    Read(context, *(model.*Part), text, model.name);
}

void scheduleLine(Context& context, Mdl& model, std::string_view text) {
    drvShLine(context, model.driver_schedule, text, model.name);
}

/// A data line under a keyword that has none.
void strayLine(Context& context, std::string_view /*text*/) { errorAtLine(context.diagnostics, 121); }

constexpr Section<MdlState> range(K key) { return section<MdlState, readRangeKeyword, strayLine>(key); }

void openSpec(Context& context, Mdl& model, std::string_view text) {
    checkModelSpecOrder(context, model);
    openMSpec(context, model.model_spec, text);
}

void closeSpec(Context& context, const Mdl& model) { closeMSpec(context, *model.model_spec, model.name, model.type()); }

void openThresholds(Context& context, Mdl& model, std::string_view text) {
    checkReceiverThresholdsOrder(context, model);
    openRcvTh(context, model.receiver_thresholds, text);
}

void closeCorner(Context& context, const Mdl& model) { closeCCorner(context, *model.c_comp_corner, model.name); }

template <std::unique_ptr<SeriesBlock> Mdl::*Slot, const std::string_view& Label>
constexpr Section<MdlState> seriesSection(K key) {
    constexpr auto kOpen = [](Context& context, MdlState& state, Mdl& model, std::string_view text) {
        if (model.type() != ModelType::seriesSwitch) {
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
    if (block != nullptr) crvLine(context, state.crv, block->series_current, CurveKind::seriesCurrent, text);
}

/// Outside series models the keyword opened no table; so with the next one.
void closeSeriesCurrent(Context& context, const MdlState& state, const Mdl& model) {
    if (state.series_block == nullptr) return;
    closeCrv(context, state.crv, state.series_block->series_current, CurveKind::seriesCurrent, curveOwner(model));
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
    OnDemand<Wvfrm>& current = state.last_waveform->composite_current;
    if (current) errorAtLine(context.diagnostics, 1702);
    openSingleWvfrm(context, current, kCompositeCurrent, text);
}

void compositeCurrentLine(Context& context, MdlState& state, std::string_view text) {
    if (state.last_waveform == nullptr) return;
    wvfrmLine(context, state.last_waveform->composite_current.made(context.rows), kCompositeCurrent, text);
}

void compositeCurrentRows(Context& context, const MdlState& state, LineReader& reader) {
    if (state.last_waveform == nullptr) return;
    wvfrmRows(context, state.last_waveform->composite_current.made(context.rows), kCompositeCurrent, reader);
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
    closeExtMdl(context, state.external, model.external_model, model.name, model.type());
}

void algorithmicLine(Context& context, Mdl& model, std::string_view text) {
    algModLine(context, *model.algorithmic_model, text);
}

void closeAlgorithmic(Context& context, const Mdl& model) {
    closeAlgMod(context, *model.algorithmic_model, model.name);
}

constexpr auto kSections = sectionTable<MdlState>({
    section<MdlState, readModelName, readSubparameter, checkSubparameters>(K::model),
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
    tableSection<MdlState, openCompositeCurrent, compositeCurrentLine, closeCompositeCurrent, compositeCurrentRows>(
        K::compositeCurrent),
    section<MdlState, openPart<&Mdl::driver_schedule, openDrvSh>, scheduleLine>(K::driverSchedule),
    section<MdlState, openAddSubmodel, readAddSubmodel>(K::addSubmodel),
    section<MdlState, openSpec, partLine<&Mdl::model_spec, mSpecLine>, closeSpec>(K::modelSpec),
    section<MdlState, openThresholds, partLine<&Mdl::receiver_thresholds, rcvThLine>>(K::receiverThresholds),
    section<MdlState, openPart<&Mdl::c_comp_corner, openCCorner>, partLine<&Mdl::c_comp_corner, cCornerLine>,
            closeCorner>(K::cCompCorner),
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
    blockSection<MdlState, openPart<&Mdl::algorithmic_model, openAlgMod>, algorithmicLine, closeAlgorithmic>(
        K::algorithmicModel, K::endAlgorithmicModel, kAlgModEnd),
    blockSection<MdlState, openPart<&Mdl::emi_model, openMdlEmi>, partLine<&Mdl::emi_model, mdlEmiLine>>(
        K::beginEmiModel, K::endEmiModel, kMdlEmiEnd),
});

void closeModel(Context& context, MdlState& /*state*/, Mdl& model) {
    if (model.driver_schedule) closeDrvSh(context, model.driver_schedule, model.name);
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

CurveOwner curveOwner(const Mdl& model) { return {"Model", model.name, model.type()}; }

const Rng* findRange(const Mdl& model, MdlRange which) {
    const MdlRangeRow* const row = rowOf(model.ranges, which, &MdlRangeRow::which);
    return row == nullptr ? nullptr : &row->range;
}

bool isDifferential(const Mdl& model) { return kDifferentialTypes.has(model.type()); }

bool isSeries(const Mdl& model) { return kSeriesTypes.has(model.type()); }

} // namespace kestrel
