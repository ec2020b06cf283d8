#pragma once

#include "model/types.hpp"
#include "reader/line_form.hpp"
#include "reader/named_member.hpp"

#include <memory>
#include <span>
#include <string_view>

namespace kestrel {

/// "[Model Spec]": thresholds, overshoot limits and timing test loads that take the place of the model's own. Volts,
/// seconds, farads, ohms, amperes; areas in volt seconds.
struct MSpec {
    GivenRange vinh;
    GivenRange vinl;
    GivenRange vinh_plus;
    GivenRange vinh_minus;
    GivenRange vinl_plus;
    GivenRange vinl_minus;
    GivenRange s_overshoot_high;
    GivenRange s_overshoot_low;
    GivenRange d_overshoot_high;
    GivenRange d_overshoot_low;
    GivenRange pulse_high;
    GivenRange pulse_low;
    GivenRange d_overshoot_time;
    GivenRange pulse_time;
    GivenRange vmeas;
    GivenRange vref;
    GivenRange cref;
    GivenRange rref;
    GivenRange cref_rising;
    GivenRange cref_falling;
    GivenRange rref_rising;
    GivenRange rref_falling;
    GivenRange vref_rising;
    GivenRange vref_falling;
    GivenRange vmeas_rising;
    GivenRange vmeas_falling;
    GivenRange rref_diff;
    GivenRange cref_diff;
    GivenRange d_overshoot_area_h;
    GivenRange d_overshoot_area_l;
    GivenRange d_overshoot_ampl_h;
    GivenRange d_overshoot_ampl_l;
    GivenRange weak_r;
    GivenRange weak_i;
    GivenRange weak_v;
    RefusedLines refused;
};

/// All subparameters with their names.
[[nodiscard]] std::span<const NamedMember<MSpec, GivenRange>> mSpecMembers();

/// Opens a model's spec at its keyword line; it takes the place of an old one, which is reported.
void openMSpec(Context& context, std::unique_ptr<MSpec>& slot, std::string_view text);

/// Reads one line of it; `model` is the model's name in messages.
void mSpecLine(Context& context, MSpec& spec, std::string_view text, std::string_view model);

/// Ends the block: what is missing beside what is given, what contradicts itself or the model's type. Warnings without
/// line.
void closeMSpec(Context& context, const MSpec& spec, std::string_view model, ModelType type);

} // namespace kestrel
