#include "component/pkg.hpp"

#include "base/rows.hpp"
#include "reader/context.hpp"
#include "reader/items.hpp"

namespace kestrel {

namespace {

constexpr int kItems = 4; ///< name, typ, min, max

/// A value of a package and what is reported when it is given twice or not at all.
struct PkgValue {
    std::string_view name;
    GivenRange Pkg::*range;
    CheckedMessage<> duplicate;
    CheckedMessage<ArgKind::text> missing;
};

constexpr std::array<PkgValue, 3> kValues{{
    {"R_pkg", &Pkg::r_pkg, 1203, 1213},
    {"L_pkg", &Pkg::l_pkg, 1204, 1215},
    {"C_pkg", &Pkg::c_pkg, 1205, 1217},
}};

} // namespace

void pkgLine(Context& context, Pkg& package, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    if (!text.empty() && isSpace(text.front())) errorAtLine(diagnostics, 1201);
    const ItemList items = splitItems(context, text, kItems);
    if (items.count != kItems) {
        errorAtLine(diagnostics, 1202, kItems, items.count);
        return;
    }

    const std::string_view name = takeItem(context, text);
    const auto is_named = [name](const PkgValue& one) { return equalsNoCase(one.name, name); };
    const PkgValue* const value = rowOf(kValues, true, is_named);
    if (value == nullptr) {
        errorAtLine(diagnostics, 1206);
        return;
    }
    GivenRange& stored = package.*value->range;
    if (stored) {
        errorAtLine(diagnostics, value->duplicate);
        return;
    }

    Rng range;
    if (!readRange(context, text, name, range, OrderCheck::on)) {
        errorAtLine(diagnostics, 1207, name);
        return;
    }
    stored = range;
    // Four items were counted above, so that a missing one would be a fault of the range reader.
    if (!range.typ().isNumber()) errorAtLine(diagnostics, 1209);
    if (range.min().state() == CellState::missing) errorAtLine(diagnostics, 1210);
    if (range.max().state() == CellState::missing) errorAtLine(diagnostics, 1211);
}

void checkPkg(Context& context, const Pkg& package, std::string_view component) {
    for (const PkgValue& value : kValues) {
        if (!(package.*value.range)) error(context.diagnostics, value.missing, component);
    }
}

} // namespace kestrel
