#pragma once

#include "reader/rng.hpp"

#include <cstdint>
#include <string_view>

namespace kestrel {

struct Context;

/// "[Package]": resistance (ohms), inductance (henries) and capacitance (farads) of the package, absent until their
/// line is read.
struct Pkg {
    std::uint32_t line = 0; ///< at which it began
    GivenRange r_pkg;
    GivenRange l_pkg;
    GivenRange c_pkg;
};

/// Reads one line of "[Package]". A rejected line changes nothing.
void pkgLine(Context& context, Pkg& package, std::string_view text);

/// Reports the values that a component's package lacks.
void checkPkg(Context& context, const Pkg& package, std::string_view component);

} // namespace kestrel
