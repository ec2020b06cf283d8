#include "component/pkg.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

constexpr int kItems = 4; ///< name, typ, min, max

/// A value of a package and what to say when it is given twice or not at all.
struct PkgValue {
    std::string_view name;
    std::optional<Rng> Pkg::*range;
    CheckedMessage<> duplicate;
    CheckedMessage<ArgKind::text> missing;
};

constexpr std::array<PkgValue, 3> kValues{{
    {"R_pkg", &Pkg::r_pkg, 1203, 1213},
    {"L_pkg", &Pkg::l_pkg, 1204, 1215},
    {"C_pkg", &Pkg::c_pkg, 1205, 1217},
}};

const PkgValue* findValue(std::string_view name) {
    const auto* const at =
        std::ranges::find_if(kValues, [name](const PkgValue& value) { return equalsNoCase(value.name, name); });
    return at == kValues.end() ? nullptr : at;
}

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
    const PkgValue* const value = findValue(name);
    if (value == nullptr) {
        errorAtLine(diagnostics, 1206);
        return;
    }
    std::optional<Rng>& stored = package.*value->range;
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
    // Four items were counted above, so that 1210 and 1211 stand guard over the range reader only.
    if (!range.typ().isNumber()) errorAtLine(diagnostics, 1209);
    if (range.min().state == CellState::missing) errorAtLine(diagnostics, 1210);
    if (range.max().state == CellState::missing) errorAtLine(diagnostics, 1211);
}

void checkPkg(Context& context, const Pkg& package, std::string_view component) {
    for (const PkgValue& value : kValues) {
        if (!(package.*value.range)) error(context.diagnostics, value.missing, component);
    }
}

} // namespace kestrel
