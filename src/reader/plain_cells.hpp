#pragma once

#include "base/text.hpp"
#include "reader/context.hpp"
#include "reader/decimal.hpp"
#include "reader/items.hpp"

#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel {

/// Goes on to the next plain item of a text; null where more is skipped than a line may have.
[[nodiscard]] inline const char* nextPlainItem(const char* at, const char* end) {
    const char* const begin = at;
    while (at != end && isBlank(*at)) {
        ++at;
    }
    return at - begin > kMaxSkip ? nullptr : at;
}

/// True where an item may end.
[[nodiscard]] inline bool isItemEnd(const char* at, const char* end) { return at == end || isBlank(*at); }

/// Reads a text that is so many plain cells and nothing else, each a decimal number with or without a unit or "NA";
/// false for any other, of which nothing is reported.
template <std::size_t Count>
[[nodiscard]] bool readPlainCells(const Context& context, std::string_view text, std::array<Cell, Count>& cells) {
    if (!context.short_paths) return false;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (Cell& cell : cells) {
        at = nextPlainItem(at, end);
        if (at != nullptr) at = readPlainCell(at, end, cell);
        if (at == nullptr || !isItemEnd(at, end)) return false;
    }
    return at == end; // lines come without blanks behind them
}

} // namespace kestrel
