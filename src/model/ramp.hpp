#pragma once

#include "base/on_demand.hpp"
#include "reader/corner.hpp"
#include "reader/values.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel {

struct Context;

/// One corner of an edge rate: a voltage step (volts) over a time (seconds).
struct RampCorner {
    Cell dv; ///< missing or "NA" with the corner
    double dt = 0.0;

    [[nodiscard]] CellState state() const { return dv.state(); }
};

/// An edge rate.
using RampRate = PerCorner<RampCorner>;

/// "[Ramp]" of a model or submodel.
struct Ramp {
    std::uint32_t line = 0; ///< at which it began
    std::optional<RampRate> dv_dt_r;
    std::optional<RampRate> dv_dt_f;
    GivenValue r_load; ///< ohms
};

/// Opens a ramp at its keyword line; it takes the place of an old one, which is reported.
void openRamp(Context& context, OnDemand<Ramp>& slot, std::string_view text);

/// Reads a rate or load line; `owner_name` is the model's or submodel's name.
void rampLine(Context& context, Ramp& ramp, std::string_view text, std::string_view owner_name);

/// Ends the open ramp: reports the rates that it lacks; no line.
void closeRamp(Context& context, const Ramp& ramp);

} // namespace kestrel
