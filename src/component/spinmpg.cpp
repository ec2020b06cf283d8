#include "component/spinmpg.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 2> kRequired{"pin_2", "model_name"};
constexpr std::array<std::string_view, 1> kOptional{"function_table_group"};
constexpr TableHeader kHeader{"Series_Pin_Mapping", kRequired, kOptional};
constexpr std::array<int, 2> kRowColumns{3, 4};

/// Of a row that was reported the model counts as used and the group as mapped, both silently.
void dropRow(Run& run, Cmpnt& component, const ItemList& items) {
    const int limit = modelNameLimit(run.parse.version);
    SPin& row = component.series_pins.emplace_back();
    row.group = cutName(items[3], limit);
    if (!isReservedWord(items[2])) row.model_name = cutName(items[2], limit);
    row.model_reported = true;
}

void checkPinName(Run& run, const Cmpnt& component, std::string_view pin, bool reported) {
    if (pin.empty() || reported || isKnownPin(component, pin)) return;
    error(run.diagnostics, 2610, pin, component.name);
}

/// A model without a type has been reported for that.
bool mayBeSeries(const Mdl& model) {
    return isSeries(model) || model.model_type == ModelType::notGiven || model.model_type == ModelType::noType;
}

/// True when every entry that names a model names one between pins.
bool mayBeSeries(const Ibis& root, const MSel& selector) {
    return std::ranges::all_of(selector.entries, [&root](const MSelEntry& entry) {
        const Mdl* const model = root.models.find(entry.model_name);
        return model == nullptr || mayBeSeries(*model);
    });
}

/// What `name` stands for in the whole file; a model found is marked as referenced.
SeriesModelKind resolve(Run& run, const Ibis& root, std::string_view name) {
    if (const Mdl* const model = referenceMdl(run, name)) {
        return mayBeSeries(*model) ? SeriesModelKind::series : SeriesModelKind::other;
    }
    const MSel* const selector = root.model_selectors.find(name);
    if (selector == nullptr) return SeriesModelKind::undefined;
    return mayBeSeries(root, *selector) ? SeriesModelKind::series : SeriesModelKind::other;
}

/// Reports the names of one kind, each at its first row that was not reported for it.
void reportModels(Run& run, const Cmpnt& component, SeriesModels& models, SeriesModelKind kind,
                  CheckedMessage<ArgKind::text, ArgKind::text> message) {
    for (const SPin& row : component.series_pins) {
        if (row.model_name.empty() || row.model_reported) continue;
        SeriesModel& model = models[row.model_name];
        if (model.kind != kind || model.reported_for == &component) continue;
        error(run.diagnostics, message, row.model_name, component.name);
        model.reported_for = &component;
    }
}

void checkModels(Run& run, const Ibis& root, const Cmpnt& component, SeriesModels& models) {
    for (const SPin& row : component.series_pins) {
        if (row.model_name.empty()) continue;
        const auto [at, is_new] = models.try_emplace(row.model_name);
        if (is_new) at->second.kind = resolve(run, root, row.model_name);
    }
    reportModels(run, component, models, SeriesModelKind::undefined, 2611);
    reportModels(run, component, models, SeriesModelKind::other, 2612);
}

/// Holds the rows to the groups that "[Series Switch Groups]" switches.
void checkGroups(Run& run, const Ibis& root, const Cmpnt& component) {
    for (const SPin& row : component.series_pins) {
        if (!row.group.empty() || row.pin_2.empty()) continue;
        const Mdl* const model = root.models.find(row.model_name);
        if (model == nullptr || model->model_type != ModelType::seriesSwitch) continue;
        warning(run.diagnostics, 2613, row.model_name, row.pin_1, row.pin_2, component.name);
    }
    std::unordered_set<std::string_view> known(component.dropped_groups.begin(), component.dropped_groups.end());
    for (const SwitchState& state : component.switch_states) {
        known.insert(state.on.begin(), state.on.end());
        known.insert(state.off.begin(), state.off.end());
    }
    for (const SPin& row : component.series_pins) {
        if (row.group.empty() || row.group_reported || row.pin_2.empty() || !known.insert(row.group).second) continue;
        warning(run.diagnostics, 2614, row.group, component.name);
    }
}

} // namespace

void seriesPinHeader(Run& run, Cmpnt& component, std::string_view text) {
    readTableHeader(run, kHeader, component.series_pin_columns, text, 2602);
}

void seriesPinLine(Run& run, Cmpnt& component, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, kRowColumns.back());
    if (fitRow(run, component.series_pin_columns, kRowColumns, items.count, 2603, 2604) == RowFit::notAllowed) {
        dropRow(run, component, items);
        return;
    }

    SPin row;
    const IbisVersion version = run.parse.version;
    row.pin_1_reported = !storeName(diagnostics, row.pin_1, items[0], pinNameLimit(version), 2605);
    row.pin_2_reported = !storeName(diagnostics, row.pin_2, items[1], pinNameLimit(version), 2605);
    row.model_reported = !storeName(diagnostics, row.model_name, items[2], modelNameLimit(version), 2606);
    row.group_reported = !storeName(diagnostics, row.group, items[3], modelNameLimit(version), 2607);
    const bool pin_reported = row.pin_1_reported || row.pin_2_reported;
    if (row.pin_1 == row.pin_2 && !pin_reported) errorAtLine(diagnostics, 2608, row.pin_1);
    if (isReservedWord(row.model_name)) {
        errorAtLine(diagnostics, 2609, row.model_name);
        dropRow(run, component, items);
        return;
    }
    component.series_pins.push_back(std::move(row));
}

void checkSeriesPins(Run& run, const Cmpnt& component, SeriesModels& models) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    if (!component.pins.empty()) {
        for (const SPin& row : component.series_pins) {
            checkPinName(run, component, row.pin_1, row.pin_1_reported);
            checkPinName(run, component, row.pin_2, row.pin_2_reported || row.pin_1 == row.pin_2);
        }
    }
    checkModels(run, *root, component, models);
    if (component.switch_groups_seen) checkGroups(run, *root, component);
}

} // namespace kestrel
