#include "component/pinmpg.hpp"

#include "base/rows.hpp"
#include "base/text_hash.hpp"
#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

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

void readLabel(Context& context, PinMap& row, std::size_t column, std::string_view text) {
    std::string& label = row.labels[column];
    row.label_reported[column] =
        !storeName(context.diagnostics, label, text, busLabelLimit(context.parse.version), 707);
}

/// "NA" is no placeholder here; it is taken for the one that is.
void correctLabel(Context& context, std::string& label) {
    if (!equalsNoCase(label, "NA")) return;
    warningAtLine(context.diagnostics, 709, label);
    label = kNoConnection;
}

/// What a dropped row names is not reported as missing elsewhere.
void dropRow(PinMapping& mapping, const ItemList& items, IbisVersion version) {
    PinMap& row = mapping.dropped_rows.emplace_back();
    row.pin = cutName(items[0], pinNameLimit(version));
    for (int place = 1; items.has(place); ++place) {
        row.labels[static_cast<std::size_t>(place - 1)] = cutName(items[place], busLabelLimit(version));
    }
}

bool isNoConnection(std::string_view label) { return label.empty() || equalsNoCase(label, kNoConnection); }

/// Pins without a buffer of their own need no supplies.
bool needsRow(const Pin& pin) { return !equalsNoCase(pin.model_name, "NC") && !isCircuitCallName(pin.model_name); }

/// What the checks of a whole mapping look at.
struct MappedPins {
    const PinMapping& mapping;
    const PinList& pins;
    std::string_view component; ///< its name
};

void checkRowPins(Context& context, const MappedPins& of) {
    for (const PinMap& row : of.mapping.rows) {
        if (row.pin_reported || isKnownPin(of.pins, row.pin)) continue;
        error(context.diagnostics, 710, row.pin, of.component);
    }
}

void checkPinRows(Context& context, const MappedPins& of) {
    ViewSet dropped;
    for (const PinMap& row : of.mapping.dropped_rows) {
        dropped.insert(row.pin);
    }
    for (const Pin& pin : of.pins) {
        // A repeated pin is judged with the first of its name.
        if (!needsRow(pin) || !of.pins.isFirst(pin)) continue;
        if (of.mapping.rows.has(pin.name) || dropped.contains(pin.name)) continue;
        error(context.diagnostics, 711, pin.name, of.component);
    }
}

bool isGround(const Pin& pin) { return equalsNoCase(pin.model_name, "GND"); }

bool isSupply(const Pin& pin) { return isGround(pin) || equalsNoCase(pin.model_name, "POWER"); }

/// The rows whose pin is in the list and supplies a bus.
struct SupplyRow {
    const PinMap& row;
    bool is_ground;
};

std::vector<SupplyRow> supplyRows(const MappedPins& of) {
    std::vector<SupplyRow> rows;
    for (const PinMap& row : of.mapping.rows) {
        const Pin* const pin = of.pins.find(row.pin);
        if (pin != nullptr && isSupply(*pin)) rows.push_back({row, isGround(*pin)});
    }
    return rows;
}

void checkSupplies(Context& context, const MappedPins& of, const std::vector<SupplyRow>& supplies) {
    for (const auto& [row, is_ground] : supplies) {
        if (!of.mapping.rows.isFirst(row)) continue; // reported as repeated
        if (is_ground && !isNoConnection(row.label(BusColumn::pullupRef))) {
            error(context.diagnostics, 712, row.pin, of.component);
        }
        if (!is_ground && !isNoConnection(row.label(BusColumn::pulldownRef))) {
            error(context.diagnostics, 713, row.pin, of.component);
        }
    }
}

/// The labels of supplies, and those that may be: of dropped rows, unless their pin is known to be none, and of rows
/// whose pin was dropped.
ViewSet supplyLabels(const MappedPins& of, const std::vector<SupplyRow>& supplies) {
    ViewSet labels;
    const auto add = [&labels](const PinMap& row) { labels.insert(row.labels.begin(), row.labels.end()); };
    for (const SupplyRow& supply : supplies) {
        add(supply.row);
    }
    for (const PinMap& row : of.mapping.dropped_rows) {
        const Pin* const pin = of.pins.find(row.pin);
        if (pin == nullptr || isSupply(*pin)) add(row);
    }
    for (const PinMap& row : of.mapping.rows) {
        if (!of.pins.has(row.pin) && isKnownPin(of.pins, row.pin)) add(row);
    }
    return labels;
}

void checkLabels(Context& context, const MappedPins& of, const std::vector<SupplyRow>& supplies) {
    // These may connect a label.
    for (const LaterKeyword keyword : {LaterKeyword::busLabel, LaterKeyword::dieSupplyPads}) {
        if (wasPassedOver(context.parse, keyword)) return;
    }
    ViewSet known = supplyLabels(of, supplies);
    for (const PinMap& row : of.mapping.rows) {
        for (std::size_t column = 0; column < kBusColumns; ++column) {
            const std::string& label = row.labels[column];
            if (isNoConnection(label) || row.label_reported[column] || !known.insert(label).second) continue;
            error(context.diagnostics, 714, label, of.component);
        }
    }
}

} // namespace

void pinMapHeader(Context& context, PinMapping& mapping, std::string_view text) {
    TableColumns& columns = mapping.columns;
    if (columns.seen()) {
        errorAtLine(context.diagnostics, 702);
        return;
    }
    const Allowed allowed = allowedColumns(context.parse.version);
    const int most = allowed.columns.back() - 1; // the first column has no header
    const ItemList words = readHeaderWords(context, "Pin_Mapping", columns, text, most + 1);
    if (words.kept == 0) return;
    columns.count = 1 + words.count;
    if (!contains(allowed.columns, columns.count)) {
        errorAtLine(context.diagnostics, 703, columns.count, allowed.text);
        columns.faulty = true;
    }
    const std::span headers = std::span(kHeaders).first(static_cast<std::size_t>(most));
    expectHeaders(context, columns, words, headers, kRequiredHeaders, WrongHeaders::first);
    expectNoMoreHeaders(context, columns, words, most);
}

void pinMapLine(Context& context, PinMapping& mapping, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const IbisVersion version = context.parse.version;
    const Allowed allowed = allowedColumns(version);
    const ItemList items = splitItems(context, text, allowed.columns.back());
    const RowFit fit = fitRow(mapping.columns, allowed.columns, items.count);
    if (fit == RowFit::notAllowed) {
        errorAtLine(diagnostics, 704, items.count, allowed.text);
        dropRow(mapping, items, version);
        return;
    }
    if (fit == RowFit::notNamed) errorAtLine(diagnostics, 705, items.count, mapping.columns.count);

    PinMap read;
    read.pin_reported = !storeName(diagnostics, read.pin, items[0], pinNameLimit(version), 706);
    for (int place = 1; items.has(place); ++place) {
        readLabel(context, read, static_cast<std::size_t>(place - 1), items[place]);
    }
    const bool is_new = mapping.rows.add(std::move(read));
    PinMap& row = mapping.rows.back();
    if (!is_new && !row.pin_reported) {
        errorAtLine(diagnostics, 708, row.pin);
        row.pin_reported = true;
    }
    for (std::string& label : row.labels) {
        correctLabel(context, label);
    }
}

void checkPinMaps(Context& context, const PinMapping& mapping, const PinList& pins, std::string_view component) {
    if (pins.empty()) return;
    const MappedPins of{mapping, pins, component};
    checkRowPins(context, of);
    checkPinRows(context, of);
    // Older versions leave open in which column a supply names its bus.
    if (context.parse.version < IbisVersion::v4) return;
    const std::vector<SupplyRow> supplies = supplyRows(of);
    checkSupplies(context, of, supplies);
    checkLabels(context, of, supplies);
}

} // namespace kestrel
