#include "component/pin.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <algorithm>

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
    if (cell.isNumber() && cell.value() < 0.0) warningAtLine(diagnostics, 608, kValueHeaders[column], pin.name);
}

void readValues(Diagnostics& diagnostics, const TableColumns& columns, Pin& pin, const ItemList& items) {
    for (int place = 0; items.has(kNameColumns + place); ++place) {
        const auto column = columns.optional[static_cast<std::size_t>(place)];
        if (column) readValue(diagnostics, pin, *column, items[kNameColumns + place]);
    }
}

ReportedPins& reportedPins(PinList& pins) {
    if (pins.reported == nullptr) pins.reported = std::make_unique<ReportedPins>();
    return *pins.reported;
}

} // namespace

bool isKnownPin(const PinList& pins, std::string_view name) {
    return pins.has(name) || (pins.reported != nullptr && pins.reported->dropped_names.contains(name));
}

bool isModelReported(const PinList& pins, const Pin& pin) {
    const auto place = static_cast<std::uint32_t>(&pin - pins.begin());
    return pins.reported != nullptr && std::ranges::binary_search(pins.reported->models, place);
}

std::string_view listedPinName(const PinList& pins, std::string_view written) {
    if (pins.reported == nullptr) return written;
    const auto& cut = pins.reported->cut_names;
    const auto at = cut.find(written);
    return at == cut.end() ? written : at->second.view();
}

bool isUnmodeledPinName(std::string_view model_name) {
    return equalsNoCase(model_name, "POWER") || equalsNoCase(model_name, "GND") || equalsNoCase(model_name, "NC");
}

bool isCircuitCallName(std::string_view model_name) { return equalsNoCase(model_name, "CIRCUITCALL"); }

void pinHeader(Context& context, PinList& pins, std::string_view text) {
    readTableHeader(context, kHeader, pins.columns, text, 523);
}

void pinLine(Context& context, PinList& pins, std::string_view component, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, kAllColumns);
    const RowFit fit = fitRow(context, pins.columns, kRowColumns, items.count, 602, 603);
    const IbisVersion version = context.parse.version;
    if (fit == RowFit::notAllowed && items.count < kNameColumns) {
        TextSet& dropped = reportedPins(pins).dropped_names;
        dropped.emplace(items[0]);
        dropped.emplace(cutName(items[0], pinNameLimit(version)));
        return;
    }

    Pin row;
    const bool name_fits = storeName(context, row.name, items[0], pinNameLimit(version), 604);
    if (!name_fits) reportedPins(pins).cut_names.try_emplace(std::string(items[0]), row.name);
    const int long_limit = modelNameLimit(version); // signal names have the same
    storeName(context, row.signal_name, items[1], long_limit, 605);
    const bool model_fits = storeName(context, row.model_name, items[2], long_limit, 606);
    const bool is_new = pins.add(context.rows, row);
    pins.lines.add(pins.size() - 1, context.parse.line);
    Pin& pin = pins.back();
    if (!is_new && name_fits) errorAtLine(diagnostics, 607, pin.name, component);
    const bool is_na = equalsNoCase(pin.model_name, "NA");
    if (is_na) errorAtLine(diagnostics, 612, pin.model_name);
    if (!model_fits || is_na) reportedPins(pins).models.push_back(static_cast<std::uint32_t>(pins.size() - 1));
    if (fit != RowFit::notAllowed) readValues(diagnostics, pins.columns, pin, items);
}

} // namespace kestrel
