#include "reader/columns.hpp"

#include "base/rows.hpp"
#include "base/text.hpp"
#include "reader/context.hpp"
#include "reader/items.hpp"

#include <algorithm>

namespace kestrel {

namespace {

/// Reads the `place`th word of the optional ones.
void optionalHeader(Context& context, const TableHeader& header, TableColumns& columns, int place,
                    std::string_view word) {
    const auto* const first = header.optional.data();
    const auto* const last = first + header.optional.size();
    const auto* const found =
        std::find_if(first, last, [word](std::string_view name) { return equalsNoCase(name, word); });
    const auto column = static_cast<std::uint8_t>(found - first);
    if (contains(columns.optional, column)) {
        errorAtLine(context.diagnostics, 531, word);
        columns.faulty = true;
    } else if (found == last || (!header.any_order && column != place)) {
        errorAtLine(context.diagnostics, 530, word);
        columns.faulty = true;
    } else {
        columns.optional[static_cast<std::size_t>(place)] = column;
    }
}

} // namespace

ItemList readHeaderWords(Context& context, std::string_view keyword, TableColumns& columns, std::string_view text,
                         int most) {
    const ItemList words = splitItems(context, text, most);
    columns.count = 1 + words.kept;
    if (words.kept == 0) {
        errorAtLine(context.diagnostics, 528, keyword);
        columns.faulty = true;
    }
    return words;
}

void expectHeaders(Context& context, TableColumns& columns, const ItemList& words,
                   std::span<const std::string_view> expected, int required, WrongHeaders reported) {
    const int most = static_cast<int>(expected.size());
    for (int place = 0; place < most && (place < required || words.has(place)); ++place) {
        const std::string_view header = expected[static_cast<std::size_t>(place)];
        if (equalsNoCase(words[place], header)) continue;
        errorAtLine(context.diagnostics, 529, header);
        columns.faulty = true;
        if (reported == WrongHeaders::first) break;
    }
}

void expectNoMoreHeaders(Context& context, TableColumns& columns, const ItemList& words, int most) {
    if (!words.has(most)) return;
    errorAtLine(context.diagnostics, 530, words[most]);
    columns.faulty = true;
}

void readTableHeader(Context& context, const TableHeader& header, TableColumns& columns, std::string_view text,
                     CheckedMessage<> repeated) {
    if (columns.seen()) {
        errorAtLine(context.diagnostics, repeated);
        return;
    }
    const int required = static_cast<int>(header.required.size());
    const int all = required + static_cast<int>(header.optional.size());
    // One word too many is counted, but not looked at.
    const ItemList words = readHeaderWords(context, header.keyword, columns, text, all + 1);
    if (words.kept == 0) return;
    if (words.kept != required && words.kept != all) {
        errorAtLine(context.diagnostics, 532, header.keyword, 1 + required, 1 + all, columns.count);
        columns.faulty = true;
    }
    expectHeaders(context, columns, words, header.required, required, WrongHeaders::each);
    for (int place = 0; required + place < all && words.has(required + place); ++place) {
        optionalHeader(context, header, columns, place, words[required + place]);
    }
}

RowFit fitRow(const TableColumns& columns, std::span<const int> allowed, int count) {
    if (columns.faulty) return RowFit::fits;
    if (!contains(allowed, count)) return RowFit::notAllowed;
    return count > columns.count ? RowFit::notNamed : RowFit::fits;
}

RowFit fitRow(Context& context, const TableColumns& columns, std::span<const int> allowed, int count,
              CheckedMessage<ArgKind::integer> not_allowed, CheckedMessage<> not_named) {
    const RowFit fit = fitRow(columns, allowed, count);
    if (fit == RowFit::notAllowed) errorAtLine(context.diagnostics, not_allowed, count);
    if (fit == RowFit::notNamed) errorAtLine(context.diagnostics, not_named);
    return fit;
}

} // namespace kestrel
