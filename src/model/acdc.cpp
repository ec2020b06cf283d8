#include "model/acdc.hpp"

#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace kestrel {

namespace {

using Waveforms = std::vector<std::unique_ptr<Wvfrm>>;

/// An I-V table of the supplies and the one that it belongs to.
struct IssoTable {
    std::string_view name;
    std::optional<Crv> Mdl::*table;
    std::string_view main_name;
    std::optional<Crv> Mdl::*main;
};
constexpr auto kIssoTables = std::to_array({
    IssoTable{"ISSO PD", &Mdl::isso_pd, "Pulldown", &Mdl::pulldown},
    IssoTable{"ISSO PU", &Mdl::isso_pu, "Pullup", &Mdl::pullup},
});

/// The waveforms of one edge, and the rate of the ramp for it.
struct Edge {
    std::string_view word;
    std::string_view rate_name;
    Waveforms Mdl::*waveforms;
    std::optional<RampRate> Ramp::*rate;
};
constexpr auto kEdges = std::to_array({
    Edge{"Rising", "dV/dt_r", &Mdl::rising_waveforms, &Ramp::dv_dt_r},
    Edge{"Falling", "dV/dt_f", &Mdl::falling_waveforms, &Ramp::dv_dt_f},
});

/// True when the voltages of a table reach from -`supply` to `supply`; without any voltage there is nothing to say.
bool covers(const Crv& curve, double supply) {
    double low = supply;
    double high = -supply;
    bool any = false;
    for (const TableRow& row : curve.rows) {
        if (!row.isNumber(kFirst)) continue;
        low = any ? std::min(low, row.value[kFirst]) : row.value[kFirst];
        high = any ? std::max(high, row.value[kFirst]) : row.value[kFirst];
        any = true;
    }
    return !any || (low <= -supply && high >= supply);
}

bool hasCompositeCurrent(const Mdl& model) {
    return std::ranges::any_of(kEdges, [&model](const Edge& edge) {
        return std::ranges::any_of(model.*edge.waveforms,
                                   [](const auto& waveform) { return waveform->composite_current != nullptr; });
    });
}

/// True when a pin's model, or one that its selector offers, has a composite current.
bool leadsToCompositeCurrent(const Ibis& root, std::string_view name) {
    if (const Mdl* const model = root.models.find(name)) return hasCompositeCurrent(*model);
    const MSel* const selector = root.model_selectors.find(name);
    return selector != nullptr && std::ranges::any_of(selector->entries, [&root](const MSelEntry& entry) {
               const Mdl* const model = root.models.find(entry.model_name);
               return model != nullptr && hasCompositeCurrent(*model);
           });
}

bool sameTimes(const Wvfrm& a, const Wvfrm& b) {
    return std::ranges::equal(a.rows, b.rows, [](const TableRow& one, const TableRow& other) {
        return one.state[kFirst] == other.state[kFirst] && one.value[kFirst] == other.value[kFirst];
    });
}

/// The rows that have a time and a typical value.
std::vector<TableRow> typicalRows(const Wvfrm& waveform) {
    std::vector<TableRow> rows;
    std::ranges::copy_if(waveform.rows, std::back_inserter(rows),
                         [](const TableRow& row) { return row.isNumber(kFirst) && row.isNumber(kTyp); });
    return rows;
}

/// When the typical value first reaches `level`, between rows on the straight line that joins them. `sign` is 1 for a
/// value that goes up, -1 for one that goes down.
std::optional<double> timeOf(const std::vector<TableRow>& rows, double level, double sign) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double value = rows[i].value[kTyp];
        if (sign * (value - level) < 0.0) continue;
        if (i == 0) return rows[i].value[kFirst];
        const double before = rows[i - 1].value[kTyp];
        const double part = (level - before) / (value - before);
        return rows[i - 1].value[kFirst] + part * (rows[i].value[kFirst] - rows[i - 1].value[kFirst]);
    }
    return std::nullopt;
}

/// The time from 20 to 80 percent of a waveform's typical swing; nothing for one that does not move.
std::optional<double> edgeTime(const Wvfrm& waveform) {
    const std::vector<TableRow> rows = typicalRows(waveform);
    if (rows.size() < 2) return std::nullopt;
    const double start = rows.front().value[kTyp];
    const double swing = rows.back().value[kTyp] - start;
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
    for (const std::unique_ptr<Wvfrm>& waveform : waveforms) {
        const std::optional<double> time = edgeTime(*waveform);
        if (!time) continue;
        compared = true;
        if (typical.dt >= *time / kMost && typical.dt <= *time * kMost) return false;
    }
    return compared;
}

void checkRampTimes(Run& run, const Mdl& model) {
    if (!model.ramp) return;
    for (const Edge& edge : kEdges) {
        const std::optional<RampRate>& rate = *model.ramp.*edge.rate;
        if (!rate || rate->typ().state != CellState::number) continue;
        if (differsMuch(rate->typ(), model.*edge.waveforms)) {
            caution(run.diagnostics, 1709, model.name, edge.rate_name);
        }
    }
}

void checkTimePoints(Run& run, const Mdl& model) {
    for (const Edge& edge : kEdges) {
        std::int32_t number = 0;
        for (const std::unique_ptr<Wvfrm>& waveform : model.*edge.waveforms) {
            ++number;
            if (waveform->composite_current == nullptr || sameTimes(*waveform, *waveform->composite_current)) continue;
            caution(run.diagnostics, 2021, model.name, edge.word, number);
        }
    }
}

/// The composite current being read; null when its keyword stood before any waveform.
Wvfrm* openCurrent(Run& run) {
    return run.mdl.last_waveform == nullptr ? nullptr : run.mdl.last_waveform->composite_current.get();
}

} // namespace

void openCompositeCurrent(Run& run, std::string_view text) {
    if (run.mdl.last_waveform == nullptr) {
        errorAtLine(run.diagnostics, 1701);
        return;
    }
    std::unique_ptr<Wvfrm>& current = run.mdl.last_waveform->composite_current;
    if (current) errorAtLine(run.diagnostics, 1702);
    openSingleWvfrm(run, current, kCompositeCurrent, text);
}

void compositeCurrentLine(Run& run, std::string_view text) {
    if (Wvfrm* const current = openCurrent(run)) wvfrmLine(run, *current, kCompositeCurrent, text);
}

void closeCompositeCurrent(Run& run) {
    if (const Wvfrm* const current = openCurrent(run)) closeWvfrm(run, *current, kCompositeCurrent);
}

void checkIsso(Run& run, const Mdl& model) {
    for (const IssoTable& row : kIssoTables) {
        const std::optional<Crv>& table = model.*row.table;
        if (!table) continue;
        if (!(model.*row.main)) warning(run.diagnostics, 1501, model.name, row.name, row.main_name);
        if (kNoTestLoadTypes.has(model.model_type)) {
            warning(run.diagnostics, 1502, model.name, row.name, modelTypeText(model.model_type));
        }
        if (!model.voltage_range || !model.voltage_range->typ().isNumber()) continue;
        const double supply = model.voltage_range->typ().value;
        if (!covers(*table, supply)) caution(run.diagnostics, 1503, model.name, row.name, -supply, supply);
    }
}

void checkCompositeCurrents(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) return;
    for (const Mdl& model : root->models.newestFirst()) {
        if (kNoTestLoadTypes.has(model.model_type) && hasCompositeCurrent(model)) {
            warning(run.diagnostics, 1707, model.name, modelTypeText(model.model_type));
        }
        // What follows only ever makes cautions.
        if (run.diagnostics.silence_cautions) continue;
        checkRampTimes(run, model);
        checkTimePoints(run, model);
    }
}

void checkComponentCurrents(Run& run) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr || run.diagnostics.silence_cautions) return;
    for (const Cmpnt& component : root->components.newestFirst()) {
        const auto leads = [root](const Pin& pin) { return leadsToCompositeCurrent(*root, pin.model_name); };
        if (component.pin_map_columns.seen() || std::ranges::none_of(component.pins, leads)) continue;
        caution(run.diagnostics, 1708, component.name);
    }
}

} // namespace kestrel
