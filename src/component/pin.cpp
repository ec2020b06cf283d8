#include "component/pin.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

constexpr int kNameColumns = 3; ///< pin name, signal name, model name
constexpr int kAllColumns = 6;  ///< and the three values
constexpr std::array<int, 2> kRowColumns{kNameColumns, kAllColumns};

constexpr std::array<std::string_view, 2> kNameHeaders{"signal_name", "model_name"};
constexpr std::array<std::string_view, kAllColumns - kNameColumns> kValueHeaders{"R_pin", "L_pin", "C_pin"};
constexpr std::array<Cell Pin::*, kValueHeaders.size()> kValues{&Pin::r_pin, &Pin::l_pin, &Pin::c_pin};
constexpr TableHeader kHeader{"Pin", kNameHeaders, kValueHeaders, true};

void readValue(Diagnostics& diagnostics, Pin& pin, std::size_t column, std::string_view text) {
    Cell& cell = pin.*kValues[column];
    readCell(diagnostics, text, true, "Pin", kValueHeaders[column], cell);
    if (cell.isNumber() && cell.value < 0.0) warningAtLine(diagnostics, 608, kValueHeaders[column], pin.name);
}

void readValues(Diagnostics& diagnostics, const TableColumns& columns, Pin& pin, const ItemList& items) {
    for (int place = 0; items.has(kNameColumns + place); ++place) {
        const auto column = columns.optional[static_cast<std::size_t>(place)];
        if (column) readValue(diagnostics, pin, *column, items[kNameColumns + place]);
    }
}

bool isSeriesEntry(const Ibis& root, const MSelEntry& entry) {
    const Mdl* const model = root.models.find(entry.model_name);
    return model != nullptr && isSeries(*model);
}

/// What `name` stands for in the whole file; a model found is marked as referenced.
PinModelKind resolveModelName(Run& run, const Ibis& root, std::string_view name) {
    if (const Mdl* const model = referenceMdl(run, name)) {
        if (isSeries(*model)) return PinModelKind::series;
        return isDifferential(*model) ? PinModelKind::differential : PinModelKind::single;
    }
    const MSel* const selector = root.model_selectors.find(name);
    if (selector == nullptr) return PinModelKind::undefined;
    const bool series =
        std::ranges::any_of(selector->entries, [&root](const MSelEntry& entry) { return isSeriesEntry(root, entry); });
    return series ? PinModelKind::series : PinModelKind::single;
}

/// False when there is nothing to report about this pin.
bool reportPin(Diagnostics& diagnostics, const Cmpnt& component, const Pin& pin, PinModelKind kind) {
    switch (kind) {
    case PinModelKind::undefined: error(diagnostics, 609, pin.model_name, pin.name, component.name); return true;
    case PinModelKind::series: error(diagnostics, 610, pin.name, component.name, pin.model_name); return true;
    case PinModelKind::differential:
        if (isInDiffPin(component, pin.name)) return false;
        caution(diagnostics, 614, pin.model_name, pin.name, component.name);
        return true;
    case PinModelKind::single: return false;
    }
    return false;
}

/// True for a pin that a circuit call connects, which came with version 4; before it the word is a name like any other.
bool isCircuitCallPin(const Pin& pin, IbisVersion version) {
    return version >= IbisVersion::v4 && equalsNoCase(pin.model_name, "CIRCUITCALL");
}

/// True when no model or selector is meant. Rows under a faulty header may lack the model name.
bool needsNoModel(const Pin& pin) { return pin.model_name.empty() || isUnmodeledPinName(pin.model_name); }

} // namespace

const Pin* findPin(const Cmpnt& component, std::string_view name) {
    return component.pin_index.find(component.pins, name);
}

bool isKnownPin(const Cmpnt& component, std::string_view name) {
    return findPin(component, name) != nullptr || component.dropped_pins.contains(name);
}

std::string_view listedPinName(const Cmpnt& component, std::string_view written) {
    const auto at = component.cut_pins.find(written);
    return at == component.cut_pins.end() ? written : std::string_view(at->second);
}

bool isUnmodeledPinName(std::string_view model_name) {
    return equalsNoCase(model_name, "POWER") || equalsNoCase(model_name, "GND") || equalsNoCase(model_name, "NC");
}

void pinHeader(Run& run, Cmpnt& component, std::string_view text) {
    readTableHeader(run, kHeader, component.pin_columns, text, 523);
}

void pinLine(Run& run, Cmpnt& component, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, kAllColumns);
    const RowFit fit = fitRow(run, component.pin_columns, kRowColumns, items.count, 602, 603);
    const IbisVersion version = run.parse.version;
    if (fit == RowFit::notAllowed && items.count < kNameColumns) {
        component.dropped_pins.emplace(items[0]);
        component.dropped_pins.emplace(cutName(items[0], pinNameLimit(version)));
        return;
    }

    Pin& pin = component.pins.emplace_back();
    const bool name_fits = storeName(diagnostics, pin.name, items[0], pinNameLimit(version), 604);
    if (!name_fits) component.cut_pins.try_emplace(std::string(items[0]), pin.name);
    const int long_limit = modelNameLimit(version); // signal names have the same
    storeName(diagnostics, pin.signal_name, items[1], long_limit, 605);
    const bool model_fits = storeName(diagnostics, pin.model_name, items[2], long_limit, 606);
    const bool is_new = component.pin_index.enterLast(component.pins);
    if (!is_new && name_fits) errorAtLine(diagnostics, 607, pin.name, component.name);
    const bool is_na = equalsNoCase(pin.model_name, "NA");
    if (is_na) errorAtLine(diagnostics, 612, pin.model_name);
    pin.model_reported = !model_fits || is_na;
    if (fit != RowFit::notAllowed) readValues(diagnostics, component.pin_columns, pin, items);
}

void checkPins(Run& run, const Cmpnt& component, PinModels& models) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    const IbisVersion version = run.parse.version;
    const auto called = circuitCallPins(component);
    for (const Pin& pin : component.pins) {
        if (needsNoModel(pin)) continue;
        if (isCircuitCallPin(pin, version)) {
            const bool repeated = findPin(component, pin.name) != &pin; // judged with the first of its name
            if (!repeated && !called.contains(pin.name)) error(run.diagnostics, 611, pin.name, component.name);
            continue;
        }
        const auto [at, is_new] = models.try_emplace(pin.model_name);
        PinModel& model = at->second;
        if (is_new) model.kind = resolveModelName(run, *root, pin.model_name);
        if (pin.model_reported || model.reported_for == &component) continue;
        if (reportPin(run.diagnostics, component, pin, model.kind)) model.reported_for = &component;
    }
}

} // namespace kestrel
