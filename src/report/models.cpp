#include "ibis/run.hpp"
#include "report/model_pictures.hpp"
#include "report/pictures.hpp"
#include "report/sections.hpp"
#include "report/tables.hpp"

#include <future>
#include <span>
#include <system_error>
#include <thread>

namespace kestrel {

namespace {

/// A row of a table of corners: what a member is called and its unit.
template <class Member> struct Named {
    std::string_view name;
    Member member;
    std::string_view unit;
};

constexpr std::string_view kNoUnit;

constexpr auto kCapacitances = std::to_array<Named<GivenRange CComp::*>>({
    {"C_comp", &CComp::c_comp, "F"},
    {"C_comp_pullup", &CComp::c_comp_pullup, "F"},
    {"C_comp_pulldown", &CComp::c_comp_pulldown, "F"},
    {"C_comp_power_clamp", &CComp::c_comp_power_clamp, "F"},
    {"C_comp_gnd_clamp", &CComp::c_comp_gnd_clamp, "F"},
});

constexpr auto kRanges = std::to_array<Named<MdlRange>>({
    {"Voltage range", MdlRange::voltageRange, "V"},
    {"Temperature range", MdlRange::temperatureRange, kCelsius},
    {"Pullup reference", MdlRange::pullupReference, "V"},
    {"Pulldown reference", MdlRange::pulldownReference, "V"},
    {"POWER clamp reference", MdlRange::powerClampReference, "V"},
    {"GND clamp reference", MdlRange::gndClampReference, "V"},
    {"External reference", MdlRange::externalReference, "V"},
    {"TTgnd", MdlRange::ttgnd, "s"},
    {"TTpower", MdlRange::ttpower, "s"},
    {"Rgnd", MdlRange::rgnd, kOhm},
    {"Rpower", MdlRange::rpower, kOhm},
    {"Rac", MdlRange::rac, kOhm},
    {"Cac", MdlRange::cac, "F"},
});

constexpr auto kValues = std::to_array<Named<GivenValue MdlValues::*>>({
    {"Vinl", &MdlValues::vinl, "V"},
    {"Vinh", &MdlValues::vinh, "V"},
    {"Vmeas", &MdlValues::vmeas, "V"},
    {"Cref", &MdlValues::cref, "F"},
    {"Rref", &MdlValues::rref, kOhm},
    {"Vref", &MdlValues::vref, "V"},
    {"Cref_diff", &MdlValues::cref_diff, "F"},
    {"Rref_diff", &MdlValues::rref_diff, kOhm},
});

constexpr auto kSpecs = std::to_array<Named<GivenRange MSpec::*>>({
    {"Vinl", &MSpec::vinl, "V"},
    {"Vinh", &MSpec::vinh, "V"},
    {"Vinh+", &MSpec::vinh_plus, "V"},
    {"Vinh-", &MSpec::vinh_minus, "V"},
    {"Vinl+", &MSpec::vinl_plus, "V"},
    {"Vinl-", &MSpec::vinl_minus, "V"},
    {"S_overshoot_high", &MSpec::s_overshoot_high, "V"},
    {"S_overshoot_low", &MSpec::s_overshoot_low, "V"},
    {"D_overshoot_high", &MSpec::d_overshoot_high, "V"},
    {"D_overshoot_low", &MSpec::d_overshoot_low, "V"},
    {"D_overshoot_time", &MSpec::d_overshoot_time, "s"},
    {"D_overshoot_area_h", &MSpec::d_overshoot_area_h, "Vs"},
    {"D_overshoot_area_l", &MSpec::d_overshoot_area_l, "Vs"},
    {"D_overshoot_ampl_h", &MSpec::d_overshoot_ampl_h, "V"},
    {"D_overshoot_ampl_l", &MSpec::d_overshoot_ampl_l, "V"},
    {"Pulse_high", &MSpec::pulse_high, "V"},
    {"Pulse_low", &MSpec::pulse_low, "V"},
    {"Pulse_time", &MSpec::pulse_time, "s"},
    {"Vmeas", &MSpec::vmeas, "V"},
    {"Vref", &MSpec::vref, "V"},
    {"Cref", &MSpec::cref, "F"},
    {"Rref", &MSpec::rref, kOhm},
    {"Vmeas_rising", &MSpec::vmeas_rising, "V"},
    {"Vmeas_falling", &MSpec::vmeas_falling, "V"},
    {"Vref_rising", &MSpec::vref_rising, "V"},
    {"Vref_falling", &MSpec::vref_falling, "V"},
    {"Cref_rising", &MSpec::cref_rising, "F"},
    {"Cref_falling", &MSpec::cref_falling, "F"},
    {"Rref_rising", &MSpec::rref_rising, kOhm},
    {"Rref_falling", &MSpec::rref_falling, kOhm},
    {"Rref_diff", &MSpec::rref_diff, kOhm},
    {"Cref_diff", &MSpec::cref_diff, "F"},
    {"Weak_R", &MSpec::weak_r, kOhm},
    {"Weak_I", &MSpec::weak_i, "A"},
    {"Weak_V", &MSpec::weak_v, "V"},
});

constexpr auto kThresholds = std::to_array<Named<GivenValue RcvTh::*>>({
    {"Vth", &RcvTh::vth, "V"},
    {"Vth_min", &RcvTh::vth_min, "V"},
    {"Vth_max", &RcvTh::vth_max, "V"},
    {"Vinh_ac", &RcvTh::vinh_ac, "V"},
    {"Vinh_dc", &RcvTh::vinh_dc, "V"},
    {"Vinl_ac", &RcvTh::vinl_ac, "V"},
    {"Vinl_dc", &RcvTh::vinl_dc, "V"},
    {"Threshold_sensitivity", &RcvTh::threshold_sensitivity, kNoUnit},
    {"Vcross_low", &RcvTh::vcross_low, "V"},
    {"Vcross_high", &RcvTh::vcross_high, "V"},
    {"Vdiff_ac", &RcvTh::vdiff_ac, "V"},
    {"Vdiff_dc", &RcvTh::vdiff_dc, "V"},
    {"Tslew_ac", &RcvTh::tslew_ac, "s"},
    {"Tdiffslew_ac", &RcvTh::tdiffslew_ac, "s"},
});

constexpr auto kElements = std::to_array<Named<GivenRange SeriesBlock::*>>({
    {"R series", &SeriesBlock::r_series, kOhm},
    {"L series", &SeriesBlock::l_series, "H"},
    {"Rl series", &SeriesBlock::rl_series, kOhm},
    {"C series", &SeriesBlock::c_series, "F"},
    {"Rc series", &SeriesBlock::rc_series, kOhm},
    {"Lc series", &SeriesBlock::lc_series, "H"},
});

/// Rows for the members of a record.
template <class Names, class Record> void writeRows(CornerTable& table, const Names& rows, const Record& record) {
    for (const auto& row : rows)
        table.row(row.name, record.*row.member, row.unit);
}

void writeValues(const PartContext& part, const Mdl& model) {
    {
        CornerTable table(part.html, "Values");
        writeRows(table, kCapacitances, static_cast<const CComp&>(*model.values));
        for (const auto& row : kRanges)
            if (const Rng* const range = findRange(model, row.member)) table.row(row.name, *range, row.unit);
        writeRows(table, kValues, *model.values);
        writeRamp(table, *model.tables->ramp);
    }
    if (model.model_spec) {
        CornerTable table(part.html, "Model spec");
        writeRows(table, kSpecs, *model.model_spec);
    }
    if (model.receiver_thresholds) {
        CornerTable table(part.html, "Receiver thresholds");
        writeRows(table, kThresholds, *model.receiver_thresholds);
    }
    if (model.c_comp_corner) {
        CornerTable table(part.html, "C_comp of the corners");
        writeRows(table, kCapacitances, static_cast<const CComp&>(*model.c_comp_corner));
    }
    for (const auto& [label, block] : {std::pair{kOnLabel, model.on_block.get()}, {kOffLabel, model.off_block.get()}}) {
        if (block == nullptr) continue;
        CornerTable table(part.html, label);
        writeRows(table, kElements, *block);
    }
}

void writeSchedule(const PartContext& part, const DrvSh& schedule) {
    Html& html = part.html;
    if (schedule.entries.empty()) return;
    html << "<table class=\"corners\"><caption>Driver schedule</caption><thead><tr><th scope=\"col\">Model</th>"
            "<th scope=\"col\">Rise on</th><th scope=\"col\">Rise off</th><th scope=\"col\">Fall on</th>"
            "<th scope=\"col\">Fall off</th></tr></thead><tbody>\n";
    for (const DrvShEntry& entry : schedule.entries) {
        html << "<tr><th scope=\"row\">";
        writeLink(html, part.anchors.find(part.root.models.find(entry.model_name)), entry.model_name);
        html << "</th>";
        for (const Cell& cell :
             {entry.delays.rise_on, entry.delays.rise_off, entry.delays.fall_on, entry.delays.fall_off})
            html << "<td>" << Text(cellText(cell, "s")) << "</td>";
        html << "</tr>\n";
    }
    html << "</tbody></table>\n";
}

/// What else the model is made of, in words.
void writeParts(const PartContext& part, const Mdl& model) {
    Html& html = part.html;
    if (!model.add_submodels.empty()) {
        html << "<p>Submodels:";
        for (const AddSubmodel& added : model.add_submodels) {
            html << " ";
            writeLink(html, part.anchors.find(part.root.submodels.find(added.name)), added.name);
            if (const auto* const row = rowOf(kSubmodelModes, added.mode, &EnumerationRow<SubmodelMode>::code))
                html << " <small>" << Text(row->text) << "</small>";
        }
        html << "</p>\n";
    }
    if (model.external_model) {
        html << "<p>External model:";
        for (const std::optional<ExtFile>& file : model.external_model->corners)
            if (file) html << " " << Text(file->file) << " <small>" << Text(file->circuit) << "</small>";
        html << "</p>\n";
    }
    if (model.algorithmic_model) {
        for (const AlgExecutable& executable : model.algorithmic_model->executables) {
            html << "<p>Executable for " << Text(executable.platform) << ": " << Text(executable.file)
                 << ", parameters in " << Text(executable.parameter_file) << "</p>\n";
        }
    }
}

/// "I/O, Inverting, Active-Low".
std::string kindOf(const Mdl& model) {
    std::string text(modelTypeText(model.type()));
    if (const auto* const row = rowOf(kPolarities, model.values->polarity, &EnumerationRow<Polarity>::code))
        text.append(" \u00b7 ").append(row->text);
    if (const auto* const row = rowOf(kEnableModes, model.values->enable, &EnumerationRow<EnableMode>::code))
        text.append(" \u00b7 ").append(row->text);
    return text;
}

void writeModel(const PartContext& part, const Mdl& model) {
    Html& html = part.html;
    html.begin("section", {{"class", Literal("model")}, Attribute::id(*part.anchors.find(&model))});
    writeName(part, model.name);
    part.html << "<div class=\"values\"><p class=\"sub\">" << Text(kindOf(model)) << "</p>";
    writeFindingLinks(part, model);
    writeParts(part, model);
    writeValues(part, model);
    writeSchedule(part, model.driver_schedule);
    writeModelTables(part, model);
    html << "</section>\n";
}

/// The tables that a model has, in short.
std::string tablesOf(const Mdl& model) {
    const MdlTables& tables = *model.tables;
    std::string text;
    const auto add = [&](bool given, std::string_view word) {
        if (given) text.append(text.empty() ? "" : ", ").append(word);
    };
    add(tables.pulldown.given, "pulldown");
    add(tables.pullup.given, "pullup");
    add(tables.gnd_clamp.given || tables.power_clamp.given, "clamps");
    add(tables.isso_pd.given || tables.isso_pu.given, "ISSO");
    const std::size_t waveforms = tables.rising_waveforms.size() + tables.falling_waveforms.size();
    if (waveforms > 0) {
        text.append(text.empty() ? "" : ", ");
        appendInteger(text, static_cast<std::int64_t>(waveforms));
        text.append(waveforms == 1 ? " waveform" : " waveforms");
    }
    const auto has_current = [](const Wvfrm& waveform) { return bool(waveform.composite_current); };
    add(std::ranges::any_of(tables.rising_waveforms, has_current) ||
            std::ranges::any_of(tables.falling_waveforms, has_current),
        "composite currents");
    return text;
}

/// The typical capacitance of a model, or those of its parts.
std::string capacitanceOf(const Mdl& model) {
    const CComp& given = *model.values;
    if (given.c_comp) return cellText(given.c_comp->typ(), "F");
    std::string text;
    for (const auto& row : kCapacitances) {
        const GivenRange& range = given.*row.member;
        if (!range) continue;
        constexpr std::string_view kLead = "C_comp_";
        text.append(text.empty() ? "" : ", ").append(row.name.substr(kLead.size())).append("\u00a0");
        text.append(cellText(range->typ(), "F"));
    }
    return text;
}

/// The typical voltage that supplies a model; without a voltage range that of the rail its pictures have.
std::string supplyOf(const Mdl& model) {
    for (const MdlRange which : {MdlRange::voltageRange, MdlRange::pullupReference, MdlRange::powerClampReference})
        if (const Rng* const supply = findRange(model, which)) return cellText(supply->typ(), "V");
    return {};
}

void writeIndex(const PartContext& part, const std::vector<const Mdl*>& models) {
    const bool has_findings = std::ranges::any_of(
        models, [&](const Mdl* model) { return !part.findings.about(part.anchors.find(model)).empty(); });
    const bool has_supply = std::ranges::any_of(models, [](const Mdl* model) { return !supplyOf(*model).empty(); });
    LongTable table(
        part.html, "List of models", models.size(),
        {"<th scope=\"col\" class=\"link\">Model</th>", "<th scope=\"col\">Type</th>",
         has_supply ? Markup("<th scope=\"col\">Supply</th>") : Markup(""), "<th scope=\"col\">C_comp</th>",
         "<th scope=\"col\">Tables</th>", has_findings ? Markup("<th scope=\"col\">Findings</th>") : Markup("")},
        true);
    std::vector<TableCell> cells;
    for (const Mdl* const model : models) {
        const Anchor* const place = part.anchors.find(model);
        const std::string supply = supplyOf(*model);
        const std::string capacitance = capacitanceOf(*model);
        const std::string tables = tablesOf(*model);
        const std::size_t count = part.findings.about(place).size();
        const std::string findings = count == 0 ? std::string() : std::to_string(count);
        cells.assign({{model->name, place}, {modelTypeText(model->type())}});
        if (has_supply) cells.push_back({supply});
        cells.push_back({capacitance});
        cells.push_back({tables});
        if (has_findings) cells.push_back({findings});
        table.row(cells);
    }
}

void writePiece(const PartContext& part, std::span<const Mdl* const> models, HtmlPiece& piece) {
    const PartContext apart{piece.html(), part.run, part.root, part.path, part.kind, part.anchors, part.findings};
    for (const Mdl* const model : models)
        writeModel(apart, *model);
    piece.html().flush();
}

/// Begins a piece in a thread of its own; where there is none, it is written when it is waited for.
std::future<void> beginPiece(const PartContext& part, std::span<const Mdl* const> models, HtmlPiece& piece) {
    const auto write = [&part, models, &piece] { writePiece(part, models, piece); };
    try {
        return std::async(std::launch::async, write);
    } catch (const std::system_error&) {
        return std::async(std::launch::deferred, write);
    }
}

/// Writes the models of a library in pieces, as many at a time as there are processors, and in their order.
void writeInPieces(const PartContext& part, std::span<const Mdl* const> models) {
    constexpr std::size_t kModelsOfPiece = 16;
    const std::size_t most = std::thread::hardware_concurrency();
    if (most < 2 || models.size() <= 2 * kModelsOfPiece) {
        for (const Mdl* const model : models)
            writeModel(part, *model);
        return;
    }
    const auto pieces = std::make_unique<HtmlPiece[]>(most); // used again and again, with their memory
    std::vector<std::future<void>> written(most);
    const auto begin_next = [&](std::size_t place) {
        const std::size_t size = std::min(kModelsOfPiece, models.size());
        if (size == 0) return;
        written[place] = beginPiece(part, models.first(size), pieces[place]);
        models = models.subspan(size);
    };
    for (std::size_t place = 0; place < most; ++place)
        begin_next(place);
    for (std::size_t place = 0; written[place].valid(); place = (place + 1) % most) {
        written[place].get();
        part.html.append(pieces[place]);
        pieces[place].clear();
        begin_next(place);
    }
}

} // namespace

void writeModels(const PartContext& part) {
    if (part.root.models.empty()) return;
    const std::vector<const Mdl*> models = inFileOrder(part.root.models);
    writeHeading(part, PageSection::models);
    if (models.size() > 1) writeIndex(part, models);
    writeInPieces(part, models);
}

} // namespace kestrel
