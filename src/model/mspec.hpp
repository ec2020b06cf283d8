#pragma once

#include "model/types.hpp"
#include "reader/line_form.hpp"

#include <memory>
#include <optional>
#include <string_view>

namespace kestrel {

/// "[Model Spec]": thresholds, overshoot limits and timing test loads that take the place of the model's own. Volts,
/// seconds, farads, ohms, amperes; areas in volt seconds.
struct MSpec {
    std::optional<Rng> vinh;
    std::optional<Rng> vinl;
    std::optional<Rng> vinh_plus;
    std::optional<Rng> vinh_minus;
    std::optional<Rng> vinl_plus;
    std::optional<Rng> vinl_minus;
    std::optional<Rng> s_overshoot_high;
    std::optional<Rng> s_overshoot_low;
    std::optional<Rng> d_overshoot_high;
    std::optional<Rng> d_overshoot_low;
    std::optional<Rng> pulse_high;
    std::optional<Rng> pulse_low;
    std::optional<Rng> d_overshoot_time;
    std::optional<Rng> pulse_time;
    std::optional<Rng> vmeas;
    std::optional<Rng> vref;
    std::optional<Rng> cref;
    std::optional<Rng> rref;
    std::optional<Rng> cref_rising;
    std::optional<Rng> cref_falling;
    std::optional<Rng> rref_rising;
    std::optional<Rng> rref_falling;
    std::optional<Rng> vref_rising;
    std::optional<Rng> vref_falling;
    std::optional<Rng> vmeas_rising;
    std::optional<Rng> vmeas_falling;
    std::optional<Rng> rref_diff;
    std::optional<Rng> cref_diff;
    std::optional<Rng> d_overshoot_area_h;
    std::optional<Rng> d_overshoot_area_l;
    std::optional<Rng> d_overshoot_ampl_h;
    std::optional<Rng> d_overshoot_ampl_l;
    std::optional<Rng> weak_r;
    std::optional<Rng> weak_i;
    std::optional<Rng> weak_v;
    RefusedLines refused;
};

/// Opens a model's spec at its keyword line; it takes the place of an old one, which is reported.
void openMSpec(Context& context, std::unique_ptr<MSpec>& slot, std::string_view text);

/// Reads one line of it; `model` is the model's name in messages.
void mSpecLine(Context& context, MSpec& spec, std::string_view text, std::string_view model);

/// Ends the block: what is missing beside what is given, what contradicts itself or the model's type. Warnings without
/// line.
void closeMSpec(Context& context, const MSpec& spec, std::string_view model, ModelType type);

} // namespace kestrel
