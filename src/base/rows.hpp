#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <ranges>

/// Constant tables: arrays of rows that are looked up by one of their members.
namespace kestrel {

/// The first row whose `member`, or what a function makes of it, is `value`; null when there is none.
template <std::ranges::contiguous_range Rows, class Value, class Member>
[[nodiscard]] constexpr auto rowOf(const Rows& rows, const Value& value, Member member)
    -> const std::ranges::range_value_t<Rows>* {
    const auto at = std::ranges::find(rows, value, member);
    return at == std::ranges::end(rows) ? nullptr : std::to_address(at);
}

/// True when `value` is among the values.
template <std::ranges::input_range Values, class Value>
[[nodiscard]] constexpr bool contains(const Values& values, const Value& value) {
    return std::ranges::find(values, value) != std::ranges::end(values);
}

/// The place in a table of the row whose `member` is `value`; there must be one.
template <class Rows, class Value, class Member>
[[nodiscard]] constexpr std::size_t rowPlace(const Rows& rows, const Value& value, Member member) {
    return static_cast<std::size_t>(std::ranges::find(rows, value, member) - std::ranges::begin(rows));
}

/// True when each row is at the place that its `member`, an enumerator or a number, gives, counted from `first`: such a
/// table can be indexed.
template <class Rows, class Member>
[[nodiscard]] consteval bool rowsInOrder(const Rows& rows, Member member, std::size_t first = 0) {
    std::size_t place = first;
    for (const auto& row : rows) {
        if (static_cast<std::size_t>(std::invoke(member, row)) != place++) return false;
    }
    return true;
}

} // namespace kestrel
