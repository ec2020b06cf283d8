#pragma once

#include "base/rows.hpp"
#include "base/text.hpp"
#include "diagnostics/diagnostics.hpp"

#include <optional>
#include <ranges>
#include <string_view>

namespace kestrel {

/// One spelling of an enumerated setting. Tables are constexpr arrays; a version that knows fewer settings is given a
/// span of the first rows.
template <class Code> struct EnumerationRow {
    std::string_view text;
    Code code;
};

/// An array or span of rows.
template <class Rows>
concept EnumerationTable = std::ranges::contiguous_range<Rows> && requires(std::ranges::range_value_t<Rows> row) {
    row.text == std::string_view(), row.code;
};

template <EnumerationTable Rows> using CodeOf = decltype(std::ranges::range_value_t<Rows>::code);

/// True when each row is at the place that its code gives, so that a table can be indexed by code as well.
template <EnumerationTable Rows> consteval bool standAtCodes(const Rows& rows) {
    return rowsInOrder(rows, [](const auto& row) { return row.code; });
}

/// The row that a text names. `exact` is false when only the case of letters differs; without a row no spelling fits.
template <class Code> struct EnumerationHit {
    const EnumerationRow<Code>* row = nullptr;
    bool exact = false;
};

/// Walks the rows and stops at the first that is `text` but for case.
template <EnumerationTable Rows>
[[nodiscard]] EnumerationHit<CodeOf<Rows>> lookUpEnumeration(const Rows& rows, std::string_view text) {
    for (const auto& row : rows) {
        if (equalsNoCase(row.text, text)) return {&row, row.text == text};
    }
    return {};
}

/// What is reported at the line of a setting that is not one of the spellings.
struct EnumerationMessages {
    CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::text> wrong_case; ///< name, text, right spelling
    CheckedMessage<ArgKind::text, ArgKind::text> unknown;                   ///< name, text
};

/// The code of an exactly spelled setting; anything else is reported and gives nothing.
template <EnumerationTable Rows>
std::optional<CodeOf<Rows>> readEnumeration(Diagnostics& diagnostics, const Rows& rows, std::string_view name,
                                            std::string_view text, const EnumerationMessages& messages) {
    const auto hit = lookUpEnumeration(rows, text);
    if (hit.row == nullptr) {
        errorAtLine(diagnostics, messages.unknown, name, text);
        return std::nullopt;
    }
    if (!hit.exact) {
        errorAtLine(diagnostics, messages.wrong_case, name, text, hit.row->text);
        return std::nullopt;
    }
    return hit.row->code;
}

} // namespace kestrel
