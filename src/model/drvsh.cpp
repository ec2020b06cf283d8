#include "model/drvsh.hpp"

#include "reader/context.hpp"
#include "reader/line_form.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

/// Stores the name, cut to its limit, and judges what is stored.
void setModelName(Context& context, std::string_view model, std::string_view name, DrvShEntry& entry) {
    Diagnostics& diagnostics = context.diagnostics;
    storeName(diagnostics, entry.model_name, name, modelNameLimit(context.parse.version), 4212);
    if (entry.model_name == model) {
        errorAtLine(diagnostics, 4213, entry.model_name);
    } else if (isReservedWord(entry.model_name)) {
        errorAtLine(diagnostics, 4214, entry.model_name);
    }
}

} // namespace

void openDrvSh(Context& context, std::unique_ptr<DrvSh>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 4200);
    slot = std::make_unique<DrvSh>();
    expectNoText(context, text, "Driver Schedule", 4204);
}

void drvShLine(Context& context, DrvSh& schedule, std::string_view text, std::string_view model) {
    DrvShEntry& entry = schedule.entries.emplace_back();
    const std::string_view name = takeItem(context, text);
    if (name.empty()) {
        errorAtLine(context.diagnostics, 4211);
        return;
    }
    setModelName(context, model, name, entry);
    entry.delays = readDly(context, text, entry.model_name);
}

void closeDrvSh(Context& context, const DrvSh& schedule, std::string_view model) {
    if (schedule.entries.empty()) {
        error(context.diagnostics, 4205, model);
    } else if (schedule.entries.size() == 1) {
        warning(context.diagnostics, 4206, model);
    }
}

} // namespace kestrel
