#include "component/pinmpg.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <span>
#include <unordered_set>

namespace kestrel {

namespace {

constexpr std::string_view kNoConnection = "NC";

constexpr std::array<std::string_view, kBusColumns> kHeaders{"pulldown_ref", "pullup_ref", "gnd_clamp_ref",
                                                             "power_clamp_ref", "ext_ref"};
constexpr int kRequiredHeaders = 2;
constexpr std::array<int, 3> kColumns{3, 5, 6};

/// The numbers of columns that a version allows; the external reference came with version 4.
struct Allowed {
    std::span<const int> columns;
    std::string_view text;
};

Allowed allowedColumns(IbisVersion version) {
    if (version >= IbisVersion::v4) return {kColumns, "3, 5 or 6"};
    return {std::span(kColumns).first(2), "3 or 5"};
}

void readLabel(Run& run, PinMap& row, std::size_t column, std::string_view text) {
    std::string& label = row.labels[column];
    row.label_reported[column] = !storeName(run.diagnostics, label, text, kBusLabelLimit, 707);
}

/// "NA" is no placeholder here; it is taken for the one that is.
void correctLabel(Run& run, std::string& label) {
    if (!equalsNoCase(label, "NA")) return;
    warningAtLine(run.diagnostics, 709, label);
    label = kNoConnection;
}

/// What a dropped row names is not reported as missing elsewhere.
void dropRow(Cmpnt& component, const ItemList& items, IbisVersion version) {
    PinMap& row = component.dropped_pin_maps.emplace_back();
    row.pin = cutName(items[0], pinNameLimit(version));
    for (int place = 1; items.has(place); ++place) {
        row.labels[static_cast<std::size_t>(place - 1)] = cutName(items[place], kBusLabelLimit);
    }
}

bool isNoConnection(std::string_view label) { return label.empty() || equalsNoCase(label, kNoConnection); }

/// Pins without a buffer of their own need no supplies.
bool needsRow(const Pin& pin) {
    return !equalsNoCase(pin.model_name, "NC") && !equalsNoCase(pin.model_name, "CIRCUITCALL");
}

void checkRowPins(Run& run, const Cmpnt& component) {
    for (const PinMap& row : component.pin_maps) {
        if (row.pin_reported || isKnownPin(component, row.pin)) continue;
        error(run.diagnostics, 710, row.pin, component.name);
    }
}

void checkPinRows(Run& run, const Cmpnt& component) {
    std::unordered_set<std::string_view> dropped;
    for (const PinMap& row : component.dropped_pin_maps) {
        dropped.insert(row.pin);
    }
    for (const Pin& pin : component.pins) {
        // A repeated pin is judged with the first of its name.
        if (!needsRow(pin) || findPin(component, pin.name) != &pin) continue;
        if (component.pin_map_index.find(component.pin_maps, pin.name) != nullptr) continue;
        if (dropped.contains(pin.name)) continue;
        error(run.diagnostics, 711, pin.name, component.name);
    }
}

bool isGround(const Pin& pin) { return equalsNoCase(pin.model_name, "GND"); }

bool isSupply(const Pin& pin) { return isGround(pin) || equalsNoCase(pin.model_name, "POWER"); }

/// The rows whose pin is in the list and supplies a bus.
struct SupplyRow {
    const PinMap& row;
    bool is_ground;
};

std::vector<SupplyRow> supplyRows(const Cmpnt& component) {
    std::vector<SupplyRow> rows;
    for (const PinMap& row : component.pin_maps) {
        const Pin* const pin = findPin(component, row.pin);
        if (pin != nullptr && isSupply(*pin)) rows.push_back({row, isGround(*pin)});
    }
    return rows;
}

void checkSupplies(Run& run, const Cmpnt& component, const std::vector<SupplyRow>& supplies) {
    for (const auto& [row, is_ground] : supplies) {
        if (component.pin_map_index.find(component.pin_maps, row.pin) != &row) continue; // reported as repeated
        if (is_ground && !isNoConnection(row.label(BusColumn::pullupRef))) {
            error(run.diagnostics, 712, row.pin, component.name);
        }
        if (!is_ground && !isNoConnection(row.label(BusColumn::pulldownRef))) {
            error(run.diagnostics, 713, row.pin, component.name);
        }
    }
}

/// The labels of supplies, and those that may be: of dropped rows, unless their pin is known to be none, and of rows
/// whose pin was dropped.
std::unordered_set<std::string_view> supplyLabels(const Cmpnt& component, const std::vector<SupplyRow>& supplies) {
    std::unordered_set<std::string_view> labels;
    const auto add = [&labels](const PinMap& row) { labels.insert(row.labels.begin(), row.labels.end()); };
    for (const SupplyRow& supply : supplies) {
        add(supply.row);
    }
    for (const PinMap& row : component.dropped_pin_maps) {
        const Pin* const pin = findPin(component, row.pin);
        if (pin == nullptr || isSupply(*pin)) add(row);
    }
    if (component.dropped_pins.empty()) return labels;
    for (const PinMap& row : component.pin_maps) {
        if (findPin(component, row.pin) == nullptr && isKnownPin(component, row.pin)) add(row);
    }
    return labels;
}

void checkLabels(Run& run, const Cmpnt& component, const std::vector<SupplyRow>& supplies) {
    std::unordered_set<std::string_view> known = supplyLabels(component, supplies);
    for (const PinMap& row : component.pin_maps) {
        for (std::size_t column = 0; column < kBusColumns; ++column) {
            const std::string& label = row.labels[column];
            if (isNoConnection(label) || row.label_reported[column] || !known.insert(label).second) continue;
            error(run.diagnostics, 714, label, component.name);
        }
    }
}

} // namespace

void pinMapHeader(Run& run, Cmpnt& component, std::string_view text) {
    TableColumns& columns = component.pin_map_columns;
    if (columns.seen()) {
        errorAtLine(run.diagnostics, 702);
        return;
    }
    const Allowed allowed = allowedColumns(run.parse.version);
    const int most = allowed.columns.back() - 1; // the first column has no header
    const ItemList words = readHeaderWords(run, "Pin_Mapping", columns, text, most + 1);
    if (words.kept == 0) return;
    columns.count = 1 + words.count;
    if (std::ranges::find(allowed.columns, columns.count) == allowed.columns.end()) {
        errorAtLine(run.diagnostics, 703, columns.count, allowed.text);
        columns.faulty = true;
    }
    const std::span headers = std::span(kHeaders).first(static_cast<std::size_t>(most));
    expectHeaders(run, columns, words, headers, kRequiredHeaders, WrongHeaders::first);
    expectNoMoreHeaders(run, columns, words, most);
}

void pinMapLine(Run& run, Cmpnt& component, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const Allowed allowed = allowedColumns(run.parse.version);
    const ItemList items = splitItems(run, text, allowed.columns.back());
    const RowFit fit = fitRow(component.pin_map_columns, allowed.columns, items.count);
    if (fit == RowFit::notAllowed) {
        errorAtLine(diagnostics, 704, items.count, allowed.text);
        dropRow(component, items, run.parse.version);
        return;
    }
    if (fit == RowFit::notNamed) errorAtLine(diagnostics, 705, items.count, component.pin_map_columns.count);

    PinMap& row = component.pin_maps.emplace_back();
    row.pin_reported = !storeName(diagnostics, row.pin, items[0], pinNameLimit(run.parse.version), 706);
    for (int place = 1; items.has(place); ++place) {
        readLabel(run, row, static_cast<std::size_t>(place - 1), items[place]);
    }
    const bool is_new = component.pin_map_index.enterLast(component.pin_maps);
    if (!is_new && !row.pin_reported) {
        errorAtLine(diagnostics, 708, row.pin);
        row.pin_reported = true;
    }
    for (std::string& label : row.labels) {
        correctLabel(run, label);
    }
}

void checkPinMaps(Run& run, const Cmpnt& component) {
    if (!component.pin_map_columns.seen() || component.pins.empty()) return;
    checkRowPins(run, component);
    checkPinRows(run, component);
    const std::vector<SupplyRow> supplies = supplyRows(component);
    checkSupplies(run, component, supplies);
    checkLabels(run, component, supplies);
}

} // namespace kestrel
