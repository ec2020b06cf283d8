#include "model/mdl_parts.hpp"
#include "reader/record_name.hpp"

#include <algorithm>
#include <span>

namespace kestrel {

namespace {

/// What "[Model Spec]" should precede; "[Receiver Thresholds]" only has to precede the first of them.
constexpr std::array<Presence, 24> kLaterKeywords{
    isPresent<MdlRange::temperatureRange>,
    isPresent<MdlRange::voltageRange>,
    isPresent<MdlRange::pullupReference>,
    isPresent<MdlRange::pulldownReference>,
    isPresent<MdlRange::powerClampReference>,
    isPresent<MdlRange::gndClampReference>,
    isPresent<MdlRange::ttgnd>,
    isPresent<MdlRange::ttpower>,
    isPresent<&Mdl::driver_schedule>,
    isPresent<&Tables::pullup>,
    isPresent<&Tables::pulldown>,
    isPresent<&Tables::power_clamp>,
    isPresent<&Tables::gnd_clamp>,
    isPresent<MdlRange::rgnd>,
    isPresent<MdlRange::rpower>,
    isPresent<MdlRange::rac>,
    isPresent<MdlRange::cac>,
    isPresent<&Tables::ramp>,
    isPresent<&Tables::rising_waveforms>,
    isPresent<&Tables::falling_waveforms>,
    isPresent<&Mdl::add_submodel_seen>,
    isPresent<&Mdl::receiver_thresholds>,
    isPresent<&MdlTables::isso_pd>,
    isPresent<&MdlTables::isso_pu>,
};
constexpr std::size_t kBeforeThresholds = 20; ///< so many of them only "[Receiver Thresholds]" has to precede as well

bool hasAny(const Mdl& model, std::span<const Presence> list) {
    return std::ranges::any_of(list, [&model](Presence present) { return present(model); });
}

constexpr RecordNameRules kName{"Model", {}, 128, 129, 130, 131, RepeatedNames::ofWhole, modelNameLimit};

constexpr EnumerationMessages kModeMessages{136, 158};

constexpr ModelTypeSet kNeverDriving{ModelType::input, ModelType::inputEcl, ModelType::terminator};
constexpr ModelTypeSet kAlwaysDriving{ModelType::output, ModelType::openDrain, ModelType::openSink,
                                      ModelType::openSource, ModelType::outputEcl};

SubmodelMode readSubmodelMode(Context& context, ModelType type, std::string_view text) {
    const SubmodelMode mode =
        readEnumeration(context.diagnostics, kSubmodelModes, "Add Submodel Mode", text, kModeMessages)
            .value_or(SubmodelMode::none);
    if (mode == SubmodelMode::driving && kNeverDriving.has(type)) errorAtLine(context.diagnostics, 216);
    if (mode == SubmodelMode::nonDriving && kAlwaysDriving.has(type)) errorAtLine(context.diagnostics, 217);
    return mode;
}

} // namespace

void readModelName(Context& context, MdlState& state, Mdl& model, std::string_view text) {
    readRecordName(context, state, model, text, kName);
}

void checkModelSpecOrder(Context& context, const Mdl& model) {
    if (hasAny(model, kLaterKeywords)) errorAtLine(context.diagnostics, 116);
}

void checkReceiverThresholdsOrder(Context& context, const Mdl& model) {
    if (hasAny(model, std::span(kLaterKeywords).first(kBeforeThresholds))) errorAtLine(context.diagnostics, 120);
    if (!kInputTypes.has(model.type())) warningAtLine(context.diagnostics, 117, modelTypeText(model.type()));
}

void openAddSubmodel(Context& context, Mdl& model, std::string_view text) {
    if (model.add_submodel_seen) errorAtLine(context.diagnostics, 208);
    model.add_submodel_seen = true;
    expectNoText(context, text, "Add Submodel", 137);
    if (isSeries(model)) errorAtLine(context.diagnostics, 209);
}

void readAddSubmodel(Context& context, Mdl& model, std::string_view text) {
    constexpr int kItems = 2; // name and mode
    const ItemList items = splitItems(context, text, kItems);
    if (items.count == 0) {
        errorAtLine(context.diagnostics, 211);
        return;
    }
    if (items.count > kItems) errorAtLine(context.diagnostics, 210);
    AddSubmodel& row = context.rows.add(model.add_submodels, {});
    const bool fits = storeName(context, row.name, items[0], longNameLimit(context.parse.version), 212);
    if (fits && isReservedWord(row.name)) errorAtLine(context.diagnostics, 213, row.name);
    if (items.count < kItems) {
        errorAtLine(context.diagnostics, 215);
        return;
    }
    row.mode = readSubmodelMode(context, model.type(), items[1]);
}

SeriesBlock* currentSeriesBlock(Context& context, MdlState& state, Mdl& model) {
    if (!isSeries(model)) {
        errorAtLine(context.diagnostics, 206);
        return nullptr;
    }
    if (state.series_block == nullptr) {
        if (model.type() == ModelType::seriesSwitch) errorAtLine(context.diagnostics, 207);
        model.on_block = std::make_unique<SeriesBlock>();
        state.series_block = model.on_block.get();
    }
    return state.series_block;
}

} // namespace kestrel
