#include "ibis/run.hpp"
#include "model/mdl_parts.hpp"
#include "reader/line_form.hpp"

#include <algorithm>
#include <span>

namespace kestrel {

namespace {

/// What "[Model Spec]" should precede; "[Receiver Thresholds]" only has to precede the first of them.
constexpr std::array<Presence, 24> kLaterKeywords{
    isPresent<&Mdl::temperature_range>,
    isPresent<&Mdl::voltage_range>,
    isPresent<&Mdl::pullup_reference>,
    isPresent<&Mdl::pulldown_reference>,
    isPresent<&Mdl::power_clamp_reference>,
    isPresent<&Mdl::gnd_clamp_reference>,
    isPresent<&Mdl::ttgnd>,
    isPresent<&Mdl::ttpower>,
    isPresent<&Mdl::driver_schedule>,
    isPresent<&Mdl::pullup>,
    isPresent<&Mdl::pulldown>,
    isPresent<&Mdl::power_clamp>,
    isPresent<&Mdl::gnd_clamp>,
    isPresent<&Mdl::rgnd>,
    isPresent<&Mdl::rpower>,
    isPresent<&Mdl::rac>,
    isPresent<&Mdl::cac>,
    isPresent<&Mdl::ramp>,
    isPresent<&Mdl::rising_waveforms>,
    isPresent<&Mdl::falling_waveforms>,
    isPresent<&Mdl::add_submodel_seen>,
    isPresent<&Mdl::receiver_thresholds>,
    isPresent<&Mdl::isso_pd>,
    isPresent<&Mdl::isso_pu>,
};
constexpr std::size_t kAfterThresholds = 20;

bool hasAny(const Mdl& model, std::span<const Presence> list) {
    return std::ranges::any_of(list, [&model](Presence present) { return present(model); });
}

constexpr EnumerationMessages kModeMessages{136, 158};

constexpr ModelTypeSet kNeverDriving{ModelType::input, ModelType::inputEcl, ModelType::terminator};
constexpr ModelTypeSet kAlwaysDriving{ModelType::output, ModelType::openDrain, ModelType::openSink,
                                      ModelType::openSource, ModelType::outputEcl};

SubmodelMode readSubmodelMode(Run& run, ModelType type, std::string_view text) {
    const SubmodelMode mode = readEnumeration(run.diagnostics, kSubmodelModes, "Add Submodel Mode", text, kModeMessages)
                                  .value_or(SubmodelMode::none);
    if (mode == SubmodelMode::driving && kNeverDriving.has(type)) errorAtLine(run.diagnostics, 216);
    if (mode == SubmodelMode::nonDriving && kAlwaysDriving.has(type)) errorAtLine(run.diagnostics, 217);
    return mode;
}

} // namespace

void readModelName(Run& run, Mdl& model, std::string_view text) {
    const ItemList items = splitItems(run, text, 1);
    if (items.count != 1) errorAtLine(run.diagnostics, 128, items.count, "Model", 1);
    ObjectList<Mdl>& models = currentRoot(run)->models;
    if (items.count == 0) {
        models.enterName(model, model.name);
        return;
    }
    if (storeName(run.diagnostics, model.name, items[0], modelNameLimit(run.parse.version), 129)) {
        if (isReservedWord(model.name)) errorAtLine(run.diagnostics, 130, model.name);
        if (models.find(model.name) != nullptr) errorAtLine(run.diagnostics, 131, model.name);
    }
    models.enterName(model, model.name);
}

void checkModelSpecOrder(Run& run, const Mdl& model) {
    if (hasAny(model, kLaterKeywords)) errorAtLine(run.diagnostics, 116);
}

void checkReceiverThresholdsOrder(Run& run, const Mdl& model) {
    if (hasAny(model, std::span(kLaterKeywords).first(kAfterThresholds))) errorAtLine(run.diagnostics, 120);
    if (!kInputTypes.has(model.model_type)) warningAtLine(run.diagnostics, 117, modelTypeText(model.model_type));
}

void openAddSubmodel(Run& run, Mdl& model, std::string_view text) {
    if (model.add_submodel_seen) errorAtLine(run.diagnostics, 208);
    model.add_submodel_seen = true;
    expectNoText(run, text, "Add Submodel", 137);
    if (isSeries(model)) errorAtLine(run.diagnostics, 209);
}

void readAddSubmodel(Run& run, Mdl& model, std::string_view text) {
    constexpr int kItems = 2; // name and mode
    const ItemList items = splitItems(run, text, kItems);
    if (items.count == 0) {
        errorAtLine(run.diagnostics, 211);
        return;
    }
    if (items.count > kItems) errorAtLine(run.diagnostics, 210);
    AddSubmodel& row = model.add_submodels.emplace_back();
    const bool fits = storeName(run.diagnostics, row.name, items[0], kLongNameLimit, 212);
    if (fits && isReservedWord(row.name)) errorAtLine(run.diagnostics, 213, row.name);
    if (items.count < kItems) {
        errorAtLine(run.diagnostics, 215);
        return;
    }
    row.mode = readSubmodelMode(run, model.model_type, items[1]);
}

} // namespace kestrel
