#pragma once

#include "base/row_index.hpp"
#include "package/mtx.hpp"
#include "package/sect.hpp"
#include "reader/keyword.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;

/// One "[Define Package Model]".
struct PkgMdl {
    std::string name;                     ///< at most 40 characters
    std::string manufacturer;             ///< at most 40 characters
    std::string oem;                      ///< at most 40 characters
    std::string description;              ///< at most 60 characters
    std::uint32_t number_of_pins = 0;     ///< as stated; 0 until "[Number Of Pins]"
    std::uint32_t number_of_sections = 0; ///< as stated; 0 until "[Number Of Sections]"
    std::vector<std::string> pin_names;   ///< those read, never more than number_of_pins, none empty; in file order
    std::vector<Chain> pin_sections;      ///< parallel to pin_names; empty while no sections are in use
    std::optional<Mtx> resistance;
    std::optional<Mtx> inductance;
    std::optional<Mtx> capacitance;
    std::vector<std::uint32_t>
        own_pins; ///< 0-based places of the pins that a component should have: not repeated, not cut
    RowIndex<std::string, std::identity{}> pin_index; ///< of pin_names
};

/// The 1-based place of a pin among those of the package model, or 0.
[[nodiscard]] std::uint32_t pinIndex(const PkgMdl& package, std::string_view name);

/// The package model being read, null outside one, and what was seen of it.
struct PkgMdlState {
    PkgMdl* current = nullptr;
    ChainCursor cursor;                               ///< in the chain of the last pin
    KeywordCode keyword = KeywordCode::notKey;        ///< the package model's own current keyword
    KeywordCode previous = KeywordCode::notKey;       ///< the one before it
    KeywordCode matrix_keyword = KeywordCode::notKey; ///< the matrix that "[Row]" goes to
    Mtx* open_matrix = nullptr;                       ///< the matrix being read, checked when it is closed
    bool sections_declared = false;                   ///< "[Number Of Sections]" was seen
    bool pin_numbers_seen = false;
    bool model_data_seen = false;
    bool end_model_data_seen = false;
    bool end_package_model_seen = false;
};

/// Opens a package model at "[Define Package Model]".
void openPkgMdl(Run& run);

/// Told of every keyword: one that is not a package model's own closes the package model and reports what it lacks
/// (3411 to 3467, no line), its matrix included (3116 to 3118 and 3717, at the line).
void pkgmdlKeywordSeen(Run& run, KeywordCode code);

/// Reads a keyword line of a package model or a data line under it.
void pkgmdlLine(Run& run, const Line& line);

/// Checks over the package models of the root once the file is read: 3410 (no line) for each pair of one name.
void checkPkgMdls(Run& run);

} // namespace kestrel
