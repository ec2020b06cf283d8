#include "component/difpin.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

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
    constexpr int kPins = 2;
    for (std::size_t i = 0; i < kValues.size(); ++i) {
        const int place = kPins + static_cast<int>(i);
        if (place >= columns) break;
        readCell(context.diagnostics, items[place], items.has(place), "Diff Pin", kValues[i].label,
                 row.*kValues[i].cell);
    }
    const bool both = row.tdelay_min.isNumber() && row.tdelay_max.isNumber();
    if (both && std::abs(row.tdelay_min.value) > std::abs(row.tdelay_max.value)) {
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
