#pragma once

#include <cassert>
#include <cstdint>
#include <initializer_list>

namespace kestrel {

/// A set of enumerators whose codes lie below 32.
template <class Code> class EnumSet {
public:
    constexpr EnumSet(std::initializer_list<Code> codes) {
        for (const Code code : codes) {
            bits_ |= bitOf(code);
        }
    }

    [[nodiscard]] constexpr bool has(Code code) const { return (bits_ & bitOf(code)) != 0; }

    /// The codes of this one and those of `codes`.
    [[nodiscard]] constexpr EnumSet with(std::initializer_list<Code> codes) const {
        EnumSet set(codes);
        set.bits_ |= bits_;
        return set;
    }

    [[nodiscard]] constexpr EnumSet with(const EnumSet& other) const {
        EnumSet set(*this);
        set.bits_ |= other.bits_;
        return set;
    }

    /// All codes that are not in this one.
    [[nodiscard]] constexpr EnumSet others() const {
        EnumSet set{};
        set.bits_ = ~bits_;
        return set;
    }

private:
    static constexpr std::uint32_t bitOf(Code code) {
        assert(static_cast<unsigned>(code) < 32);
        return std::uint32_t{1} << static_cast<unsigned>(code);
    }

    std::uint32_t bits_ = 0;
};

} // namespace kestrel
