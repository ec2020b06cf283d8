#include "base/name_table.hpp"
#include "component/cmpnt.hpp"
#include "ibis/checks.hpp"
#include "ibis/ibis.hpp"
#include "ibis/model_marks.hpp"
#include "model/acdc.hpp"
#include "model/mdl.hpp"
#include "model/msel.hpp"
#include "model/submdl.hpp"
#include "reader/names.hpp"

#include <algorithm>
#include <vector>

namespace kestrel {

namespace {

/// A set of names.
class Names {
public:
    explicit Names(const NameTable& names) : has_(names.numbers()) {}
    void insert(Name name) { has_[name.number()] = true; }
    [[nodiscard]] bool contains(Name name) const { return has_[name.number()]; }

private:
    std::vector<bool> has_; // by the numbers of the names
};

void checkDriver(Context& context, ModelMarks& models, const Mdl& model, Name name) {
    const ModelMark driver = models.reference(name);
    if (!driver.exists) {
        error(context.diagnostics, 4207, name, model.name);
        return;
    }
    if (driver.scheduled) error(context.diagnostics, 4208, name, model.name);
    if (driver.no_driver) error(context.diagnostics, 4209, name, model.name);
}

/// What pins may name to have a composite current: the models with one, and the selectors that offer such a model.
Names namesWithCurrent(const Context& context, const Ibis& root) {
    Names models(context.names);
    for (const Mdl& model : root.models.newestFirst()) {
        if (root.models.find(model.name) == &model && hasCompositeCurrent(model)) models.insert(model.name);
    }
    Names names = models;
    for (const MSel& selector : root.model_selectors.newestFirst()) {
        // A name means a model before it means a selector, and the newest of its kind.
        if (root.models.find(selector.name) != nullptr || root.model_selectors.find(selector.name) != &selector) {
            continue;
        }
        const auto has_current = [&models](const MSelEntry& entry) { return models.contains(entry.model_name); };
        if (std::ranges::any_of(selector.entries, has_current)) names.insert(selector.name);
    }
    return names;
}

/// Model names of all pins and rows between pins.
Names usedModelNames(const Context& context, const Ibis& root) {
    Names names(context.names);
    for (const Cmpnt& component : root.components.newestFirst()) {
        for (const Pin& pin : component.pins) {
            names.insert(pin.model_name);
        }
        if (component.series_pins == nullptr) continue;
        for (const SPin& row : component.series_pins->rows) {
            names.insert(row.model_name);
        }
    }
    return names;
}

/// Looks the entry's model up and marks it; a name without a model, or a reserved word, counts as single-ended.
bool isSingleEnded(Context& context, ModelMarks& models, const MSel& selector, Name model_name) {
    if (isReservedWord(model_name)) return true;
    const ModelMark model = models.reference(model_name);
    if (model.exists) return !model.differential;
    error(context.diagnostics, 4024, model_name, selector.name);
    return true;
}

/// The first entry decides of which kind the selector is; the others are held to it.
void checkEntries(Context& context, ModelMarks& models, MSel& selector) {
    for (const MSelEntry& entry : selector.entries) {
        const bool single_ended = isSingleEnded(context, models, selector, entry.model_name);
        if (!selector.single_ended) selector.single_ended = single_ended;
        if (single_ended == *selector.single_ended) continue;
        if (single_ended) {
            warning(context.diagnostics, 4023, entry.model_name, selector.name);
        } else {
            warning(context.diagnostics, 4022, entry.model_name, selector.name);
        }
    }
}

/// Warns of submodels that no model adds.
void checkSubmodelUse(Context& context, const Ibis& root) {
    Names added(context.names);
    for (const Mdl& model : root.models.newestFirst()) {
        for (const AddSubmodel& row : model.add_submodels) {
            added.insert(row.name);
        }
    }
    for (const SubMdl& submodel : root.submodels.newestFirst()) {
        const About about(context.diagnostics, submodel);
        if (!added.contains(submodel.name)) warning(context.diagnostics, 220, submodel.name);
    }
}

} // namespace

void checkRcvThs(Context& context, const Ibis& root) {
    for (const Mdl& model : root.models.newestFirst()) {
        if (!model.receiver_thresholds) continue;
        const About about(context.diagnostics, model);
        checkRcvTh(context, *model.receiver_thresholds, model.name);
    }
}

void checkCompositeCurrents(Context& context, const Ibis& root) {
    for (const Mdl& model : root.models.newestFirst()) {
        const About about(context.diagnostics, model);
        checkCompositeCurrents(context, model);
    }
}

void checkComponentCurrents(Context& context, const Ibis& root) {
    if (context.diagnostics.silence_cautions) return;
    const Names names = namesWithCurrent(context, root);
    for (const Cmpnt& component : root.components.newestFirst()) {
        const About about(context.diagnostics, component);
        const auto has_current = [&names](const Pin& pin) { return names.contains(pin.model_name); };
        if (component.pin_mapping != nullptr || std::ranges::none_of(component.pins, has_current)) continue;
        caution(context.diagnostics, 1708, component.name);
    }
}

void checkDrvShs(Context& context, const Ibis& root, ModelMarks& models) {
    for (const Mdl& model : root.models.newestFirst()) {
        if (!model.driver_schedule) continue;
        const About about(context.diagnostics, model);
        const Rows<DrvShEntry>& entries = model.driver_schedule.entries;
        for (std::size_t place = entries.size(); place > 0; --place) {
            checkDriver(context, models, model, entries[place - 1].model_name);
        }
    }
}

void checkMSels(Context& context, Ibis& root, ModelMarks& models) {
    if (root.model_selectors.empty()) return;
    // Gathered once: there may be as many selectors as pins.
    const Names used = usedModelNames(context, root);
    for (MSel& selector : root.model_selectors.newestFirst()) {
        const About about(context.diagnostics, selector);
        if (models.reference(selector.name).exists) error(context.diagnostics, 4021, selector.name);
        if (!root.components.empty() && !used.contains(selector.name)) {
            warning(context.diagnostics, 4026, selector.name);
        }
        checkEntries(context, models, selector);
    }
}

void checkAddedSubmodels(Context& context, const Ibis& root) {
    if (!root.submodels.empty()) checkSubmodelUse(context, root);
    for (const Mdl& model : root.models.newestFirst()) {
        const About about(context.diagnostics, model);
        for (const AddSubmodel& row : model.add_submodels) {
            if (root.submodels.find(row.name) == nullptr) error(context.diagnostics, 218, row.name, model.name);
        }
    }
}

void checkReferences(Context& context, const Ibis& root) {
    for (const Mdl& model : root.models.newestFirst()) {
        if (model.referenced) continue;
        const About about(context.diagnostics, model);
        warning(context.diagnostics, 219, model.name);
        return;
    }
}

} // namespace kestrel
