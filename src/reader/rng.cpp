#include "reader/rng.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/line_form.hpp"
#include "reader/plain_cells.hpp"

#include <algorithm>

namespace kestrel {

bool isTypOutside(const Rng& range) {
    if (!std::ranges::all_of(range, &Cell::isNumber)) return false;
    const double typ = range.typ().value();
    const auto [low, high] = std::minmax({range.min().value(), range.max().value()});
    return typ < low || typ > high;
}

bool readRange(Context& context, std::string_view text, std::string_view quantity, Rng& range, OrderCheck check) {
    Diagnostics& diagnostics = context.diagnostics;
    bool all_read = true;
    if (Rng plain; readPlainCells(context, text, plain.values)) {
        range = plain;
    } else {
        const ItemList items = splitItems(context, text, static_cast<int>(kCornerCount));
        reportItemCount(diagnostics, items.count, kMissingCornerWords, quantity, {3902, 3901});
        for (const Corner corner : kCorners) {
            const auto at = static_cast<int>(corner);
            all_read &=
                readCell(diagnostics, items[at], items.has(at), quantity, kCornerWords[placeOf(corner)], range[corner]);
        }
    }
    if (check == OrderCheck::on && isTypOutside(range)) warningAtLine(diagnostics, 3903);
    return all_read;
}

bool anyBelowZero(const Rng& range) {
    return std::ranges::any_of(range, [](const Cell& cell) { return cell.isNumber() && cell.value() < 0.0; });
}

} // namespace kestrel
