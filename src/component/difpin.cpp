#include "component/difpin.hpp"

#include "ibis/run.hpp"

#include <array>
#include <cmath>

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 3> kRequired{"inv_pin", "vdiff", "tdelay_typ"};
constexpr std::array<std::string_view, 2> kOptional{"tdelay_min", "tdelay_max"};
constexpr TableHeader kHeader{"Diff_Pin", kRequired, kOptional};
constexpr std::array<int, 2> kRowColumns{4, 6};

/// A value of a row, behind the two pins.
struct Value {
    std::string_view label;
    Cell DifPin::*cell;
};

constexpr std::array<Value, 4> kValues{{{"vdiff", &DifPin::vdiff},
                                        {"tdelay_typ", &DifPin::tdelay_typ},
                                        {"tdelay_min", &DifPin::tdelay_min},
                                        {"tdelay_max", &DifPin::tdelay_max}}};

constexpr ModelTypeSet kOnlyDrive{ModelType::output,       ModelType::threeState, ModelType::openDrain,
                                  ModelType::openSink,     ModelType::openSource, ModelType::outputEcl,
                                  ModelType::threeStateEcl};
constexpr ModelTypeSet kOnlyReceive{ModelType::input, ModelType::inputEcl};

bool isNonInverting(const Cmpnt& component, std::string_view pin) {
    return component.diff_pin_index.find(component.diff_pins, pin) != nullptr;
}

bool isInverting(const Cmpnt& component, std::string_view pin) {
    return component.inv_pin_index.find(component.diff_pins, pin) != nullptr;
}

/// Compares the pins of a row with the rows before it.
void checkRepeatedPins(Run& run, const Cmpnt& component, DifPin& row) {
    if (isNonInverting(component, row.pin)) {
        if (!row.pin_reported) errorAtLine(run.diagnostics, 807, row.pin);
        row.pin_reported = true;
    } else if (isInverting(component, row.pin)) {
        caution(run.diagnostics, 808, row.pin);
    }
    if (!row.inv_pin.empty() && isInDiffPin(component, row.inv_pin)) caution(run.diagnostics, 808, row.inv_pin);
}

void readValues(Run& run, DifPin& row, const ItemList& items, int columns) {
    constexpr int kPins = 2;
    for (std::size_t i = 0; i < kValues.size(); ++i) {
        const int place = kPins + static_cast<int>(i);
        if (place >= columns) break;
        readCell(run.diagnostics, items[place], items.has(place), "Diff Pin", kValues[i].label, row.*kValues[i].cell);
    }
    if (row.vdiff.isNumber() && row.vdiff.value < 0.0) warningAtLine(run.diagnostics, 809, row.pin);
    const bool both = row.tdelay_min.isNumber() && row.tdelay_max.isNumber();
    if (both && std::abs(row.tdelay_min.value) > std::abs(row.tdelay_max.value)) caution(run.diagnostics, 810, row.pin);
}

/// Looks a pin of a row up. The model that it names is returned, if it names one that may be compared.
const Mdl* checkPinName(Run& run, const Ibis& root, const Cmpnt& component, std::string_view name, bool reported) {
    const Pin* const pin = name.empty() ? nullptr : findPin(component, name);
    if (pin == nullptr) {
        if (!name.empty() && !reported && !isKnownPin(component, name)) {
            error(run.diagnostics, 811, name, component.name);
        }
        return nullptr;
    }
    if (isUnmodeledPinName(pin->model_name)) {
        if (!reported) warning(run.diagnostics, 812, name, component.name, pin->model_name);
        return nullptr;
    }
    return root.models.find(pin->model_name);
}

void compareModels(Run& run, const Cmpnt& component, const DifPin& row, const Mdl& model, const Mdl& inv_model) {
    if ((isDifferential(model) || isDifferential(inv_model)) && &model != &inv_model) {
        warning(run.diagnostics, 813, row.pin, row.inv_pin, component.name);
    }
    const auto opposed = [](const Mdl& driver, const Mdl& receiver) {
        return kOnlyDrive.has(driver.model_type) && kOnlyReceive.has(receiver.model_type);
    };
    if (opposed(model, inv_model) || opposed(inv_model, model)) {
        warning(run.diagnostics, 814, row.pin, row.inv_pin, component.name);
    }
}

} // namespace

bool isInDiffPin(const Cmpnt& component, std::string_view pin) {
    return isNonInverting(component, pin) || isInverting(component, pin);
}

void diffPinHeader(Run& run, Cmpnt& component, std::string_view text) {
    readTableHeader(run, kHeader, component.diff_pin_columns, text, 802);
}

void diffPinLine(Run& run, Cmpnt& component, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, kRowColumns.back());
    const RowFit fit = fitRow(run, component.diff_pin_columns, kRowColumns, items.count, 803, 804);
    if (fit == RowFit::notAllowed) return;

    DifPin row;
    const int limit = pinNameLimit(run.parse.version);
    row.pin_reported = !storeName(diagnostics, row.pin, items[0], limit, 805);
    row.inv_pin_reported = !storeName(diagnostics, row.inv_pin, items[1], limit, 805);
    if (row.pin == row.inv_pin) {
        if (!row.pin_reported && !row.inv_pin_reported) errorAtLine(diagnostics, 806, row.pin);
        return;
    }
    checkRepeatedPins(run, component, row);
    readValues(run, row, items, fit == RowFit::notNamed ? kRowColumns.front() : kRowColumns.back());
    component.diff_pins.push_back(std::move(row));
    component.diff_pin_index.enterLast(component.diff_pins);
    component.inv_pin_index.enterLast(component.diff_pins);
}

void checkDiffPins(Run& run, const Cmpnt& component) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr || component.pins.empty()) return;
    for (const DifPin& row : component.diff_pins) {
        const Mdl* const model = checkPinName(run, *root, component, row.pin, row.pin_reported);
        const Mdl* const inv_model = checkPinName(run, *root, component, row.inv_pin, row.inv_pin_reported);
        if (model != nullptr && inv_model != nullptr) compareModels(run, component, row, *model, *inv_model);
    }
}

} // namespace kestrel
