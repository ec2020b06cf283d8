#pragma once

#include "component/pin.hpp"
#include "component/pinemi.hpp"
#include "reader/enumeration.hpp"
#include "reader/sections.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace kestrel {

/// Whether a part works with digital or analog signals.
enum class EmiDomain : std::uint8_t { notGiven = 0, digital = 1, analog = 2, mixed = 3, other = 4 };

/// Their spellings in the file, the mixed one last, which a single model cannot have.
inline constexpr std::array<EnumerationRow<EmiDomain>, 3> kEmiDomains{{
    {"Digital", EmiDomain::digital},
    {"Analog", EmiDomain::analog},
    {"Digital_analog", EmiDomain::mixed},
}};

/// What "[Begin EMI Component]" gives. Farads.
struct CmpntEmi {
    EmiDomain domain = EmiDomain::notGiven;
    std::optional<double> cpd; ///< the typical one of a range
    std::optional<double> c_heatsink_gnd;
    std::optional<double> c_heatsink_float;
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
