#include "quality/worst.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace kestrel {

double roundedMeasure(double measure) {
    constexpr int kDigits = 6;
    if (!std::isfinite(measure)) return measure;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), measure, std::chars_format::scientific, kDigits - 1);
    double rounded = measure;
    std::from_chars(text.data(), end.ptr, rounded);
    return rounded;
}

} // namespace kestrel
