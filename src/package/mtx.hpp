#pragma once

#include "base/indexed_rows.hpp"
#include "base/row_store.hpp"
#include "base/text_hash.hpp"
#include "base/text_store.hpp"

#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

struct Context;
struct Diagnostics;

/// The names of the pins of a package model, by which its matrices name their rows and columns, in file order.
using PackagePins = IndexedRows<StoredText, &StoredText::view, Rows<StoredText>>;

/// The 1-based place of a pin, or 0; of a repeated name the first. `guess` is its place in a file that keeps the order
/// of the pins.
[[nodiscard]] std::uint32_t pinPlace(const PackagePins& pins, std::string_view name, std::size_t guess);

/// How a matrix stores its upper triangle. A wrap is a banded matrix that circles back from its last rows to the first
/// columns.
enum class MtxKind : std::uint8_t { unknown = 0, banded = 1, bandedWrap = 2, sparse = 3, full = 4 };

/// One entry of a sparse row. The value is kept in halves, which need no gap between the entries of a row.
class MtxEntry {
public:
    MtxEntry(std::uint32_t column, double value) : column_(column), halves_(std::bit_cast<Halves>(value)) {}

    [[nodiscard]] std::uint32_t column() const { return column_; } ///< 1-based
    [[nodiscard]] double value() const { return std::bit_cast<double>(halves_); }

private:
    using Halves = std::array<std::uint32_t, 2>;

    std::uint32_t column_;
    Halves halves_;
};
static_assert(sizeof(MtxEntry) == 12);

using MtxValues = Rows<double>;
using MtxEntries = Rows<MtxEntry>;

/// One "[Row]". Slot k of a banded or full row lies k places right of the diagonal; they are filled from the left, so
/// that its values say it all. A sparse row has entries instead.
struct MtxRow {
    StoredText pin_name; ///< at most 5 characters
    std::variant<MtxValues, MtxEntries> given;
    std::uint64_t column_count = 0; ///< slots, filled or not
    bool self_coupled = false;      ///< the diagonal entry was given

    /// Number of entries given.
    [[nodiscard]] std::size_t filled() const {
        return std::visit([](const auto& rows) { return rows.size(); }, given);
    }
};

/// How many rows a matrix has of each name.
struct RowCounts {
    std::vector<std::uint32_t> of_pins; ///< by the 1-based place of the pin
    TextMap<std::uint32_t> of_others;   ///< names that were no pin
};

/// The row that has an entry in a column, for the columns of the row being read.
struct TakenColumns {
    std::uint32_t row = 0;             ///< 1-based, the one whose columns are in the list; 0 for none
    std::vector<std::uint32_t> row_of; ///< by column, the last row in the list that has an entry there
};

/// One coupled matrix of a package model, upper triangle only. Memory goes by the entries given, never by the order.
struct Mtx {
    MtxKind kind = MtxKind::unknown;
    std::uint32_t order = 0; ///< number of pins when the matrix began
    bool bandwidth_given = false;
    std::uint32_t bandwidth = 0;
    std::vector<MtxRow> rows; ///< in file order

    std::uint64_t widest = 0;              ///< largest number of slots of any row
    bool in_order = true;                  ///< each row is that of the pin of its place
    std::unique_ptr<RowCounts> row_counts; ///< null while the rows are in order
    std::uint32_t last_column = 0;         ///< sparse: the largest column of the last row
    TakenColumns taken_columns;            ///< sparse: empty while the columns of every row come in order

    [[nodiscard]] bool isBanded() const { return kind == MtxKind::banded || kind == MtxKind::bandedWrap; }
};

/// Makes a matrix of `order` from the text of its keyword line, which is its type. The matrix of an unknown type takes
/// no rows.
[[nodiscard]] Mtx createMtx(Diagnostics& diagnostics, std::string_view type, std::uint32_t order);

/// Reads a "[Bandwidth]" line.
void setBandwidth(Diagnostics& diagnostics, Mtx& mtx, std::string_view text);

/// Begins a row of the matrix at "[Row]" with the name of its pin, unless the matrix takes no further row.
void beginRow(Context& context, Mtx& mtx, const PackagePins& pins, std::string_view name);

/// Reads a data line under "[Row]" into the last row of the matrix. More values than a short banded row holds may turn
/// the matrix into a wrap.
void rowLine(Context& context, Mtx& mtx, const PackagePins& pins, std::string_view text);

/// Ends the reading of a matrix: checks the number of its rows, their columns and their diagonal entries. Rows that
/// still come are read as those before.
void closeMtx(Diagnostics& diagnostics, Mtx& mtx);

/// Checks a matrix when its package model is complete; `label` says in messages which one it is.
void checkMtx(Diagnostics& diagnostics, const Mtx& mtx, std::string_view label);

} // namespace kestrel
