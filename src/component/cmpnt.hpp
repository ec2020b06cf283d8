#pragma once

#include "component/apkg.hpp"
#include "component/cmpntemi.hpp"
#include "component/difpin.hpp"
#include "component/node.hpp"
#include "component/pin.hpp"
#include "component/pinmpg.hpp"
#include "component/pkg.hpp"
#include "component/spinmpg.hpp"
#include "component/sswch.hpp"
#include "external/circuit_call.hpp"
#include "reader/sections.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kestrel {

/// Where the "Si_location" and "Timing_location" of a component are measured.
enum class Location : std::uint8_t { notGiven = 0, pin = 1, die = 2 };

/// One "[Component]", whose name has at most 40 characters. What most components do not have is null until its keyword.
struct Cmpnt : RecordOf<SubjectKind::component> {
    std::string manufacturer;  ///< at most 40 characters
    std::string package_model; ///< at most 40 characters, empty without "[Package Model]"
    std::unique_ptr<Pkg> package;
    PinList pins;
    std::unique_ptr<PinMapping> pin_mapping;
    std::unique_ptr<DiffPins> diff_pins;
    std::unique_ptr<SeriesPins> series_pins;
    std::unique_ptr<SwitchGroups> switch_groups;
    std::unique_ptr<Alternates> alternates;
    std::unique_ptr<Nodes> nodes;
    std::vector<CircuitCall> circuit_calls; ///< in file order
    std::unique_ptr<CmpntEmi> emi;
    Location si_location = Location::notGiven;
    Location timing_location = Location::notGiven;
};

/// The component being read.
struct CmpntState : RecordState<Cmpnt> {
    bool manufacturer_seen = false;
    bool package_model_seen = false;
    SwitchReader switches;
};

/// Reads components. At the end of one what it lacks is reported.
extern const RecordModule<CmpntState> kCmpnt;

} // namespace kestrel
