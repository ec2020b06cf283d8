#include "ibis/run.hpp"
#include "main/dump.hpp"

#include <array>

namespace kestrel {

namespace {

using Text = std::string;

std::string_view polarityName(Polarity polarity) {
    constexpr std::array<std::string_view, 4> kNames{"Polarity not set", "No polarity", "Non inverting", "Inverting"};
    return kNames[static_cast<std::size_t>(polarity)];
}

std::string_view enableName(EnableMode enable) {
    constexpr std::array<std::string_view, 4> kNames{"Enable not set", "No enable", "Active high", "Active low"};
    return kNames[static_cast<std::size_t>(enable)];
}

/// Types whose report shows the edge rates and the waveform fixtures; for the differential types it has no such lines.
constexpr ModelTypeSet kEdgeTypes{ModelType::output,     ModelType::io,          ModelType::threeState,
                                  ModelType::openDrain,  ModelType::ioOpenDrain, ModelType::openSink,
                                  ModelType::ioOpenSink, ModelType::openSource,  ModelType::ioOpenSource,
                                  ModelType::outputEcl,  ModelType::ioEcl,       ModelType::threeStateEcl};

/// "0.8V": a number and its unit.
void appendQuantity(Text& text, double value, std::string_view unit) {
    appendGeneral(text, value);
    text.append(unit);
}

void appendValue(Text& text, std::string_view label, GivenValue value, std::string_view unit) {
    text.append(label);
    if (value) {
        appendQuantity(text, *value, unit);
    } else {
        text.push_back('-');
    }
    text.push_back('\n');
}

/// Behind each of three corners: two are parted from what follows, the last ends the line.
constexpr std::array<std::string_view, kCornerCount> kBehindCorner{"; ", "; ", "\n"};

void appendRange(Text& text, std::string_view label, const Rng* range, std::string_view unit) {
    text.append(label);
    if (range == nullptr) {
        text.append("-\n");
        return;
    }
    for (const Corner corner : kCorners) {
        if (const Cell& cell = (*range)[corner]; cell.isNumber()) {
            appendQuantity(text, cell.value(), unit);
        } else {
            text.push_back('-');
        }
        text.append(kBehindCorner[placeOf(corner)]);
    }
}

void appendRate(Text& text, std::string_view label, const std::optional<RampRate>& rate) {
    text.append(label);
    for (const Corner corner : kCorners) {
        if (rate && (*rate)[corner].state() == CellState::number) {
            appendGeneral(text, (*rate)[corner].dv.value());
            text.push_back('/');
            appendGeneral(text, (*rate)[corner].dt);
        } else {
            text.push_back('-');
        }
        text.append(kBehindCorner[placeOf(corner)]);
    }
}

/// The fixture of a waveform; `end` closes the voltages.
void appendFixture(Text& text, const Wvfrm& waveform, std::string_view end) {
    if (waveform.r_fixture) {
        text.append("R_fixture=");
        appendQuantity(text, *waveform.r_fixture, "Ohms; ");
    }
    if (!waveform.v_fixture) return;
    text.append("V_fixture=");
    appendQuantity(text, *waveform.v_fixture, "V");
    for (const GivenValue corner : {waveform.v_fixture_min, waveform.v_fixture_max}) {
        if (!corner) continue;
        text.append(", ");
        appendQuantity(text, *corner, "V");
    }
    text.append(end);
}

using Waveforms = Rows<Wvfrm>;

void appendWaveformLines(Text& text, std::string_view label, const Waveforms& waveforms) {
    std::int64_t number = 0;
    for (const Wvfrm& waveform : waveforms) {
        text.append(label);
        appendInteger(text, ++number);
        text.append(": ");
        appendFixture(text, waveform, "; ");
        text.push_back('\n');
    }
}

void appendSummary(Text& text, const Mdl& model) {
    const MdlValues& values = *model.values;
    const MdlTables& tables = *model.tables;
    text.append("         Model: ").append(model.name);
    text.append("\n          Type: ").append(reportedType(model.type()));
    text.append("\n      Polarity: ").append(polarityName(values.polarity)).append("\n");
    if (kInputTypes.has(model.type())) {
        text.append("        Enable: ").append(enableName(values.enable)).append("\n");
        appendValue(text, "          Vinl: ", values.vinl, "V");
        appendValue(text, "          Vinh: ", values.vinh, "V");
    }
    appendRange(text, "        C_comp: ", values.c_comp ? &*values.c_comp : nullptr, "F");
    appendRange(text, " Voltage Range: ", findRange(model, MdlRange::voltageRange), "V");
    appendValue(text, "         Vmeas: ", values.vmeas, "V");
    appendValue(text, "          Cref: ", values.cref, "F");
    appendValue(text, "          Rref: ", values.rref, "Ohms");
    appendValue(text, "          Vref: ", values.vref, "V");
    text.append("  Static Char.: ");
    text.append(tables.gnd_clamp ? "GND_Clamp; " : "-; ").append(tables.power_clamp ? "POWER_Clamp; " : "-; ");
    text.append(tables.pullup ? "Pullup; " : "-; ").append(tables.pulldown ? "Pulldown\n" : "-\n");
    if (kEdgeTypes.has(model.type())) {
        appendRate(text, "  Rising dV/dt: ", tables.ramp->dv_dt_r);
        appendRate(text, " Falling dV/dt: ", tables.ramp->dv_dt_f);
        appendWaveformLines(text, " Rising Wvf. ", tables.rising_waveforms);
        // No leading blank here, unlike the rising label.
        appendWaveformLines(text, "Falling Wvf. ", tables.falling_waveforms);
    }
    text.push_back('\n');
}

/// The table part of the report: where it is written and what parts the columns.
struct TableDump {
    Run& run;
    char delimiter;
    Text text;

    /// The head of the columns: "V", ",A (typ)", ... with the delimiter between.
    void head(std::string_view first, char unit) {
        text.append(first);
        for (const std::string_view column : {"typ", "min", "max"}) {
            text.push_back(delimiter);
            text.push_back(unit);
            text.append(" (").append(column).push_back(')');
        }
        text.push_back('\n');
    }

    /// The rows and an empty line; a cell without a number stays empty.
    void rows(std::span<const TableRow> table) {
        for (const TableRow& row : table) {
            for (std::size_t i = 0; i < kColumns; ++i) {
                if (const Cell cell = row.cells[i]; cell.isNumber()) appendGeneral(text, cell.value());
                text.push_back(i + 1 < kColumns ? delimiter : '\n');
            }
            pass();
        }
        text.push_back('\n');
    }

    void curve(std::string_view title, const Crv& table) {
        if (!table) return;
        text.append(title);
        head("V", 'A');
        rows(table.rows);
    }

    void waveforms(std::string_view title, const Waveforms& list) {
        if (list.empty()) return;
        text.append(title);
        for (const Wvfrm& waveform : list) {
            appendFixture(text, waveform, ";");
            head("\ns", 'V');
            rows(waveform.rows);
        }
    }

    /// Keeps the pending text small, however long a table is.
    void pass() {
        constexpr std::size_t kPiece = 16384;
        if (text.size() < kPiece) return;
        run.out.write(text);
        text.clear();
    }
};

void dumpTables(Run& run, const Mdl& model, char delimiter) {
    TableDump dump{run, delimiter, {}};
    dump.curve("GND_Clamp curve:\n", model.tables->gnd_clamp);
    dump.curve("POWER_Clamp curve:\n", model.tables->power_clamp);
    dump.curve("Pullup curve:\n", model.tables->pullup);
    dump.curve("Pulldown curve:\n", model.tables->pulldown);
    dump.waveforms("Rising waveforms:\n", model.tables->rising_waveforms);
    dump.waveforms("Falling waveforms:\n", model.tables->falling_waveforms);
    run.out.write(dump.text);
}

/// Reports the newest model of this name.
bool reportModel(Run& run, const Ibis& root, std::string_view name, bool tables, char delimiter) {
    const Mdl* model = root.models.find(name);
    Text text;
    if (model == nullptr) {
        run.out.write(text.append("Unable to find model ").append(name).append("!\n"));
        return false;
    }
    appendSummary(text, *model);
    run.out.write(text);
    if (tables) dumpTables(run, *model, delimiter);
    return true;
}

} // namespace

bool reportModels(Run& run, std::string_view selection, bool tables, char delimiter) {
    if (run.roots.empty()) return true;
    const Ibis& root = currentRoot(run);
    if (!selection.empty()) {
        while (const std::optional<std::string_view> name = takePiece(selection)) {
            if (!reportModel(run, root, *name, tables, delimiter)) return false;
        }
        return true;
    }
    for (const Mdl& model : root.models.newestFirst()) {
        if (!reportModel(run, root, model.name, tables, delimiter)) return false;
    }
    return true;
}

} // namespace kestrel
