#pragma once

#include "base/indexed_rows.hpp"
#include "base/text_hash.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Diagnostics;

/// The names of the pins of a package model, by which its matrices name their rows and columns, in file order.
using PackagePins = IndexedRows<std::string, std::identity{}>;

/// The 1-based place of a pin, or 0; of a repeated name the first. `guess` is its place in a file that keeps the order
/// of the pins.
[[nodiscard]] std::uint32_t pinPlace(const PackagePins& pins, std::string_view name, std::size_t guess);

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
/// are in one vector each of values and, when sparse, columns; memory goes by the entries given, never by the order.
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

/// Makes a matrix of `order` from the text of its keyword line, which is its type. The matrix of an unknown type takes
/// no rows.
[[nodiscard]] Mtx createMtx(Diagnostics& diagnostics, std::string_view type, std::uint32_t order);

/// Reads a "[Bandwidth]" line.
void setBandwidth(Diagnostics& diagnostics, Mtx& mtx, std::string_view text);

/// Begins a row of the matrix at "[Row]" with the name of its pin, unless the matrix takes no further row.
void beginRow(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view name);

/// Reads a data line under "[Row]" into the last row of the matrix. More values than a short banded row holds may turn
/// the matrix into a wrap.
void rowLine(Diagnostics& diagnostics, Mtx& mtx, const PackagePins& pins, std::string_view text);

/// Ends the reading of a matrix: checks the number of its rows, their columns and their diagonal entries.
void closeMtx(Diagnostics& diagnostics, const Mtx& mtx);

/// Checks a matrix when its package model is complete; `label` says in messages which one it is.
void checkMtx(Diagnostics& diagnostics, const Mtx& mtx, std::string_view label);

} // namespace kestrel
