#pragma once

#include "reader/enumeration.hpp"

#include <array>
#include <cstdint>

namespace kestrel {

/// Whether a part works with digital or analog signals.
enum class EmiDomain : std::uint8_t { notGiven = 0, digital = 1, analog = 2, mixed = 3, other = 4 };

/// Their spellings in the file, the mixed one last, which a single model cannot have.
inline constexpr std::array<EnumerationRow<EmiDomain>, 3> kEmiDomains{{
    {"Digital", EmiDomain::digital},
    {"Analog", EmiDomain::analog},
    {"Digital_analog", EmiDomain::mixed},
}};

} // namespace kestrel
