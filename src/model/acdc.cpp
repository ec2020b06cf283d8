#include "model/acdc.hpp"

#include "model/mdl.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace kestrel {

namespace {

using Waveforms = Rows<Wvfrm>;

/// The waveforms of one edge, and the rate of the ramp for it.
struct Edge {
    std::string_view word;
    std::string_view rate_name;
    Waveforms Tables::*waveforms;
    std::optional<RampRate> Ramp::*rate;
};
constexpr auto kEdges = std::to_array({
    Edge{"Rising", "dV/dt_r", &Tables::rising_waveforms, &Ramp::dv_dt_r},
    Edge{"Falling", "dV/dt_f", &Tables::falling_waveforms, &Ramp::dv_dt_f},
});

bool sameTimes(const Wvfrm& a, const Wvfrm& b) {
    return std::ranges::equal(a.rows, b.rows, [](const TableRow& one, const TableRow& other) {
        return one[kFirst].state() == other[kFirst].state() && one[kFirst].value() == other[kFirst].value();
    });
}

/// The rows that have a time and a typical value.
std::vector<TableRow> typicalRows(const Wvfrm& waveform) {
    std::vector<TableRow> rows;
    std::ranges::copy_if(waveform.rows, std::back_inserter(rows),
                         [](const TableRow& row) { return row[kFirst].isNumber() && row[kTyp].isNumber(); });
    return rows;
}

/// When the typical value first reaches `level`, between rows on the straight line that joins them. `sign` is 1 for a
/// value that goes up, -1 for one that goes down.
std::optional<double> timeOf(const std::vector<TableRow>& rows, double level, double sign) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double value = rows[i][kTyp].value();
        if (sign * (value - level) < 0.0) continue;
        if (i == 0) return rows[i][kFirst].value();
        const double before = rows[i - 1][kTyp].value();
        const double part = (level - before) / (value - before);
        return rows[i - 1][kFirst].value() + part * (rows[i][kFirst].value() - rows[i - 1][kFirst].value());
    }
    return std::nullopt;
}

/// The time from 20 to 80 percent of a waveform's typical swing; nothing for one that does not move.
std::optional<double> edgeTime(const Wvfrm& waveform) {
    const std::vector<TableRow> rows = typicalRows(waveform);
    if (rows.size() < 2) return std::nullopt;
    const double start = rows.front()[kTyp].value();
    const double swing = rows.back()[kTyp].value() - start;
    if (swing == 0.0) return std::nullopt;
    const double sign = swing > 0.0 ? 1.0 : -1.0;
    const std::optional<double> from = timeOf(rows, start + 0.2 * swing, sign);
    const std::optional<double> to = timeOf(rows, start + 0.8 * swing, sign);
    if (!from || !to || *to <= *from) return std::nullopt;
    return *to - *from;
}

/// True when the time of a rate is less than a fifth or more than five times that of every waveform of its edge.
bool differsMuch(const RampCorner& typical, const Waveforms& waveforms) {
    constexpr double kMost = 5.0;
    bool compared = false;
    for (const Wvfrm& waveform : waveforms) {
        const std::optional<double> time = edgeTime(waveform);
        if (!time) continue;
        compared = true;
        if (typical.dt >= *time / kMost && typical.dt <= *time * kMost) return false;
    }
    return compared;
}

void checkRampTimes(Context& context, const Mdl& model) {
    const OnDemand<Ramp>& ramp = model.tables->ramp;
    if (!ramp) return;
    for (const Edge& edge : kEdges) {
        const std::optional<RampRate>& rate = *ramp.*edge.rate;
        if (!rate || rate->typ().state() != CellState::number) continue;
        if (differsMuch(rate->typ(), (*model.tables).*edge.waveforms)) {
            caution(context.diagnostics, 1709, model.name, edge.rate_name);
        }
    }
}

void checkTimePoints(Context& context, const Mdl& model) {
    for (const Edge& edge : kEdges) {
        std::int32_t number = 0;
        for (const Wvfrm& waveform : (*model.tables).*edge.waveforms) {
            ++number;
            if (!waveform.composite_current || sameTimes(waveform, *waveform.composite_current)) continue;
            caution(context.diagnostics, 2021, model.name, edge.word, number);
        }
    }
}

} // namespace

bool hasCompositeCurrent(const Mdl& model) {
    return std::ranges::any_of(kEdges, [&model](const Edge& edge) {
        return std::ranges::any_of((*model.tables).*edge.waveforms,
                                   [](const Wvfrm& waveform) { return static_cast<bool>(waveform.composite_current); });
    });
}

void checkCompositeCurrents(Context& context, const Mdl& model) {
    if (kNoTestLoadTypes.has(model.type()) && hasCompositeCurrent(model)) {
        warning(context.diagnostics, 1707, model.name, modelTypeText(model.type()));
    }
    // What follows only ever makes cautions.
    if (context.diagnostics.silence_cautions) return;
    checkRampTimes(context, model);
    checkTimePoints(context, model);
}

} // namespace kestrel
