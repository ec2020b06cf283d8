#pragma once

#include <cstddef>
#include <optional>
#include <utility>

namespace kestrel {

/// A measure to six significant digits: what differs by rounding only is the same.
[[nodiscard]] double roundedMeasure(double measure);

/// Of many faults the one with the largest measure, of equal ones the first, and how many there are.
template <class Fault> class Worst {
public:
    void add(double measure, Fault fault) {
        const double rounded = roundedMeasure(measure);
        ++count_;
        if (fault_ && !(rounded > measure_)) return;
        fault_ = std::move(fault);
        measure_ = rounded;
    }
    /// Adds one that has no measure.
    void add(Fault fault) { add(0.0, std::move(fault)); }

    [[nodiscard]] explicit operator bool() const { return fault_.has_value(); }
    [[nodiscard]] const Fault& operator*() const { return *fault_; }
    [[nodiscard]] const Fault* operator->() const { return &*fault_; }
    /// How many there are beside it.
    [[nodiscard]] std::size_t more() const { return count_ - 1; }

private:
    std::optional<Fault> fault_;
    double measure_ = 0.0;
    std::size_t count_ = 0;
};

} // namespace kestrel
