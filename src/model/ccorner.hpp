#pragma once

#include "reader/line_form.hpp"

#include <memory>
#include <string_view>

namespace kestrel {

/// The capacitances of a buffer as a whole or by its structures, in farads.
struct CComp {
    GivenRange c_comp;
    GivenRange c_comp_pullup;
    GivenRange c_comp_pulldown;
    GivenRange c_comp_power_clamp;
    GivenRange c_comp_gnd_clamp;
};

/// "[C Comp Corner]": the capacitances of the corners. Minimum and maximum are those of the corner, whichever of them
/// is the smaller.
struct CCorner : CComp {
    RefusedLines refused;
};

/// Opens a model's corners at their keyword line; they take the place of old ones, which is reported.
void openCCorner(Context& context, std::unique_ptr<CCorner>& slot, std::string_view text);

/// Reads one line of them; `model` is the model's name in messages.
void cCornerLine(Context& context, CCorner& corner, std::string_view text, std::string_view model);

/// Reports corners without a value; no line.
void closeCCorner(Context& context, const CCorner& corner, std::string_view model);

/// Once the model is read, compares its corners with its own capacitances; cautions without line.
void checkCCorner(Context& context, const CCorner& corner, const CComp& own, std::string_view model);

} // namespace kestrel
