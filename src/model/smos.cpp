#include "model/smos.hpp"

#include "reader/context.hpp"
#include "reader/line_form.hpp"

#include <map>

namespace kestrel {

namespace {

constexpr std::string_view kVds = "Vds";
constexpr std::size_t kMaxTables = 100;

/// Reads "Vds = number"; false when the line gives no voltage.
bool readVds(Context& context, GivenValue& vds, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const ValueLine line = splitValueLine(context, text);
    if (!line.complete) {
        errorAtLine(diagnostics, 2802);
        return false;
    }
    if (line.count > ValueLine::kItems) errorAtLine(diagnostics, 2801, line.count, kVds, ValueLine::kItems);
    if (line.result == ReadResult::noNumber) {
        errorAtLine(diagnostics, 2803, line.text);
        return false;
    }
    if (line.result == ReadResult::numberAndText) warningAtLine(diagnostics, 2804, line.text);
    if (line.value <= 0.0) warningAtLine(diagnostics, 2808);
    vds = line.value;
    return true;
}

} // namespace

void openSMos(Context& context, CrvState& state, std::vector<SMos>& list, std::string_view text) {
    SMos& mosfet = list.emplace_back();
    if (list.size() > kMaxTables) errorAtLine(context.diagnostics, 2811, static_cast<std::int32_t>(kMaxTables));
    expectNoText(context, text, curveLabel(CurveKind::seriesMosfet), 2801);
    beginCrv(context, state, mosfet.table);
}

void sMosLine(Context& context, CrvState& state, SMos& mosfet, std::string_view text) {
    std::string_view rest = text;
    const std::string_view first = takeItem(context, rest, '=');
    if (first != kVds) {
        if (readFirstCell(first).beginsRow()) {
            crvLine(context, state, mosfet.table, CurveKind::seriesMosfet, text);
        } else {
            errorAtLine(context.diagnostics, 2810);
        }
        return;
    }
    if (!mosfet.table.rows.empty()) errorAtLine(context.diagnostics, 2806);
    if (mosfet.vds) {
        errorAtLine(context.diagnostics, 2805);
    } else if (!readVds(context, mosfet.vds, text)) {
        mosfet.vds_refused = true;
    }
}

void closeSMos(Context& context, const CrvState& state, const SMos& mosfet, const CurveOwner& owner) {
    if (!mosfet.vds && !mosfet.vds_refused) {
        error(context.diagnostics, 2807, static_cast<std::int32_t>(mosfet.table.line));
    }
    closeCrv(context, state, mosfet.table, CurveKind::seriesMosfet, owner);
}

void checkSMosVoltages(Context& context, const std::vector<SMos>& list, std::string_view model) {
    std::map<double, std::size_t> tables;
    for (const SMos& mosfet : list) {
        if (mosfet.vds && ++tables[*mosfet.vds] == 2) warning(context.diagnostics, 2809, model, *mosfet.vds);
    }
}

} // namespace kestrel
