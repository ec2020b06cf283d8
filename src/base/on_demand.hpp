#pragma once

#include <memory>

namespace kestrel {

/// A part that most records of a kind lack. It takes up no room until it is first written; until then it reads as an
/// empty one.
template <class Part> class OnDemand {
public:
    [[nodiscard]] const Part& operator*() const { return part_ == nullptr ? kEmpty : *part_; }
    [[nodiscard]] const Part* operator->() const { return &**this; }

    /// The part to write to.
    [[nodiscard]] Part& made() {
        if (part_ == nullptr) part_ = std::make_unique<Part>();
        return *part_;
    }

private:
    static constexpr Part kEmpty{};

    std::unique_ptr<Part> part_;
};

} // namespace kestrel
