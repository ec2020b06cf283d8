#pragma once

#include "component/pin.hpp"
#include "component/pinemi.hpp"
#include "reader/emi_domain.hpp"
#include "reader/rng.hpp"
#include "reader/sections.hpp"

#include <memory>
#include <optional>
#include <string_view>

namespace kestrel {

/// What "[Begin EMI Component]" gives. Farads.
struct CmpntEmi {
    EmiDomain domain = EmiDomain::notGiven;
    GivenValue cpd;       ///< the typical one of a range
    GivenRange cpd_range; ///< where all corners have one
    GivenValue c_heatsink_gnd;
    GivenValue c_heatsink_float;
    PinEmiTable pins;
    PinDomainEmiTable pin_domains;
};

/// The end of the block.
extern const BlockEnd kCmpntEmiEnd;

/// Begins the block at its keyword, anew or once more.
void openCmpntEmi(Context& context, std::unique_ptr<CmpntEmi>& emi, std::string_view text);

/// Reads a subparameter; the component's name is for messages.
void cmpntEmiLine(Context& context, CmpntEmi& emi, std::string_view component, std::string_view text);

/// Compares the tables of the block with each other and with the component's pins.
void checkCmpntEmi(Context& context, const CmpntEmi& emi, const PinList& pins, std::string_view component);

} // namespace kestrel
