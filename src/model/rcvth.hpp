#pragma once

#include "reader/line_form.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace kestrel {

/// "Reference_supply": the supply that the thresholds follow.
enum class ReferenceSupply : std::uint8_t { notGiven, powerClamp, gndClamp, pullup, pulldown, external };

/// "[Receiver Thresholds]" in volts and seconds; the four "_ac" and "_dc" thresholds of a single input are offsets from
/// `vth`.
struct RcvTh {
    std::optional<double> vth;
    std::optional<double> vth_min;
    std::optional<double> vth_max;
    std::optional<double> vinh_ac;
    std::optional<double> vinh_dc;
    std::optional<double> vinl_ac;
    std::optional<double> vinl_dc;
    std::optional<double> threshold_sensitivity; ///< volts per volt of the supply
    ReferenceSupply reference_supply = ReferenceSupply::notGiven;
    std::optional<double> vcross_low;
    std::optional<double> vcross_high;
    std::optional<double> vdiff_ac;
    std::optional<double> vdiff_dc;
    std::optional<double> tslew_ac;
    std::optional<double> tdiffslew_ac;
    RefusedLines refused;
};

/// Opens a model's thresholds at their keyword line; they take the place of old ones, which is reported.
void openRcvTh(Context& context, std::unique_ptr<RcvTh>& slot, std::string_view text);

/// Reads one line of them; `model` is the model's name in messages.
void rcvThLine(Context& context, RcvTh& thresholds, std::string_view text, std::string_view model);

/// Once the file is read, checks the thresholds of a model: what they lack and what contradicts itself. No line.
void checkRcvTh(Context& context, const RcvTh& thresholds, std::string_view model);

} // namespace kestrel
