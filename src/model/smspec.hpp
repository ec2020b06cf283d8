#pragma once

#include "base/on_demand.hpp"
#include "reader/rng.hpp"

#include <string_view>

namespace kestrel {

struct Context;

/// "[Submodel Spec]": trigger voltages (volts) and the delay (seconds) until a bus holder lets go.
struct SmSpec {
    GivenRange v_trigger_r;
    GivenRange v_trigger_f;
    GivenRange off_delay;
};

/// Opens a spec at its keyword line; it takes the place of an old one, which is reported.
void openSmSpec(Context& context, OnDemand<SmSpec>& slot, std::string_view text);

/// Reads one line of it.
void smSpecLine(Context& context, SmSpec& spec, std::string_view text, std::string_view submodel);

/// Reports a spec without any of its values (no line).
void closeSmSpec(Context& context, const SmSpec& spec, std::string_view submodel);

} // namespace kestrel
