#include "model/ramp.hpp"

#include "base/text.hpp"
#include "reader/plain_cells.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kRising = "dV/dt_r";
constexpr std::string_view kFalling = "dV/dt_f";

/// Reads one number of a cell and warns of digits in its scale.
bool readPart(Diagnostics& diagnostics, std::string_view text, std::string_view name, std::string_view word,
              double& value) {
    const ReadResult result = readScaled(text, value);
    if (result == ReadResult::numberAndText) warningAtLine(diagnostics, 1311, word, name, text);
    return result != ReadResult::noNumber;
}

/// Reads a cell "dV/dt" or "NA"; any other is reported and leaves the corner as if it were missing.
RampCorner readCorner(Context& context, std::string_view cell, std::string_view name, std::string_view word) {
    const ItemList parts = splitItems(context, cell, 3, '/');
    if (parts.count == 1 && equalsNoCase(parts[0], "NA")) return {.dv = Cell::na()};
    double dv = 0.0;
    double dt = 0.0;
    if (parts.count == 3 && parts[1] == "/" && readPart(context.diagnostics, parts[0], name, word, dv) &&
        readPart(context.diagnostics, parts[2], name, word, dt)) {
        return {Cell(dv), dt};
    }
    errorAtLine(context.diagnostics, 1312, name, word, cell);
    return {};
}

/// A rate needs a typical corner, and steps above zero. A minimum or maximum that is missing or did not read counts as
/// zero; a typical one has been reported.
void checkCorners(Diagnostics& diagnostics, const RampRate& rate, std::string_view name) {
    const RampCorner& typical = rate.typ();
    if (typical.state() == CellState::na) errorAtLine(diagnostics, 1309, name);
    for (const RampCorner& corner : rate) {
        if (corner.state() == CellState::na) continue;
        if (&corner == &typical && corner.state() == CellState::missing) continue;
        if (corner.dv.value() <= 0.0) errorAtLine(diagnostics, 1310, "dV");
        if (corner.dt <= 0.0) errorAtLine(diagnostics, 1310, "dT");
    }
}

/// Reads three cells of plain numbers, as nearly all rates are; false for any other text, of which nothing is reported.
/// A ramp is read in half of the time.
bool readPlainRate(const Context& context, std::string_view text, RampRate& rate) {
    if (!context.short_paths) return false;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (RampCorner& corner : rate.values) {
        double dv = 0.0;
        at = nextPlainItem(at, end);
        if (at != nullptr) at = readPlainNumber(at, end, dv);
        if (at == nullptr || at == end || *at != '/') return false;
        at = readPlainNumber(at + 1, end, corner.dt);
        if (at == nullptr || !isItemEnd(at, end)) return false;
        corner.dv = Cell(dv);
    }
    return at == end;
}

/// Reads the cells behind a rate's name.
RampRate readRateCells(Context& context, std::string_view text, std::string_view name) {
    const ItemList cells = splitItems(context, text, static_cast<int>(kCornerCount));
    if (cells.count > 0) reportItemCount(context.diagnostics, cells.count, kMissingCornerWords, name, {1304, 1308});
    RampRate rate;
    for (const Corner corner : kCorners) {
        const auto at = static_cast<int>(corner);
        if (cells.has(at)) rate[corner] = readCorner(context, cells[at], name, kCornerWords[placeOf(corner)]);
    }
    return rate;
}

RampRate readRate(Context& context, std::string_view text, std::string_view name) {
    RampRate rate;
    if (!readPlainRate(context, text, rate)) rate = readRateCells(context, text, name);
    checkCorners(context.diagnostics, rate, name);
    return rate;
}

template <std::optional<RampRate> Ramp::*Rate>
constexpr OwnForm<Ramp> kRateLine{
    [](const Ramp& ramp) { return (ramp.*Rate).has_value(); },
    [](Context& context, Ramp& ramp, const SubparameterLine& line) {
        ramp.*Rate = readRate(context, line.rest, line.name);
        return true;
    },
};

constexpr auto kRamp = subparameters<Subparameter<Ramp>>(
    {
        {kRising, kRateLine<&Ramp::dv_dt_r>},
        {kFalling, kRateLine<&Ramp::dv_dt_f>},
        {"R_load", &Ramp::r_load},
    },
    {
        .unknown = CheckedMessage<>(1305),
        .repeated = 1307,
        .value = ValueLineMessages{1313, 1304, 1314, ScaleMessage(1311)},
        .group = "Ramp",
    });

} // namespace

void openRamp(Context& context, OnDemand<Ramp>& slot, std::string_view text) {
    if (slot) errorAtLine(context.diagnostics, 1300);
    slot.madeAnew(context.rows).line = context.parse.line;
    expectNoText(context, text, "Ramp", 1304);
}

void rampLine(Context& context, Ramp& ramp, std::string_view text, std::string_view owner_name) {
    readSubparameter(context, kRamp, ramp, text, owner_name);
}

void closeRamp(Context& context, const Ramp& ramp) {
    const auto line = static_cast<std::int32_t>(ramp.line);
    if (!ramp.dv_dt_r) error(context.diagnostics, 1306, kRising, line);
    if (!ramp.dv_dt_f) error(context.diagnostics, 1306, kFalling, line);
}

} // namespace kestrel
