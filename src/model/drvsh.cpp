#include "model/drvsh.hpp"

#include "ibis/run.hpp"
#include "reader/line_form.hpp"

namespace kestrel {

namespace {

/// Types that cannot drive and so cannot be scheduled.
constexpr ModelTypeSet kNoDrivers{ModelType::input, ModelType::inputEcl, ModelType::terminator, ModelType::series,
                                  ModelType::seriesSwitch};

/// Stores the name, cut to its limit, and judges what is stored.
void setModelName(Run& run, const Mdl& model, std::string_view name, DrvShEntry& entry) {
    Diagnostics& diagnostics = run.diagnostics;
    storeName(diagnostics, entry.model_name, name, modelNameLimit(run.parse.version), 4212);
    if (entry.model_name == model.name) {
        errorAtLine(diagnostics, 4213, entry.model_name);
    } else if (isReservedWord(entry.model_name)) {
        errorAtLine(diagnostics, 4214, entry.model_name);
    }
}

void checkEntry(Run& run, const Mdl& model, std::string_view name) {
    const Mdl* driver = referenceMdl(run, name);
    if (driver == nullptr) {
        error(run.diagnostics, 4207, name, model.name);
        return;
    }
    if (driver->driver_schedule) error(run.diagnostics, 4208, name, model.name);
    if (kNoDrivers.has(driver->model_type)) error(run.diagnostics, 4209, name, model.name);
}

} // namespace

void openDrvSh(Run& run, Mdl& model, std::string_view text) {
    if (model.driver_schedule) errorAtLine(run.diagnostics, 4200);
    model.driver_schedule.emplace();
    expectNoText(run, text, "Driver Schedule", 4204);
}

void drvShLine(Run& run, Mdl& model, std::string_view text) {
    DrvShEntry& entry = model.driver_schedule->entries.emplace_back();
    const std::string_view name = takeItem(run, text);
    if (name.empty()) {
        errorAtLine(run.diagnostics, 4211);
        return;
    }
    setModelName(run, model, name, entry);
    entry.delays = readDly(run, text, entry.model_name);
}

void closeDrvSh(Run& run, const Mdl& model) {
    const std::size_t entries = model.driver_schedule->entries.size();
    if (entries == 0) {
        error(run.diagnostics, 4205, model.name);
    } else if (entries == 1) {
        warning(run.diagnostics, 4206, model.name);
    }
}

void checkDrvShs(Run& run) {
    const Ibis* root = currentRoot(run);
    if (root == nullptr) return;
    for (const Mdl& model : root->models.newestFirst()) {
        if (!model.driver_schedule) continue;
        const std::vector<DrvShEntry>& entries = model.driver_schedule->entries;
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            checkEntry(run, model, entry->model_name);
        }
    }
}

} // namespace kestrel
