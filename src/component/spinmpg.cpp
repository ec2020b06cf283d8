#include "component/spinmpg.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <utility>

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 2> kRequired{"pin_2", "model_name"};
constexpr std::array<std::string_view, 1> kOptional{"function_table_group"};
constexpr TableHeader kHeader{"Series_Pin_Mapping", kRequired, kOptional};
constexpr std::array<int, 2> kRowColumns{3, 4};

/// Of a row that was reported the model counts as used and the group as mapped, both silently.
void dropRow(SeriesPins& series_pins, const ItemList& items, IbisVersion version) {
    const int limit = modelNameLimit(version);
    SPin& row = series_pins.rows.emplace_back();
    row.group = cutName(items[3], limit);
    if (!isReservedWord(items[2])) row.model_name = cutName(items[2], limit);
    row.model_reported = true;
}

} // namespace

void seriesPinHeader(Context& context, SeriesPins& series_pins, std::string_view text) {
    readTableHeader(context, kHeader, series_pins.columns, text, 2602);
}

void seriesPinLine(Context& context, SeriesPins& series_pins, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const IbisVersion version = context.parse.version;
    const ItemList items = splitItems(context, text, kRowColumns.back());
    if (fitRow(context, series_pins.columns, kRowColumns, items.count, 2603, 2604) == RowFit::notAllowed) {
        dropRow(series_pins, items, version);
        return;
    }

    SPin row;
    row.pin_1_reported = !storeName(diagnostics, row.pin_1, items[0], pinNameLimit(version), 2605);
    row.pin_2_reported = !storeName(diagnostics, row.pin_2, items[1], pinNameLimit(version), 2605);
    row.model_reported = !storeName(diagnostics, row.model_name, items[2], modelNameLimit(version), 2606);
    row.group_reported = !storeName(diagnostics, row.group, items[3], modelNameLimit(version), 2607);
    const bool pin_reported = row.pin_1_reported || row.pin_2_reported;
    if (row.pin_1 == row.pin_2 && !pin_reported) errorAtLine(diagnostics, 2608, row.pin_1);
    if (isReservedWord(row.model_name)) {
        errorAtLine(diagnostics, 2609, row.model_name);
        dropRow(series_pins, items, version);
        return;
    }
    series_pins.rows.push_back(std::move(row));
}

} // namespace kestrel
