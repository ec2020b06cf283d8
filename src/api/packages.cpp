#include "api/records.hpp"
#include "package/pkgmdl.hpp"

#include <array>
#include <variant>

namespace kestrel::api {

namespace {

std::string_view pinNameOf(const StoredText& name) { return name; }

std::string_view kindWord(MtxKind kind) {
    constexpr std::array<std::string_view, 5> kWords{"", "Banded_matrix", "Banded_matrix", "Sparse_matrix",
                                                     "Full_matrix"};
    return wordAt(kWords, kind);
}

/// The entries of a row, whose diagonal is at `diagonal`, counted from 0.
List<MatrixEntry> entriesOf(const Mtx& matrix, const MtxRow& row, std::size_t diagonal) {
    if (const auto* const entries = std::get_if<MtxEntries>(&row.given)) {
        constexpr auto kEntry = [](const MtxEntry& entry) -> MatrixEntry {
            return {.column = entry.column() - 1, .value = entry.value()};
        };
        return listOf<kEntry>(*entries);
    }
    const MtxValues& values = std::get<MtxValues>(row.given);
    return List<MatrixEntry>({.records = values.data(), .owner = &matrix, .number = diagonal}, values.size(),
                             [](const ListSource& source, std::size_t place) -> MatrixEntry {
                                 // Behind the last column a wrap goes on at the first.
                                 const std::size_t order = static_cast<const Mtx*>(source.owner)->order;
                                 return {.column = (source.number + place) % order,
                                         .value = static_cast<const double*>(source.records)[place]};
                             });
}

MatrixRow rowAt(const ListSource& source, std::size_t place) {
    const Mtx& matrix = *static_cast<const Mtx*>(source.records);
    const MtxRow& row = matrix.rows[place];
    const std::uint32_t pin = pinPlace(static_cast<const PkgMdl*>(source.owner)->pin_names, row.pin_name, place + 1);
    // A row of a name that is none of a pin has no place in the matrix.
    if (pin == 0 || pin > matrix.order) return {.pin = row.pin_name, .entries = {}};
    return {.pin = row.pin_name, .entries = entriesOf(matrix, row, pin - 1)};
}

Matrix matrixOf(const PkgMdl& package, const Mtx* matrix) {
    if (matrix == nullptr) return {};
    return {.kind = kindWord(matrix->kind),
            .order = matrix->order,
            .rows = List<MatrixRow>({.records = matrix, .owner = &package}, matrix->rows.size(), rowAt)};
}

} // namespace

PackageModel packageModelOf(const PkgMdl& record) {
    return {.name = record.name,
            .file = record.file != nullptr ? std::string_view(*record.file) : std::string_view(),
            .line = record.line,
            .manufacturer = record.manufacturer,
            .oem = record.oem,
            .description = record.description,
            .pins = listOf<pinNameOf>(record.pin_names.rows()),
            .resistance = matrixOf(record, record.resistance.get()),
            .inductance = matrixOf(record, record.inductance.get()),
            .capacitance = matrixOf(record, record.capacitance.get())};
}

} // namespace kestrel::api
