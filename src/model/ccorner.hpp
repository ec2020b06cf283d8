#pragma once

#include "reader/line_form.hpp"

#include <optional>
#include <string_view>

namespace kestrel {

struct Run;
struct Mdl;

/// "[C Comp Corner]": the capacitances (farads) of the corners. Minimum and maximum are those of the corner, whichever
/// of them is the smaller.
struct CCorner {
    std::optional<Rng> c_comp;
    std::optional<Rng> c_comp_pullup;
    std::optional<Rng> c_comp_pulldown;
    std::optional<Rng> c_comp_power_clamp;
    std::optional<Rng> c_comp_gnd_clamp;
    RefusedLines refused;
};

/// Opens a model's corners at their keyword line. Reports 5001 (the old ones are replaced) and 5004.
void openCCorner(Run& run, Mdl& model, std::string_view text);

/// Reads one line of them. Reports 5005 to 5008 and what the range reader reports.
void cCornerLine(Run& run, Mdl& model, std::string_view text);

/// Reports corners without a value (5009, no line).
void closeCCorner(Run& run, const Mdl& model);

/// Once the model is read, compares its corners with its own capacitances (cautions 5010 and 5011, no line).
void checkCCorner(Run& run, const Mdl& model);

} // namespace kestrel
