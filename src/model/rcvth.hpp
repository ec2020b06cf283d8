#pragma once

#include "reader/line_form.hpp"
#include "reader/named_member.hpp"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace kestrel {

/// "Reference_supply": the supply that the thresholds follow.
enum class ReferenceSupply : std::uint8_t { notGiven, powerClamp, gndClamp, pullup, pulldown, external };

/// "[Receiver Thresholds]" in volts and seconds; the four "_ac" and "_dc" thresholds of a single input are offsets from
/// `vth`.
struct RcvTh {
    GivenValue vth;
    GivenValue vth_min;
    GivenValue vth_max;
    GivenValue vinh_ac;
    GivenValue vinh_dc;
    GivenValue vinl_ac;
    GivenValue vinl_dc;
    GivenValue threshold_sensitivity; ///< volts per volt of the supply
    ReferenceSupply reference_supply = ReferenceSupply::notGiven;
    GivenValue vcross_low;
    GivenValue vcross_high;
    GivenValue vdiff_ac;
    GivenValue vdiff_dc;
    GivenValue tslew_ac;
    GivenValue tdiffslew_ac;
    RefusedLines refused;
};

/// The subparameters that are numbers, with their names.
[[nodiscard]] std::span<const NamedMember<RcvTh, GivenValue>> rcvThMembers();
/// The word for a supply; empty for none.
[[nodiscard]] std::string_view referenceSupplyWord(ReferenceSupply supply);

/// Opens a model's thresholds at their keyword line; they take the place of old ones, which is reported.
void openRcvTh(Context& context, std::unique_ptr<RcvTh>& slot, std::string_view text);

/// Reads one line of them; `model` is the model's name in messages.
void rcvThLine(Context& context, RcvTh& thresholds, std::string_view text, std::string_view model);

/// Once the file is read, checks the thresholds of a model: what they lack and what contradicts itself. No line.
void checkRcvTh(Context& context, const RcvTh& thresholds, std::string_view model);

} // namespace kestrel
