#include "component/spinmpg.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 2> kRequired{"pin_2", "model_name"};
constexpr std::array<std::string_view, 1> kOptional{"function_table_group"};
constexpr TableHeader kHeader{"Series_Pin_Mapping", kRequired, kOptional};
constexpr std::array<int, 2> kRowColumns{3, 4};

/// Of a row that was reported the model counts as used and the group as mapped, both silently.
void dropRow(Context& context, SeriesPins& series_pins, const ItemList& items) {
    const int limit = modelNameLimit(context.parse.version);
    SPin row;
    row.group = context.names.enter(cutName(items[3], limit));
    if (!isReservedWord(items[2])) row.model_name = context.names.enter(cutName(items[2], limit));
    row.model_reported = true;
    context.rows.add(series_pins.rows, row);
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
        dropRow(context, series_pins, items);
        return;
    }

    SPin row;
    row.pin_1_reported = !storeName(context, row.pin_1, items[0], pinNameLimit(version), 2605);
    row.pin_2_reported = !storeName(context, row.pin_2, items[1], pinNameLimit(version), 2605);
    row.model_reported = !storeName(context, row.model_name, items[2], modelNameLimit(version), 2606);
    row.group_reported = !storeName(context, row.group, items[3], modelNameLimit(version), 2607);
    const bool pin_reported = row.pin_1_reported || row.pin_2_reported;
    if (row.pin_1 == row.pin_2 && !pin_reported) errorAtLine(diagnostics, 2608, row.pin_1);
    if (isReservedWord(row.model_name)) {
        errorAtLine(diagnostics, 2609, row.model_name);
        dropRow(context, series_pins, items);
        return;
    }
    context.rows.add(series_pins.rows, row);
}

} // namespace kestrel
