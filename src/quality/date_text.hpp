#pragma once

#include <optional>
#include <string_view>

namespace kestrel {

/// The year of a date that gives a year and a month at least, in any usual order, with month names in English:
/// "12-May-2003", "Thu Jan 11 10:21:36 CST 2018", "05/07/97", "2004-03", "20040312". Two digits from 80 on are of the
/// 1900s. Of several ways to read it, one with a year from `first` to `last` counts before the others. Nothing for a
/// text that is no date.
[[nodiscard]] std::optional<int> yearOfDate(std::string_view text, int first, int last);

} // namespace kestrel
