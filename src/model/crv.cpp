#include "model/crv.hpp"

#include "base/rows.hpp"
#include "model/table_ends.hpp"
#include "model/types.hpp"
#include "reader/context.hpp"
#include "reader/line_form.hpp"
#include "reader/plain_rows.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace kestrel {

namespace {

constexpr std::size_t kMaxRows = 100;
constexpr double kZeroCurrent = 1e-6; // amperes; no larger current counts as zero

constexpr TableEndsMessages kEndsMessages{1108, 1109};
constexpr std::string_view kFirstWord = "Voltage";

/// A kind of table: its label, the direction of its current by the family of the model's type, and whether its current
/// has to pass through zero.
struct CurveRules {
    CurveKind kind;
    std::string_view label;
    CurveTrend general;
    CurveTrend ecl;
    CurveTrend series;
    bool crosses_zero;
};

constexpr auto kRising = CurveTrend::rising;
constexpr auto kFalling = CurveTrend::falling;
constexpr auto kNotChecked = CurveTrend::notChecked;

constexpr auto kRules = std::to_array({
    CurveRules{CurveKind::pulldown, "Pulldown", kRising, kFalling, kRising, false},
    CurveRules{CurveKind::pullup, "Pullup", kFalling, kFalling, kFalling, false},
    CurveRules{CurveKind::gndClamp, "GND Clamp", kRising, kRising, kRising, true},
    CurveRules{CurveKind::powerClamp, "POWER Clamp", kFalling, kFalling, kFalling, true},
    CurveRules{CurveKind::issoPd, "ISSO PD", kNotChecked, kNotChecked, kNotChecked, false},
    CurveRules{CurveKind::issoPu, "ISSO PU", kNotChecked, kNotChecked, kNotChecked, false},
    CurveRules{CurveKind::seriesCurrent, "Series Current", kFalling, kFalling, kNotChecked, false},
    CurveRules{CurveKind::seriesMosfet, "Series MOSFET", kFalling, kFalling, kRising, false},
});

static_assert(rowsInOrder(kRules, &CurveRules::kind));

constexpr const CurveRules& rulesOf(CurveKind kind) { return kRules[static_cast<std::size_t>(kind)]; }

CurveTrend trendOf(const CurveRules& rules, std::optional<ModelType> type) {
    switch (type.value_or(ModelType::notGiven)) {
    case ModelType::notGiven:
    case ModelType::noType: return CurveTrend::notChecked;
    case ModelType::inputEcl:
    case ModelType::outputEcl:
    case ModelType::ioEcl:
    case ModelType::threeStateEcl: return rules.ecl;
    case ModelType::series:
    case ModelType::seriesSwitch: return rules.series;
    default: return rules.general;
    }
}

/// Follows one column; true for the value that first goes against the column's direction.
bool turnsBack(CrvState::Trace& trace, double value) {
    using Direction = CrvState::Direction;
    using Seen = CrvState::Seen;
    if (trace.seen == Seen::nothing) {
        trace.seen = Seen::value;
    } else if (value != trace.last) {
        const Direction step = value > trace.last ? Direction::rising : Direction::falling;
        if (trace.direction == Direction::unknown) {
            trace.direction = step;
        } else if (step != trace.direction) {
            trace.seen = Seen::nonMonotonic;
            return true;
        }
    }
    trace.last = value;
    return false;
}

void followColumns(Context& context, CrvState& state, const TableRow& row, std::string_view label) {
    for (const Column column : {kFirst, kTyp, kMin, kMax}) {
        CrvState::Trace& trace = state.traces[column];
        if (!row[column].isNumber() || trace.seen == CrvState::Seen::nonMonotonic) continue;
        if (!turnsBack(trace, row[column].value())) continue;
        noteAtLine(context.diagnostics, 1110, label, column == kFirst ? kFirstWord : columnWord(column));
    }
}

void followExtreme(CrvState::Extreme& extreme, const TableRow& row, bool beyond) {
    const double voltage = row[kFirst].value();
    const bool fills_gap = voltage == extreme.voltage && extreme.current.isNa();
    if (!extreme.found || beyond || fills_gap) extreme = {true, voltage, row[kTyp]};
}

void addRow(Context& context, CrvState& state, Crv& curve, const TableRow& row, std::string_view label) {
    context.rows.add(curve.rows, row);
    const std::size_t count = curve.rows.size();
    followColumns(context, state, row, label);
    if (row[kFirst].isNa()) errorAtLine(context.diagnostics, 1106);
    if (row[kFirst].isNumber()) {
        followExtreme(state.lowest, row, row[kFirst].value() < state.lowest.voltage);
        followExtreme(state.highest, row, row[kFirst].value() > state.highest.voltage);
    }
    if (count == kMaxRows + 1) errorAtLine(context.diagnostics, 1107, static_cast<std::int32_t>(kMaxRows), label);
}

void checkTrend(Context& context, const CrvState& state, const Crv& curve, const CurveRules& rules,
                const CurveOwner& owner) {
    const CurveTrend trend = trendOf(rules, owner.type);
    if (trend == CurveTrend::notChecked || curve.rows.empty()) return;
    if (curve.rows.front()[kTyp].isNa() || curve.rows.back()[kTyp].isNa()) return;
    const Cell& low = state.lowest.current;
    const Cell& high = state.highest.current;
    if (!low.isNumber() || !high.isNumber()) return;
    if (trend == CurveTrend::rising && high.value() < low.value()) {
        warning(context.diagnostics, 1111, owner.kind, owner.name, rules.label);
    } else if (trend == CurveTrend::falling && high.value() > low.value()) {
        warning(context.diagnostics, 1112, owner.kind, owner.name, rules.label);
    }
}

/// True when a column has currents on one side of zero only and none that counts as zero.
bool neverZero(const Crv& curve, Column column) {
    if (curve.rows.empty()) return false;
    if (curve.rows.front()[column].isNa() || curve.rows.back()[column].isNa()) {
        return false;
    }
    bool below = false;
    bool above = false;
    for (const TableRow& row : curve.rows) {
        if (!row[column].isNumber()) continue;
        const double current = row[column].value();
        if (std::abs(current) <= kZeroCurrent) return false;
        (current < 0.0 ? below : above) = true;
    }
    return below != above;
}

void checkZeroCrossing(Context& context, const Crv& curve, std::string_view label, const CurveOwner& owner) {
    if (neverZero(curve, kTyp)) warning(context.diagnostics, 1113, owner.kind, owner.name, label);
    if (neverZero(curve, kMin)) warning(context.diagnostics, 1114, owner.kind, owner.name, label);
    if (neverZero(curve, kMax)) warning(context.diagnostics, 1115, owner.kind, owner.name, label);
}

} // namespace

std::string_view curveLabel(CurveKind kind) { return rulesOf(kind).label; }

void openCrv(Context& context, CrvState& state, Crv& slot, CurveKind kind, std::string_view text) {
    const std::string_view label = curveLabel(kind);
    if (slot) errorAtLine(context.diagnostics, 1100, label);
    expectNoText(context, text, label, 1104);
    beginCrv(context, state, slot);
}

void beginCrv(const Context& context, CrvState& state, Crv& curve) {
    state = CrvState{};
    curve = {.rows = {}, .line = context.parse.line, .given = true};
}

void crvLine(Context& context, CrvState& state, Crv& curve, CurveKind kind, std::string_view text) {
    const std::string_view label = curveLabel(kind);
    addRow(context, state, curve, readRow(context, text, label, kFirstWord), label);
}

void crvRows(Context& context, CrvState& state, Crv& curve, CurveKind kind, LineReader& reader) {
    const std::string_view label = curveLabel(kind);
    takePlainRows(context, reader, [&](const TableRow& row) { addRow(context, state, curve, row, label); });
}

void closeCrv(Context& context, const CrvState& state, const Crv& curve, CurveKind kind, const CurveOwner& owner) {
    const CurveRules& rules = rulesOf(kind);
    checkTableEnds(context.diagnostics, curve.rows, kEndsMessages, rules.label, curve.line);
    checkTrend(context, state, curve, rules, owner);
    if (rules.crosses_zero) checkZeroCrossing(context, curve, rules.label, owner);
}

std::vector<TableRow> sortedRows(const Crv& curve) {
    std::vector<TableRow> rows;
    std::ranges::copy_if(curve.rows, std::back_inserter(rows),
                         [](const TableRow& row) { return row[kFirst].isNumber(); });
    std::ranges::stable_sort(rows, {}, [](const TableRow& row) { return row[kFirst].value(); });
    return rows;
}

} // namespace kestrel
