#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrel {

/// The corners of a quantity, in the order in which lines give them.
enum class Corner : std::uint8_t { typ = 0, min = 1, max = 2 };
inline constexpr std::size_t kCornerCount = 3;
inline constexpr std::array<Corner, kCornerCount> kCorners{Corner::typ, Corner::min, Corner::max};

/// The words for the corners: of values that the file gives, of values that are missing, and as files write them.
inline constexpr std::array<std::string_view, kCornerCount> kCornerWords{"Typical", "Minimum", "Maximum"};
inline constexpr std::array<std::string_view, kCornerCount> kMissingCornerWords{"typical", "minimum", "maximum"};
inline constexpr std::array<std::string_view, kCornerCount> kShortCornerWords{"Typ", "Min", "Max"};

[[nodiscard]] constexpr std::size_t placeOf(Corner corner) { return static_cast<std::size_t>(corner); }

/// One value for each corner.
template <class Value> struct PerCorner {
    std::array<Value, kCornerCount> values{};

    [[nodiscard]] constexpr Value& operator[](Corner corner) { return values[placeOf(corner)]; }
    [[nodiscard]] constexpr const Value& operator[](Corner corner) const { return values[placeOf(corner)]; }
    [[nodiscard]] constexpr const Value& typ() const { return values[placeOf(Corner::typ)]; }
    [[nodiscard]] constexpr const Value& min() const { return values[placeOf(Corner::min)]; }
    [[nodiscard]] constexpr const Value& max() const { return values[placeOf(Corner::max)]; }
    [[nodiscard]] constexpr auto begin() const { return values.begin(); }
    [[nodiscard]] constexpr auto end() const { return values.end(); }
};

} // namespace kestrel
