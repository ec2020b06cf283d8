#include "ibis/check_pin_models.hpp"

#include "base/text_hash.hpp"
#include "component/cmpnt.hpp"
#include "ibis/check_circuit_calls.hpp"
#include "ibis/checks.hpp"
#include "ibis/ibis.hpp"
#include "ibis/model_marks.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"

#include <string>
#include <vector>

namespace kestrel {

namespace {

/// Looks a name up among the models, which marks the one found, then among the selectors.
void lookUp(const Ibis& root, ModelMarks& models, Name name, NamedModel& named) {
    named.looked_up = true;
    if (const ModelMark model = models.reference(name); model.exists) {
        named.found = true;
        named.differential = model.differential;
        named.series = model.series;
        named.not_series = model.not_series;
    } else if (const MSel* const selector = root.model_selectors.find(name)) {
        named.found = true;
        for (const MSelEntry& entry : selector->entries) {
            const ModelMark entered = models.find(entry.model_name);
            named.series = named.series || entered.series;
            named.not_series = named.not_series || entered.not_series;
        }
    }
}

/// What is known of a name without looking it up.
NamedModel& judgedName(ModelNames& names, Name name) {
    if (name.number() >= names.size()) names.resize(name.number() + std::size_t{1});
    NamedModel& named = names[name.number()];
    if (!named.is_judged) {
        named.is_judged = true;
        named.is_unmodeled = name.empty() || isUnmodeledPinName(name); // rows under a faulty header may lack it
        named.is_circuit_call = isCircuitCallName(name);
    }
    return named;
}

NamedModel& namedModel(const Ibis& root, ModelMarks& models, ModelNames& names, Name name) {
    NamedModel& named = judgedName(names, name);
    if (!named.looked_up) lookUp(root, models, name, named);
    return named;
}

/// False when there is nothing to report about this pin.
bool reportPin(Diagnostics& diagnostics, const Cmpnt& component, const Pin& pin, const NamedModel& model) {
    if (!model.found) {
        error(diagnostics, 609, pin.model_name, pin.name, component.name);
    } else if (model.series) {
        error(diagnostics, 610, pin.name, component.name, pin.model_name);
    } else if (model.differential && (component.diff_pins == nullptr || !isInDiffPin(*component.diff_pins, pin.name))) {
        caution(diagnostics, 614, pin.model_name, pin.name, component.name);
    } else {
        return false;
    }
    return true;
}

/// Looks a pin of a row up. The model that it names is returned, if it names one that may be compared.
const Mdl* diffPinModel(Context& context, const Ibis& root, const Cmpnt& component, std::string_view name,
                        bool reported) {
    const Pin* const pin = name.empty() ? nullptr : component.pins.find(name);
    if (pin == nullptr) {
        if (!name.empty() && !reported && !isKnownPin(component.pins, name)) {
            error(context.diagnostics, 811, name, component.name);
        }
        return nullptr;
    }
    if (isUnmodeledPinName(pin->model_name)) {
        if (!reported) warning(context.diagnostics, 812, name, component.name, pin->model_name);
        return nullptr;
    }
    return root.models.find(pin->model_name);
}

void compareModels(Context& context, const Cmpnt& component, const DifPin& row, const Mdl& model,
                   const Mdl& inv_model) {
    if ((isDifferential(model) || isDifferential(inv_model)) && &model != &inv_model) {
        warning(context.diagnostics, 813, row.pin, row.inv_pin, component.name);
    }
    if (areOpposed(model.type(), inv_model.type())) {
        warning(context.diagnostics, 814, row.pin, row.inv_pin, component.name);
    }
}

void checkSeriesPin(Context& context, const Cmpnt& component, std::string_view pin, bool reported) {
    if (pin.empty() || reported || isKnownPin(component.pins, pin)) return;
    error(context.diagnostics, 2610, pin, component.name);
}

/// Reports names for which `test` holds, each at its first row that was not reported for it.
template <class Test>
void reportSeriesModels(Context& context, const Cmpnt& component, ModelNames& names, Test test,
                        CheckedMessage<ArgKind::text, ArgKind::text> message) {
    for (const SPin& row : component.series_pins->rows) {
        if (row.model_name.empty() || row.model_reported) continue;
        NamedModel& model = names[row.model_name.number()];
        if (!test(model) || model.rows_reported_for == &component) continue;
        error(context.diagnostics, message, row.model_name, component.name);
        model.rows_reported_for = &component;
    }
}

void checkSeriesModels(Context& context, const Ibis& root, ModelMarks& models, const Cmpnt& component,
                       ModelNames& names) {
    for (const SPin& row : component.series_pins->rows) {
        if (!row.model_name.empty()) namedModel(root, models, names, row.model_name);
    }
    reportSeriesModels(
        context, component, names, [](const NamedModel& model) { return !model.found; }, 2611);
    reportSeriesModels(
        context, component, names, [](const NamedModel& model) { return model.not_series; }, 2612);
}

/// Holds the rows to the groups that are switched.
void checkSeriesGroups(Context& context, const Ibis& root, const Cmpnt& component, const SwitchGroups& switches) {
    const Rows<SPin>& rows = component.series_pins->rows;
    for (const SPin& row : rows) {
        if (!row.group.empty() || row.pin_2.empty()) continue;
        const Mdl* const model = root.models.find(row.model_name);
        if (model == nullptr || model->type() != ModelType::seriesSwitch) continue;
        warning(context.diagnostics, 2613, row.model_name, row.pin_1, row.pin_2, component.name);
    }
    ViewSet known(switches.dropped.begin(), switches.dropped.end());
    for (const SwitchState& state : switches.states) {
        known.insert(state.on.begin(), state.on.end());
        known.insert(state.off.begin(), state.off.end());
    }
    for (const SPin& row : rows) {
        if (row.group.empty() || row.group_reported || row.pin_2.empty() || !known.insert(row.group).second) continue;
        warning(context.diagnostics, 2614, row.group, component.name);
    }
}

/// Reports groups of states that no row has.
void checkSwitchGroups(Context& context, const Cmpnt& component, const SwitchGroups& switches) {
    ViewSet mapped;
    if (component.series_pins != nullptr) {
        for (const SPin& row : component.series_pins->rows) {
            mapped.insert(row.group);
        }
    }
    for (const std::string& group : switches.groups.names) {
        if (!mapped.contains(group)) warning(context.diagnostics, 2508, group, component.name);
    }
}

} // namespace

void checkPinModels(Context& context, const Ibis& root, ModelMarks& models, const Cmpnt& component, ModelNames& names) {
    const IbisVersion version = context.parse.version;
    const auto called = circuitCallPins(component);
    for (const Pin& pin : component.pins) {
        NamedModel& model = judgedName(names, pin.model_name);
        if (model.is_unmodeled) continue;
        // Before version 4 the word is a name like any other.
        if (model.is_circuit_call && version >= IbisVersion::v4) {
            // A repeated pin is judged with the first of its name.
            const bool judged = component.pins.isFirst(pin);
            if (judged && !called.contains(pin.name)) error(context.diagnostics, 611, pin.name, component.name);
            continue;
        }
        if (!model.looked_up) lookUp(root, models, pin.model_name, model);
        if (isModelReported(component.pins, pin) || model.pin_reported_for == &component) continue;
        if (reportPin(context.diagnostics, component, pin, model)) model.pin_reported_for = &component;
    }
}

void checkDiffPinModels(Context& context, const Ibis& root, const Cmpnt& component) {
    if (component.diff_pins == nullptr || component.pins.empty()) return;
    for (const DifPin& row : component.diff_pins->rows) {
        const Mdl* const model = diffPinModel(context, root, component, row.pin, row.pin_reported);
        const Mdl* const inv_model = diffPinModel(context, root, component, row.inv_pin, row.inv_pin_reported);
        if (model != nullptr && inv_model != nullptr) compareModels(context, component, row, *model, *inv_model);
    }
}

void checkSeriesPins(Context& context, const Ibis& root, ModelMarks& models, const Cmpnt& component,
                     ModelNames& names) {
    const SwitchGroups* const switches = component.switch_groups.get();
    if (component.series_pins != nullptr) {
        if (!component.pins.empty()) {
            for (const SPin& row : component.series_pins->rows) {
                checkSeriesPin(context, component, row.pin_1, row.pin_1_reported);
                checkSeriesPin(context, component, row.pin_2, row.pin_2_reported || row.pin_1 == row.pin_2);
            }
        }
        checkSeriesModels(context, root, models, component, names);
        if (switches != nullptr) checkSeriesGroups(context, root, component, *switches);
    }
    if (switches != nullptr) checkSwitchGroups(context, component, *switches);
}

} // namespace kestrel
