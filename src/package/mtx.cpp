#include "package/mtx.hpp"

#include "diagnostics/diagnostics.hpp"
#include "reader/enumeration.hpp"
#include "reader/values.hpp"

#include <array>

namespace kestrel {

namespace {

constexpr std::array<EnumerationRow<MtxKind>, 3> kKinds{{
    {"Banded_matrix", MtxKind::banded},
    {"Sparse_matrix", MtxKind::sparse},
    {"Full_matrix", MtxKind::full},
}};

/// Reports a row that lacks entries: every slot of a banded or full row has to be filled, of a sparse row one. True
/// when it was reported.
bool reportShortRow(Diagnostics& diagnostics, const Mtx& mtx, const MtxRow& row) {
    const std::size_t filled = row.filled();
    if (mtx.kind == MtxKind::sparse) {
        if (filled == 0) errorAtLine(diagnostics, 3117, row.pin_name);
        return filled == 0;
    }
    if (filled == row.column_count) return false;
    const char plural = filled == 1 ? '\0' : 's';
    errorAtLine(diagnostics, 3116, row.column_count, row.pin_name, filled, plural);
    return true;
}

} // namespace

std::uint32_t pinPlace(const PackagePins& pins, std::string_view name, std::size_t guess) {
    if (!pins.anyRepeated() && guess - 1 < pins.size() && pins[guess - 1] == name) {
        return static_cast<std::uint32_t>(guess);
    }
    const StoredText* const pin = pins.find(name);
    return pin == nullptr ? 0 : static_cast<std::uint32_t>(pin - pins.begin() + 1);
}

Mtx createMtx(Diagnostics& diagnostics, std::string_view type, std::uint32_t order) {
    Mtx mtx;
    mtx.order = order;
    if (const auto* const row = lookUpEnumeration(kKinds, type).row) {
        mtx.kind = row->code;
    } else if (type.empty()) {
        errorAtLine(diagnostics, 3701);
    } else {
        errorAtLine(diagnostics, 3702, type);
    }
    return mtx;
}

void setBandwidth(Diagnostics& diagnostics, Mtx& mtx, std::string_view text) {
    if (!mtx.isBanded()) {
        errorAtLine(diagnostics, 3703);
        return;
    }
    mtx.bandwidth_given = true;
    const ReadResult result = readUnsigned(text, mtx.bandwidth);
    if (result == ReadResult::noNumber) {
        errorAtLine(diagnostics, 3704);
        return;
    }
    if (result == ReadResult::numberAndText) errorAtLine(diagnostics, 3705);
    if (mtx.bandwidth >= mtx.order) errorAtLine(diagnostics, 3706, mtx.bandwidth, mtx.order);
}

void closeMtx(Diagnostics& diagnostics, Mtx& mtx) {
    mtx.row_counts = nullptr; // both are made again where more rows come
    mtx.taken_columns = {};
    if (mtx.rows.size() != mtx.order) errorAtLine(diagnostics, 3717, mtx.order, mtx.rows.size());
    bool short_row = false;
    for (const MtxRow& row : mtx.rows) {
        if (reportShortRow(diagnostics, mtx, row)) short_row = true;
        if (!short_row && !row.self_coupled) errorAtLine(diagnostics, 3118, row.pin_name);
    }
}

void checkMtx(Diagnostics& diagnostics, const Mtx& mtx, std::string_view label) {
    if (mtx.isBanded() && !mtx.bandwidth_given) error(diagnostics, 3716, label);
}

} // namespace kestrel
