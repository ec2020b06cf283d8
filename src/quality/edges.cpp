#include "quality/edges.hpp"

#include "quality/advised.hpp"
#include "quality/number_text.hpp"

namespace kestrel {

namespace {

/// One of the two edges of a ramp.
struct EdgeForm {
    std::string_view rate_name;
    std::optional<RampRate> Ramp::*rate;
};

constexpr std::array<EdgeForm, 2> kEdges{{
    {"dV/dt_r", &Ramp::dv_dt_r},
    {"dV/dt_f", &Ramp::dv_dt_f},
}};

/// The slew of a corner in volts per second, where both of its numbers are above 0.
std::optional<double> slewOf(const std::optional<RampRate>& rate, Corner corner) {
    if (!rate) return std::nullopt;
    const RampCorner& found = (*rate)[corner];
    if (!(found.dv.value() > 0.0) || !(found.dt > 0.0)) return std::nullopt;
    return found.dv.value() / found.dt;
}

} // namespace

void checkRampSlew(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kSlowest = 100e3;
    constexpr double kFastest = 500e9;
    const Ramp& ramp = *advised.model.tables->ramp;
    std::size_t more = 0;
    bool said = false;
    for (const EdgeForm& edge : kEdges) {
        const std::optional<double> found = slewOf(ramp.*edge.rate, Corner::typ);
        if (!advised.is_driver || !advised.is_alone || !found || (*found >= kSlowest && *found <= kFastest)) continue;
        if (!said) list.add(adviceAt(advised.model, ramp.line), 312, edge.rate_name, slew(*found));
        more += said ? 1 : 0;
        said = true;
    }
    list.addMore(312, more);
}

} // namespace kestrel
