#include "component/difpin.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <cmath>

namespace kestrel {

namespace {

/// Of the columns behind the first.
constexpr std::array<std::string_view, 5> kHeaders{"inv_pin", "vdiff", "tdelay_typ", "tdelay_min", "tdelay_max"};
constexpr TableHeader kHeader{"Diff_Pin", std::span(kHeaders).first(3), std::span(kHeaders).last(2)};
constexpr std::array<int, 2> kRowColumns{4, 6};

bool isInverting(const DiffPins& diff_pins, std::string_view pin) {
    return diff_pins.inv_pin_index.find(diff_pins.rows.rows(), pin) != nullptr;
}

/// Compares the pins of a row with the rows before it.
void checkRepeatedPins(Context& context, const DiffPins& diff_pins, DifPin& row) {
    if (diff_pins.rows.has(row.pin)) {
        if (!row.pin_reported) errorAtLine(context.diagnostics, 807, row.pin);
        row.pin_reported = true;
    } else if (isInverting(diff_pins, row.pin)) {
        caution(context.diagnostics, 808, row.pin);
    }
    if (!row.inv_pin.empty() && isInDiffPin(diff_pins, row.inv_pin)) caution(context.diagnostics, 808, row.inv_pin);
}

void readValues(Context& context, DifPin& row, const ItemList& items, int columns) {
    const auto read = [&](std::size_t column, Cell& cell) {
        const auto place = static_cast<int>(column);
        if (place >= columns) return;
        readCell(context.diagnostics, items[place], items.has(place), "Diff Pin", kHeaders[column - 1], cell);
    };
    read(2, row.vdiff);
    for (const Corner corner : kCorners) {
        read(3 + placeOf(corner), row.tdelay[corner]);
    }
    const bool both = row.tdelay.min().isNumber() && row.tdelay.max().isNumber();
    if (both && std::abs(row.tdelay.min().value()) > std::abs(row.tdelay.max().value())) {
        caution(context.diagnostics, 810, row.pin);
    }
}

} // namespace

bool isInDiffPin(const DiffPins& diff_pins, std::string_view pin) {
    return diff_pins.rows.has(pin) || isInverting(diff_pins, pin);
}

void diffPinHeader(Context& context, DiffPins& diff_pins, std::string_view text) {
    readTableHeader(context, kHeader, diff_pins.columns, text, 802);
}

void diffPinLine(Context& context, DiffPins& diff_pins, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, kRowColumns.back());
    const RowFit fit = fitRow(context, diff_pins.columns, kRowColumns, items.count, 803, 804);
    if (fit == RowFit::notAllowed) return;

    DifPin row;
    row.line = context.parse.line;
    const int limit = pinNameLimit(context.parse.version);
    row.pin_reported = !storeName(diagnostics, row.pin, items[0], limit, 805);
    row.inv_pin_reported = !storeName(diagnostics, row.inv_pin, items[1], limit, 805);
    if (row.pin == row.inv_pin) {
        if (!row.pin_reported && !row.inv_pin_reported) errorAtLine(diagnostics, 806, row.pin);
        return;
    }
    checkRepeatedPins(context, diff_pins, row);
    readValues(context, row, items, fit == RowFit::notNamed ? kRowColumns.front() : kRowColumns.back());
    diff_pins.rows.add(std::move(row));
    diff_pins.inv_pin_index.enterLast(diff_pins.rows.rows());
}

} // namespace kestrel
