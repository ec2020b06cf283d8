#pragma once

#include "base/row_store.hpp"

namespace kestrel {

/// A part that most records of a kind lack, in a store that has to outlive it. It takes up no room until it is first
/// written; until then it reads as an empty one. A copy shows the same part.
template <class Part> class OnDemand {
public:
    [[nodiscard]] const Part& operator*() const {
        static constexpr Part kEmpty{};
        return part_ == nullptr ? kEmpty : *part_;
    }
    [[nodiscard]] const Part* operator->() const { return &**this; }

    /// True once it has been written.
    explicit operator bool() const { return part_ != nullptr; }

    /// The part to write to.
    [[nodiscard]] Part& made(RowStore& store) {
        if (part_ == nullptr) {
            Rows<Part> alone;
            part_ = &store.add(alone, Part{});
        }
        return *part_;
    }

    /// The part as an empty one, whatever was written to it before.
    [[nodiscard]] Part& madeAnew(RowStore& store) { return made(store) = Part{}; }

private:
    Part* part_ = nullptr;
};

} // namespace kestrel
