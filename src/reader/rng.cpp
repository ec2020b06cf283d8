#include "reader/rng.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/values.hpp"

namespace kestrel {

namespace {

constexpr int kCells = 3;

void reportCount(Diagnostics& diagnostics, int count, std::string_view quantity) {
    if (count == 0 || count > kCells) {
        errorAtLine(diagnostics, 3902, count, quantity, kCells);
        return;
    }
    for (auto corner = static_cast<std::size_t>(count); corner < kMissingCornerWords.size(); ++corner) {
        errorAtLine(diagnostics, 3901, kMissingCornerWords[corner], quantity);
    }
}

/// True when all three are numbers and the typical one lies below both others or above both.
bool typOutside(const Rng& range) {
    if (!range.typ.isNumber() || !range.min.isNumber() || !range.max.isNumber()) {
        return false;
    }
    const double typ = range.typ.value;
    return (typ < range.min.value && typ < range.max.value) || (typ > range.min.value && typ > range.max.value);
}

} // namespace

bool readRange(Context& context, std::string_view text, std::string_view quantity, Rng& range, OrderCheck check) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, kCells);
    reportCount(diagnostics, items.count, quantity);
    const bool typ = readCell(diagnostics, items[0], items.has(0), quantity, kCornerWords[0], range.typ);
    const bool min = readCell(diagnostics, items[1], items.has(1), quantity, kCornerWords[1], range.min);
    const bool max = readCell(diagnostics, items[2], items.has(2), quantity, kCornerWords[2], range.max);
    if (check == OrderCheck::on && typOutside(range)) {
        warningAtLine(diagnostics, 3903);
    }
    return typ && min && max;
}

bool anyBelowZero(const Rng& range) {
    const auto below = [](const Cell& cell) { return cell.isNumber() && cell.value < 0.0; };
    return below(range.typ) || below(range.min) || below(range.max);
}

} // namespace kestrel
