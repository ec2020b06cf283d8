#include "package/mtx.hpp"

#include "base/text.hpp"
#include "ibis/run.hpp"
#include "reader/values.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

struct KindRow {
    std::string_view name;
    MtxKind kind;
};

constexpr std::array<KindRow, 3> kKinds{{
    {"Banded_matrix", MtxKind::banded},
    {"Sparse_matrix", MtxKind::sparse},
    {"Full_matrix", MtxKind::full},
}};

/// Reports a row that lacks entries: every slot of a banded or full row has to be filled, of a sparse row one. True
/// when it was reported.
bool reportShortRow(Run& run, const Mtx& mtx, const MtxRow& row) {
    if (mtx.kind == MtxKind::sparse) {
        if (row.filled == 0) {
            errorAtLine(run.diagnostics, 3117, row.pin_name);
        }
        return row.filled == 0;
    }
    if (row.filled == row.column_count) {
        return false;
    }
    const char plural = row.filled == 1 ? '\0' : 's';
    errorAtLine(run.diagnostics, 3116, row.column_count, row.pin_name, row.filled, plural);
    return true;
}

} // namespace

Mtx createMtx(Run& run, std::string_view type, std::uint32_t order) {
    Mtx mtx;
    mtx.order = order;
    const auto* const row =
        std::ranges::find_if(kKinds, [type](const KindRow& kind) { return equalsNoCase(kind.name, type); });
    if (row != kKinds.end()) {
        mtx.kind = row->kind;
    } else if (type.empty()) {
        errorAtLine(run.diagnostics, 3701);
    } else {
        errorAtLine(run.diagnostics, 3702, type);
    }
    return mtx;
}

void setBandwidth(Run& run, Mtx& mtx, std::string_view text) {
    if (!mtx.isBanded()) {
        errorAtLine(run.diagnostics, 3703);
        return;
    }
    mtx.bandwidth_given = true;
    const ReadResult result = readUnsigned(text, mtx.bandwidth);
    if (result == ReadResult::noNumber) {
        errorAtLine(run.diagnostics, 3704);
        return;
    }
    if (result == ReadResult::numberAndText) {
        errorAtLine(run.diagnostics, 3705);
    }
    if (mtx.bandwidth >= mtx.order) {
        errorAtLine(run.diagnostics, 3706, mtx.bandwidth, mtx.order);
    }
}

void closeMtx(Run& run, const Mtx& mtx) {
    if (mtx.rows.size() != mtx.order) {
        errorAtLine(run.diagnostics, 3717, mtx.order, mtx.rows.size());
    }
    bool short_row = false;
    for (const MtxRow& row : mtx.rows) {
        if (reportShortRow(run, mtx, row)) {
            short_row = true;
        }
        if (!short_row && !row.self_coupled) {
            errorAtLine(run.diagnostics, 3118, row.pin_name);
        }
    }
}

void checkMtx(Run& run, const Mtx& mtx, std::string_view label) {
    if (mtx.isBanded() && !mtx.bandwidth_given) {
        error(run.diagnostics, 3716, label);
    }
}

} // namespace kestrel
