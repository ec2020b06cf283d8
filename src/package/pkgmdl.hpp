#pragma once

#include "package/mtx.hpp"
#include "package/sect.hpp"
#include "reader/sections.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kestrel {

/// One "[Define Package Model]", whose name has at most 40 characters.
struct PkgMdl : RecordOf<SubjectKind::packageModel> {
    std::string manufacturer;             ///< at most 40 characters
    std::string oem;                      ///< at most 40 characters
    std::string description;              ///< at most 60 characters
    std::uint32_t number_of_pins = 0;     ///< as stated; 0 until "[Number Of Pins]"
    std::uint32_t number_of_sections = 0; ///< as stated; 0 until "[Number Of Sections]"
    PackagePins pin_names;                ///< those read, never more than number_of_pins, none empty
    std::vector<Chain> pin_sections;      ///< parallel to pin_names; empty while no sections are in use
    std::unique_ptr<Mtx> resistance;
    std::unique_ptr<Mtx> inductance;
    std::unique_ptr<Mtx> capacitance;
    std::vector<std::uint32_t> odd_pins; ///< 0-based places, in order, of the pins that repeat another or are cut
};

/// The package model being read and what was seen of it.
struct PkgMdlState : RecordState<PkgMdl> {
    ChainCursor cursor;                         ///< in the chain of the last pin
    KeywordCode previous = KeywordCode::notKey; ///< the package model's keyword before the one being read
    Mtx* row_matrix = nullptr;                  ///< the matrix that "[Row]" goes to
    Mtx* open_matrix = nullptr;                 ///< the matrix being read, checked when it is closed
    bool sections_declared = false;             ///< "[Number Of Sections]" was seen
    bool pin_numbers_seen = false;
    bool model_data_seen = false;
    bool end_model_data_seen = false;
    bool end_package_model_seen = false;
};

/// Reads package models. At the end of one its open matrix is closed and it is checked as a whole.
extern const RecordModule<PkgMdlState> kPkgMdl;

/// Reads a line under "[Pin Numbers]" that is one pin name.
void plainPinLine(Context& context, PkgMdl& package, std::string_view text);

/// Reads a line under "[Pin Numbers]" of a package model with sections: a pin and its sections, more sections, "Fork"
/// or "Endfork". `cursor` goes on in the chain of the last pin.
void sectionPinLine(Context& context, ChainCursor& cursor, PkgMdl& package, std::string_view text);

} // namespace kestrel
