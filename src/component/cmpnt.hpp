#pragma once

#include "base/name_list.hpp"
#include "component/cmpntemi.hpp"
#include "component/difpin.hpp"
#include "component/pin.hpp"
#include "component/pinmpg.hpp"
#include "component/pkg.hpp"
#include "component/spinmpg.hpp"
#include "component/sswch.hpp"
#include "external/circuit.hpp"
#include "reader/block.hpp"
#include "reader/columns.hpp"
#include "reader/keyword.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;

/// Where the "Si_location" and "Timing_location" of a component are measured.
enum class Location : std::uint8_t { notGiven = 0, pin = 1, die = 2 };

/// One "[Component]". All lists are in file order.
struct Cmpnt {
    std::string name;          ///< at most 40 characters
    std::string manufacturer;  ///< at most 40 characters
    std::string package_model; ///< at most 40 characters, empty without "[Package Model]"
    std::optional<Pkg> package;
    TableColumns pin_columns; ///< of "[Pin]"
    std::vector<Pin> pins;
    PinIndex pin_index;            ///< of their names
    TextSet dropped_pins;          ///< those of rows that were reported and dropped, cut and as written
    TextMap<std::string> cut_pins; ///< names as written that were too long, with what the list has
    TableColumns pin_map_columns;  ///< of "[Pin Mapping]"
    std::vector<PinMap> pin_maps;
    PinMapIndex pin_map_index;            ///< of their pins
    std::vector<PinMap> dropped_pin_maps; ///< rows that were reported and dropped
    TableColumns diff_pin_columns;        ///< of "[Diff Pin]"
    std::vector<DifPin> diff_pins;
    DifPinIndex diff_pin_index;      ///< of their non-inverting pins
    InvPinIndex inv_pin_index;       ///< of their inverting pins
    TableColumns series_pin_columns; ///< of "[Series Pin Mapping]"
    std::vector<SPin> series_pins;
    bool switch_groups_seen = false; ///< "[Series Switch Groups]" was there
    std::vector<SwitchState> switch_states;
    NameList switch_groups;       ///< groups of the states, but for those that were reported as too long
    TextSet dropped_groups;       ///< those of "[Series Switch Groups]" lines that were reported and dropped
    bool alternates_seen = false; ///< "[Alternate Package Models]" was there
    NameList alternates;          ///< package models of at most 40 characters
    TextSet cut_alternates;       ///< those that no line has but cut, which was reported
    bool nodes_seen = false;      ///< "[Node Declarations]" was there
    NameList nodes;
    std::vector<CircuitCall> circuit_calls;
    Location si_location = Location::notGiven;
    Location timing_location = Location::notGiven;
    std::optional<CmpntEmi> emi; ///< "[Begin EMI Component]", from its keyword line on
};

/// The component being read, null outside one, and what of it is open.
struct CmpntState {
    Cmpnt* current = nullptr;
    const Block<Cmpnt>* block = nullptr; ///< the construct that waits for its end keyword
    bool manufacturer_seen = false;
    bool package_model_seen = false;
    bool alternate_listed = false; ///< an "[Alternate Package Models]" had a line, or the lack of any was reported
    SwitchReader switches;
};

/// Opens a component at "[Component]".
void openCmpnt(Run& run);

/// Told of every keyword: one that is not a component's own closes the component and reports what it lacks (no line).
void cmpntKeywordSeen(Run& run, KeywordCode code);

/// Reads a component-level keyword line or a data line under it.
void cmpntLine(Run& run, const Line& line);

/// Checks over all components once the file is read: duplicate names, package models, pins and their relations.
void checkCmpnts(Run& run);

} // namespace kestrel
