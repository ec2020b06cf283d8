#pragma once

#include "reader/line_form.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel {

struct Run;
struct Mdl;

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

/// Opens a model's thresholds at their keyword line. Reports 3201 (the old ones are replaced) and 3204.
void openRcvTh(Run& run, Mdl& model, std::string_view text);

/// Reads one line of them. Reports 3204 and 3206 to 3214.
void rcvThLine(Run& run, Mdl& model, std::string_view text);

/// Reports a supply named by a model's thresholds whose reference keyword the model lacks (195 to 199, no line).
void checkReferenceSupply(Run& run, const Mdl& model);

/// Once the file is read, checks the thresholds of all models: what they lack and what contradicts itself (3215 to
/// 3220, no line).
void checkRcvThs(Run& run);

} // namespace kestrel
