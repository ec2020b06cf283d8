#include "model/smos.hpp"

#include "ibis/run.hpp"
#include "reader/line_form.hpp"

#include <unordered_map>

namespace kestrel {

namespace {

constexpr std::string_view kVds = "Vds";
constexpr std::size_t kMaxTables = 100;

/// Reads "Vds = number"; false when the line gives no voltage.
bool readVds(Run& run, std::optional<double>& vds, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ValueLine line = splitValueLine(run, text);
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

void openSMos(Run& run, std::vector<SMos>& list, std::string_view text) {
    SMos& mosfet = list.emplace_back();
    if (list.size() > kMaxTables) errorAtLine(run.diagnostics, 2811, static_cast<std::int32_t>(kMaxTables));
    expectNoText(run, text, curveLabel(CurveKind::seriesMosfet), 2801);
    mosfet.begin_line = run.parse.line;
    beginCrv(run, run.mdl.crv, mosfet.table);
}

void sMosLine(Run& run, SMos& mosfet, std::string_view text) {
    std::string_view rest = text;
    const std::string_view first = takeItem(run, rest, '=');
    if (first != kVds) {
        if (readFirstCell(first).beginsRow()) {
            crvLine(run, run.mdl.crv, mosfet.table, CurveKind::seriesMosfet, text);
        } else {
            errorAtLine(run.diagnostics, 2810);
        }
        return;
    }
    if (!mosfet.table.rows.empty()) errorAtLine(run.diagnostics, 2806);
    if (mosfet.vds) {
        errorAtLine(run.diagnostics, 2805);
    } else if (!readVds(run, mosfet.vds, text)) {
        mosfet.vds_refused = true;
    }
}

void closeSMos(Run& run, const SMos& mosfet, const Mdl& model) {
    if (!mosfet.vds && !mosfet.vds_refused) {
        error(run.diagnostics, 2807, static_cast<std::int32_t>(mosfet.begin_line));
    }
    closeCrv(run, run.mdl.crv, mosfet.table, CurveKind::seriesMosfet, "Model", model.name, model.model_type);
}

void checkSMosVoltages(Run& run, const std::vector<SMos>& list, std::string_view model) {
    std::unordered_map<double, std::size_t> tables;
    for (const SMos& mosfet : list) {
        if (mosfet.vds && ++tables[*mosfet.vds] == 2) warning(run.diagnostics, 2809, model, *mosfet.vds);
    }
}

} // namespace kestrel
