#include "report/model_pictures.hpp"

#include "ibis/run.hpp"

namespace kestrel {

namespace {

constexpr Axis kOutputAxis{"Voltage", "V"};

/// The pictures of one model or submodel.
struct Pictures {
    const PartContext& part;
    std::string_view owner;
    FindingMarks marks;

    void curve(const Crv& table, std::string_view title, std::string_view note) {
        if (!table) return;
        Plot plot = plotOf(table.rows, std::string(title), owner, kVoltageAxis, kCurrentAxis);
        plot.note = note;
        marks.mark(plot, table.line, title);
        writePlot(part.html, plot);
    }

    void waveform(const Wvfrm& table, std::string_view word, std::string_view label) {
        Plot plot = plotOf(table.rows, waveformTitle(word, table), owner, kTimeAxis, kOutputAxis);
        plot.note = fixtureNote(table);
        marks.mark(plot, table.line, label);
        writePlot(part.html, plot);
        if (!table.composite_current) return;
        const Wvfrm& current = *table.composite_current;
        Plot supply = plotOf(current.rows, std::string("Supply current, ").append(waveformTitle(word, table)), owner,
                             kTimeAxis, kCurrentAxis);
        marks.mark(supply, current.line, kCompositeCurrent.open);
        writePlot(part.html, supply);
    }

    void enter(const Crv& table) {
        if (table) marks.enterTable(table.line);
    }
    void enter(const Rows<Wvfrm>& list) {
        for (const Wvfrm& waveform : list) {
            marks.enterTable(waveform.line);
            if (waveform.composite_current) marks.enterTable(waveform.composite_current->line);
        }
    }
    void enter(const Tables& tables) {
        for (const Crv* const table : {&tables.pulldown, &tables.pullup, &tables.gnd_clamp, &tables.power_clamp})
            enter(*table);
        if (tables.ramp) marks.enterTable(tables.ramp->line);
        enter(tables.rising_waveforms);
        enter(tables.falling_waveforms);
    }

    void curves(const Tables& tables) {
        constexpr std::string_view kFromPower = "table voltage: supply minus pin";
        curve(tables.pulldown, "Pulldown", "");
        curve(tables.pullup, "Pullup", kFromPower);
        curve(tables.gnd_clamp, "GND Clamp", "");
        curve(tables.power_clamp, "POWER Clamp", kFromPower);
    }
    void waveforms(const Tables& tables) {
        for (const Wvfrm& table : tables.rising_waveforms)
            waveform(table, "Rising", kRisingWaveform.open);
        for (const Wvfrm& table : tables.falling_waveforms)
            waveform(table, "Falling", kFallingWaveform.open);
    }
};

void writeSeries(Pictures& pictures, const SeriesBlock& block, std::string_view label) {
    pictures.curve(block.series_current, std::string("Series Current ").append(label), "");
    for (const SMos& mosfet : block.mosfets) {
        std::string title("Series MOSFET ");
        title.append(label);
        if (mosfet.vds) appendQuantity(title.append(", Vds "), *mosfet.vds, "V");
        pictures.curve(mosfet.table, title, "");
    }
}

} // namespace

void writeRamp(CornerTable& table, const Ramp& ramp) {
    const auto rate = [&](std::string_view name, const std::optional<RampRate>& given) {
        if (!given) return;
        PerCorner<std::string> texts;
        for (const Corner corner : kCorners) {
            const RampCorner& step = (*given)[corner];
            texts[corner] = cellText(step.dv, "V");
            if (step.dv.isNumber()) appendQuantity(texts[corner].append(" / "), step.dt, "s");
        }
        table.row(name, texts);
    };
    rate("dV/dt_r", ramp.dv_dt_r);
    rate("dV/dt_f", ramp.dv_dt_f);
    table.row("R_load", ramp.r_load, kOhm);
}

void writeModelNumbers(const PartContext& /*part*/, const Mdl& /*model*/) {}

void writeModelPictures(const PartContext& part, const Mdl& model) {
    const MdlTables& tables = *model.tables;
    Pictures pictures{part, model.name, FindingMarks(part, model)};
    pictures.enter(tables);
    pictures.enter(tables.isso_pd);
    pictures.enter(tables.isso_pu);
    for (const auto& block : {model.on_block.get(), model.off_block.get()}) {
        if (block == nullptr) continue;
        pictures.enter(block->series_current);
        for (const SMos& mosfet : block->mosfets)
            pictures.enter(mosfet.table);
    }
    pictures.marks.ready();
    if (!model.tables && !model.on_block && !model.off_block) return;
    writeLegend(part.html);
    part.html << "<div class=\"plots\">\n";
    pictures.curves(tables);
    pictures.curve(tables.isso_pd, "ISSO PD", "");
    pictures.curve(tables.isso_pu, "ISSO PU", "");
    if (model.on_block) writeSeries(pictures, *model.on_block, kOnLabel);
    if (model.off_block) writeSeries(pictures, *model.off_block, kOffLabel);
    pictures.waveforms(tables);
    part.html << "</div>\n";
}

void writeSubmodelPictures(const PartContext& part, const SubMdl& submodel) {
    const SubMdlTables& tables = *submodel.tables;
    Pictures pictures{part, submodel.name, FindingMarks(part, submodel)};
    pictures.enter(tables);
    for (const OnDemand<Wvfrm>* const pulse : {&submodel.gnd_pulse, &submodel.power_pulse})
        if (*pulse) pictures.marks.enterTable((*pulse)->line);
    pictures.marks.ready();
    if (!submodel.tables && !submodel.gnd_pulse && !submodel.power_pulse) return;
    writeLegend(part.html);
    part.html << "<div class=\"plots\">\n";
    pictures.curves(tables);
    pictures.waveforms(tables);
    if (submodel.gnd_pulse) pictures.waveform(*submodel.gnd_pulse, "GND pulse", kGndPulse.open);
    if (submodel.power_pulse) pictures.waveform(*submodel.power_pulse, "POWER pulse", kPowerPulse.open);
    part.html << "</div>\n";
}

} // namespace kestrel
