#pragma once

#include "base/text.hpp"
#include "reader/context.hpp"
#include "reader/decimal.hpp"
#include "reader/items.hpp"
#include "reader/line_scan.hpp"

#include <array>
#include <cstddef>
#include <iterator>
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

/// Reads the line that begins at `at`, behind which a line feed and kScanPadding bytes follow, if it is so many such
/// cells and nothing is to be reported about the line itself. Returns its line feed, or null for any other line.
/// Looking for the end of each line first was a fifth of the time of reading a table.
template <std::size_t Count>
[[nodiscard]] const char* readPlainLine(const ParseState& parse, const char* at, std::array<Cell, Count>& cells) {
    const char* const begin = at;
    const char tab = parse.tab_warned ? '\t' : ' '; // the first one is reported
    const auto skip_blanks = [&at, tab] {
        while (*at == ' ' || *at == tab) {
            ++at;
        }
    };
    for (Cell& cell : cells) {
        skip_blanks();
        at = readPlainCell(at, std::unreachable_sentinel, cell);
        if (at == nullptr || *at > ' ') return nullptr;
    }
    skip_blanks();
    if (*at == parse.comment) {
        LineScan comment = scanLine(at, parse.comment);
        if (at[comment.length - 1] == '\r') --comment.length;
        if (comment.odd < comment.length || (comment.has_tab && !parse.tab_warned)) return nullptr;
        at += comment.length;
    }
    const bool is_long = static_cast<std::size_t>(at - begin) > lineLimit(parse);
    if (*at == '\r') ++at;
    return *at == '\n' && !is_long ? at : nullptr;
}

} // namespace kestrel
