#pragma once

#include "component/pin.hpp"
#include "component/pkg.hpp"
#include "reader/keyword.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;

/// Where the "Si_location" and "Timing_location" of a component are measured.
enum class Location : std::uint8_t { notGiven = 0, pin = 1, die = 2 };

/// The optional columns of "[Pin]".
enum class PinColumn : std::uint8_t { rPin = 0, lPin = 1, cPin = 2 };

/// One "[Component]".
struct Cmpnt {
    std::string name;          ///< at most 40 characters
    std::string manufacturer;  ///< at most 40 characters
    std::string package_model; ///< at most 40 characters, empty without "[Package Model]"
    std::optional<Pkg> package;
    int pin_columns = 0;            ///< columns of the "[Pin]" table, 0 until its header line
    bool pin_header_faulty = false; ///< the header line was reported, so its rows are not held to its columns
    std::array<std::optional<PinColumn>, 3> value_columns{}; ///< what the fourth to sixth column hold
    std::vector<Pin> pins;                                   ///< in file order
    PinIndex pin_index;                                      ///< of their names
    bool diff_pin_seen = false;                              ///< "[Diff Pin]" was there
    Location si_location = Location::notGiven;
    Location timing_location = Location::notGiven;
};

/// The component being read, null outside one.
struct CmpntState {
    Cmpnt* current = nullptr;
    bool manufacturer_seen = false;
};

/// Opens a component at "[Component]".
void openCmpnt(Run& run);

/// Told of every keyword: one that is not a component's own closes the component and reports what it lacks (no line).
void cmpntKeywordSeen(Run& run, KeywordCode code);

/// Reads a component-level keyword line or a data line under it.
void cmpntLine(Run& run, const Line& line);

/// Checks over all components once the file is read: duplicate names, package models, pins.
void checkCmpnts(Run& run);

} // namespace kestrel
