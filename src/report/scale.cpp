#include "report/scale.hpp"

#include "base/output.hpp"
#include "base/powers.hpp"

#include <algorithm>
#include <cmath>

namespace kestrel {

namespace {

/// The least of 1, 2 and 5 times a power of ten that is not below `least`, and that power.
struct Step {
    double size;
    int power;
};

Step stepOfAtLeast(double least) {
    const int power = static_cast<int>(std::floor(std::log10(least)));
    const double unit = std::pow(10.0, power);
    for (const double times : {1.0, 2.0, 5.0})
        if (times * unit >= least * (1 - 1e-9)) return {times * unit, power};
    return {10.0 * unit, power + 1};
}

/// A number with so many decimals; what is too large for any prefix has a power of ten.
std::string tickText(double value, int decimals) {
    const double size = std::abs(value);
    const double power = kExactPowers[static_cast<std::size_t>(decimals)];
    std::string digits;
    if (size < 1e6 && size * power < 1e15) {
        const auto count = static_cast<std::int64_t>(size * power + 0.5);
        const auto whole = static_cast<std::int64_t>(power);
        appendInteger(digits, count / whole);
        if (decimals > 0) {
            std::string fraction;
            appendInteger(fraction, count % whole);
            digits.push_back('.');
            digits.append(static_cast<std::size_t>(decimals) - fraction.size(), '0').append(fraction);
        }
    } else {
        appendGeneral(digits, size);
    }
    std::string text;
    if (value < 0 && digits.find_first_not_of("0.") != std::string::npos) text.append(kMinus);
    return text.append(digits);
}

} // namespace

void Span::include(const Span& other) {
    if (!other.given) return;
    include(other.low);
    include(other.high);
}

Span Span::widened(double part) const {
    if (!given) return {0.0, 1.0, true};
    const double size = std::max(std::abs(low), std::abs(high));
    double more = length() * part;
    if (length() <= size * 1e-9 || size < 1e-30) more = size > 1e-30 ? size * 0.1 : 1.0;
    return {low - more, high + more, true};
}

Ticks ticksOf(const Span& span, int most) {
    const double size = std::max(std::abs(span.low), std::abs(span.high));
    Ticks result{{}, prefixOf(size, NumberStyle::printed)};
    if (!(span.length() > 0.0)) return result;
    const Step step = stepOfAtLeast(span.length() / most);
    const int power = result.prefix.power;
    const double factor = kExactPowers[static_cast<std::size_t>(std::abs(power))];
    const int decimals = std::clamp(power - step.power, 0, 12);
    const double slack = step.size * 1e-6;
    for (double i = std::ceil((span.low - slack) / step.size); i * step.size <= span.high + slack; i += 1.0) {
        const double value = i * step.size;
        result.ticks.push_back({value, tickText(power < 0 ? value * factor : value / factor, decimals)});
        if (result.ticks.size() > 50) break; // the steps are lost in the size of the values
    }
    return result;
}

} // namespace kestrel
