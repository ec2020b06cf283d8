#pragma once

#include "report/quantity.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// What can be drawn: finite, and small enough that nothing overflows.
[[nodiscard]] inline bool canBeDrawn(double value) {
    constexpr double kMost = 1e30;
    return value >= -kMost && value <= kMost;
}

/// The span of values that an axis shows. It grows with the values that it has to show.
struct Span {
    double low = 0.0;
    double high = 0.0;
    bool given = false; ///< it holds a value

    /// Makes room for a value; what is no finite number, or beyond all physics, takes none.
    void include(double value) {
        if (!canBeDrawn(value)) return;
        low = given && low <= value ? low : value;
        high = given && high >= value ? high : value;
        given = true;
    }
    void include(const Span& other);
    /// The same with room at the ends, as a part of its length; one without length gets some.
    [[nodiscard]] Span widened(double part) const;
    [[nodiscard]] double length() const { return high - low; }
    [[nodiscard]] bool has(double value) const { return low <= value && value <= high; }
};

/// One tick: its value and what is written beside it.
struct Tick {
    double value;
    std::string text;
};

/// The ticks of an axis, at 1, 2 or 5 times a power of ten, with an engineering prefix that they share.
struct Ticks {
    std::vector<Tick> ticks;
    UnitPrefix prefix; ///< by which the numbers are divided
};
[[nodiscard]] Ticks ticksOf(const Span& span, int most);

} // namespace kestrel
