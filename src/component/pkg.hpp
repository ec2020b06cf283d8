#pragma once

#include "reader/rng.hpp"

#include <optional>
#include <string_view>

namespace kestrel {

struct Run;

/// "[Package]": resistance (ohms), inductance (henries) and capacitance (farads) of the package, absent until their
/// line is read.
struct Pkg {
    std::optional<Rng> r_pkg;
    std::optional<Rng> l_pkg;
    std::optional<Rng> c_pkg;
};

/// Reads one line of "[Package]". A rejected line changes nothing.
void pkgLine(Run& run, Pkg& package, std::string_view text);

/// Reports the values that a component's package lacks; no line.
void checkPkg(Run& run, const Pkg& package, std::string_view component);

} // namespace kestrel
