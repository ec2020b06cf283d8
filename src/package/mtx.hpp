#pragma once

#include "base/text_hash.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;
struct PkgMdl;

/// How a matrix stores its upper triangle. A wrap is a banded matrix that circles back from its last rows to the first
/// columns.
enum class MtxKind : std::uint8_t { unknown = 0, banded = 1, bandedWrap = 2, sparse = 3, full = 4 };

/// One "[Row]". Slot k of a banded or full row lies k places right of the diagonal; they are filled from the left, so
/// only the number of filled ones is kept.
struct MtxRow {
    std::string pin_name;           ///< at most 5 characters
    bool self_coupled = false;      ///< the diagonal entry was given
    std::uint64_t column_count = 0; ///< slots, filled or not
    std::uint32_t filled = 0;       ///< entries given
};

/// One coupled matrix of a package model, upper triangle only. Rows are read one after the other, so their entries
/// stand in one vector each of values and, when sparse, columns; memory goes by the entries given, never by the order.
struct Mtx {
    MtxKind kind = MtxKind::unknown;
    std::uint32_t order = 0; ///< number of pins when the matrix began
    bool bandwidth_given = false;
    std::uint32_t bandwidth = 0;
    std::vector<MtxRow> rows;           ///< in file order
    std::vector<double> values;         ///< the entries of all rows
    std::vector<std::uint32_t> columns; ///< sparse: the 1-based column of each value

    std::vector<std::uint32_t> pin_rows;   ///< rows of each pin, by its 1-based place
    TextMap<std::uint32_t> unknown_rows;   ///< rows of each name that was no pin
    std::uint64_t widest = 0;              ///< largest number of slots of any row
    std::vector<std::uint32_t> column_row; ///< sparse: by column, the last row (1-based) that has an entry there

    [[nodiscard]] bool isBanded() const { return kind == MtxKind::banded || kind == MtxKind::bandedWrap; }
};

/// Makes a matrix of `order` from the text of its keyword line. Reports 3701 and 3702 (type); the matrix of an unknown
/// type takes no rows.
[[nodiscard]] Mtx createMtx(Run& run, std::string_view type, std::uint32_t order);

/// Reads a "[Bandwidth]" line. Reports 3703 to 3706.
void setBandwidth(Run& run, Mtx& mtx, std::string_view text);

/// Ends the reading of a matrix: reports the number of rows (3717), rows that lack columns (3116, 3117) or their
/// diagonal entry (3118).
void closeMtx(Run& run, const Mtx& mtx);

/// Checks a matrix when its package model is complete: 3716 (banded without bandwidth; no line).
void checkMtx(Run& run, const Mtx& mtx, std::string_view label);

} // namespace kestrel
