#include "component/pin.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

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

ReportedPinNames& reportedNames(PinList& pins) {
    if (pins.reported_names == nullptr) pins.reported_names = std::make_unique<ReportedPinNames>();
    return *pins.reported_names;
}

} // namespace

bool isKnownPin(const PinList& pins, std::string_view name) {
    return pins.has(name) || (pins.reported_names != nullptr && pins.reported_names->dropped.contains(name));
}

std::string_view listedPinName(const PinList& pins, std::string_view written) {
    if (pins.reported_names == nullptr) return written;
    const auto& cut = pins.reported_names->cut;
    const auto at = cut.find(written);
    return at == cut.end() ? written : std::string_view(at->second);
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
        TextSet& dropped = reportedNames(pins).dropped;
        dropped.emplace(items[0]);
        dropped.emplace(cutName(items[0], pinNameLimit(version)));
        return;
    }

    Pin row;
    const bool name_fits = storeName(diagnostics, row.name, items[0], pinNameLimit(version), 604);
    if (!name_fits) reportedNames(pins).cut.try_emplace(std::string(items[0]), row.name);
    const int long_limit = modelNameLimit(version); // signal names have the same
    storeName(diagnostics, row.signal_name, items[1], long_limit, 605);
    const bool model_fits = storeName(diagnostics, row.model_name, items[2], long_limit, 606);
    const bool is_new = pins.add(std::move(row));
    Pin& pin = pins.back();
    if (!is_new && name_fits) errorAtLine(diagnostics, 607, pin.name, component);
    const bool is_na = equalsNoCase(pin.model_name, "NA");
    if (is_na) errorAtLine(diagnostics, 612, pin.model_name);
    pin.model_reported = !model_fits || is_na;
    if (fit != RowFit::notAllowed) readValues(diagnostics, pins.columns, pin, items);
}

} // namespace kestrel
