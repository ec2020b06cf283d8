#pragma once

#include "reader/corner.hpp"
#include "reader/values.hpp"

#include <bit>
#include <cstdint>
#include <string_view>

namespace kestrel {

struct Context;

/// Typical, minimum and maximum of one quantity, in its own unit.
using Rng = PerCorner<Cell>;

/// A range that a file gives or does not. As large as a range: one that is not given begins with a pattern of bits that
/// no cell has.
class GivenRange {
public:
    constexpr GivenRange() { range_.values[0] = std::bit_cast<Cell>(kNotGiven); }
    constexpr GivenRange(const Rng& range) : range_(range) {}

    [[nodiscard]] constexpr bool has_value() const {
        return std::bit_cast<std::uint64_t>(range_.values[0]) != kNotGiven;
    }
    constexpr explicit operator bool() const { return has_value(); }
    /// The range, which must be given.
    [[nodiscard]] constexpr const Rng& operator*() const { return range_; }
    [[nodiscard]] constexpr const Rng* operator->() const { return &range_; }

private:
    static constexpr std::uint64_t kNotGiven = 0x7FF8'0000'0000'0003;

    Rng range_;
};

/// Whether a range reader warns of a typical value outside minimum and maximum.
enum class OrderCheck : bool { off, on };

/// Reads "typ min max". True when every cell present could be read; `range` is filled as far as that went in any case.
bool readRange(Context& context, std::string_view text, std::string_view quantity, Rng& range, OrderCheck check);

/// True when all three are numbers and the typical one lies below both others or above both.
[[nodiscard]] bool isTypOutside(const Rng& range);

/// True when one of the numbers is negative.
[[nodiscard]] bool anyBelowZero(const Rng& range);

} // namespace kestrel
