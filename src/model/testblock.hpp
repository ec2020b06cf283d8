#pragma once

#include "reader/enumeration.hpp"

#include <array>
#include <cstdint>

namespace kestrel {

/// Whether a test is of one signal or of a pair.
enum class TestType : std::uint8_t { notGiven, singleEnded, differential };

inline constexpr std::array<EnumerationRow<TestType>, 2> kTestTypes{{
    {"Single_ended", TestType::singleEnded},
    {"Differential", TestType::differential},
}};

} // namespace kestrel
