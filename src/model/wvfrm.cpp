#include "model/wvfrm.hpp"

#include "ibis/run.hpp"
#include "model/table_ends.hpp"
#include "reader/line_form.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

constexpr std::size_t kMaxWaveforms = 100;

constexpr ValueLineMessages kFixtureMessages{2015, 2003, 2017, ScaleMessage(2016)};
constexpr TableEndsMessages kEndsMessages{2005, 2006};
constexpr TableEndsMessages kGoldenEndsMessages{2329, 2330};

/// A line that gives a value of the test fixture or of the device under test.
struct FixtureLine {
    std::string_view name;
    std::optional<double> Wvfrm::*value;
    bool required; ///< in a model's waveform
};
constexpr auto kFixtureLines = std::to_array({
    FixtureLine{"R_fixture", &Wvfrm::r_fixture, true},
    FixtureLine{"V_fixture", &Wvfrm::v_fixture, true},
    FixtureLine{"V_fixture_min", &Wvfrm::v_fixture_min, false},
    FixtureLine{"V_fixture_max", &Wvfrm::v_fixture_max, false},
    FixtureLine{"C_fixture", &Wvfrm::c_fixture, false},
    FixtureLine{"L_fixture", &Wvfrm::l_fixture, false},
    FixtureLine{"R_dut", &Wvfrm::r_dut, false},
    FixtureLine{"L_dut", &Wvfrm::l_dut, false},
    FixtureLine{"C_dut", &Wvfrm::c_dut, false},
});

/// Deals with what follows the keyword and notes where the table begins.
void beginTable(Run& run, const WaveformLabel& label, std::string_view text) {
    expectNoText(run, text, label.open, label.form == WaveformForm::current ? CountMessage(1703) : CountMessage(2003));
    run.mdl.wvfrm.begin_line = run.parse.line;
}

std::size_t rowLimit(IbisVersion version, WaveformForm form) {
    return version >= IbisVersion::v4 && form != WaveformForm::pulse ? 1000 : 100;
}

/// Reads a row of time and values to the end of `rows`.
void timeRow(Run& run, std::vector<TableRow>& rows, std::string_view text, const FirstCell& first,
             std::string_view label, std::size_t limit) {
    const TableRow row = readRow(run, text, label, "Time", first);
    const std::size_t count = appendRow(run.diagnostics, rows, row);
    if (count > limit) errorAtLine(run.diagnostics, 2018, static_cast<std::int32_t>(limit), label);
    if (row.state[kFirst] == CellState::na) errorAtLine(run.diagnostics, 2019, "Time");
    if (count < 2 || !row.isNumber(kFirst)) return;
    const TableRow& previous = rows[count - 2];
    if (previous.isNumber(kFirst) && row.value[kFirst] <= previous.value[kFirst]) errorAtLine(run.diagnostics, 2020);
}

void fixtureLine(Run& run, Wvfrm& waveform, const FixtureLine& line, std::string_view text, std::string_view label) {
    if (!waveform.rows.empty()) errorAtLine(run.diagnostics, 2013, line.name);
    std::optional<double>& value = waveform.*line.value;
    if (value) {
        errorAtLine(run.diagnostics, 2014, label, line.name);
        return;
    }
    readValueLine(run, text, kFixtureMessages, {label, label, line.name}, value);
}

/// The fixture line that begins with `item`, or null. Rows, of which there are many, are told by their first character.
const FixtureLine* findFixtureLine(std::string_view item) {
    if (item.empty() || !isAlpha(item.front())) return nullptr;
    const auto* const line = std::ranges::find(kFixtureLines, item, &FixtureLine::name);
    return line == kFixtureLines.end() ? nullptr : line;
}

void checkEnds(Run& run, const Wvfrm& waveform, const WaveformLabel& label) {
    const std::uint32_t begin_line = run.mdl.wvfrm.begin_line;
    if (label.form != WaveformForm::current) {
        const TableEndsMessages& messages = label.form == WaveformForm::golden ? kGoldenEndsMessages : kEndsMessages;
        checkTableEnds(run.diagnostics, waveform.rows, messages, label.open, begin_line);
        return;
    }
    const auto line = static_cast<std::int32_t>(begin_line);
    if (waveform.rows.size() < 2) error(run.diagnostics, 1705, line);
    for (const EndFault& fault : findEndFaults(waveform.rows)) {
        error(run.diagnostics, 1706, fault.row, columnWord(fault.column), line);
    }
}

/// The value at which a pulse begins is that at which it ends.
void checkSameEnds(Run& run, const Wvfrm& waveform, std::string_view label, std::int32_t line) {
    if (waveform.rows.empty()) return;
    const TableRow& first = waveform.rows.front();
    const TableRow& last = waveform.rows.back();
    for (const Column column : kValueColumns) {
        if (!first.isNumber(column) || !last.isNumber(column) || first.value[column] == last.value[column]) continue;
        error(run.diagnostics, 2007, columnWord(column), label, line);
    }
}

/// A pulse moves its reference to one side only.
void checkOffsets(Run& run, const Wvfrm& waveform, const WaveformLabel& label, std::int32_t line) {
    if (label.offsets == OffsetLimit::none) return;
    using OffsetMessage = CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::integer>;
    const bool below = label.offsets == OffsetLimit::notBelowZero;
    const OffsetMessage message = below ? OffsetMessage(2008) : OffsetMessage(2009);
    for (const Column column : kValueColumns) {
        const bool found = std::ranges::any_of(waveform.rows, [&](const TableRow& row) {
            return row.isNumber(column) && (below ? row.value[column] < 0.0 : row.value[column] > 0.0);
        });
        if (!found) continue;
        warning(run.diagnostics, message, label.open, columnWord(column), line);
    }
}

} // namespace

Wvfrm& openWvfrm(Run& run, std::vector<std::unique_ptr<Wvfrm>>& list, const WaveformLabel& label,
                 std::string_view text) {
    Wvfrm& waveform = *list.emplace_back(std::make_unique<Wvfrm>());
    if (list.size() > kMaxWaveforms) errorAtLine(run.diagnostics, 2000, label.open);
    beginTable(run, label, text);
    return waveform;
}

void openSingleWvfrm(Run& run, std::unique_ptr<Wvfrm>& slot, const WaveformLabel& label, std::string_view text) {
    slot = std::make_unique<Wvfrm>();
    beginTable(run, label, text);
}

void wvfrmLine(Run& run, Wvfrm& waveform, const WaveformLabel& label, std::string_view text) {
    std::string_view rest = text;
    const std::string_view first = takeItem(run, rest, '=');
    if (const FixtureLine* line = findFixtureLine(first)) {
        switch (label.form) {
        case WaveformForm::golden: errorAtLine(run.diagnostics, 2010); break;
        case WaveformForm::current: errorAtLine(run.diagnostics, 1704, line->name); break;
        case WaveformForm::model:
        case WaveformForm::pulse: fixtureLine(run, waveform, *line, text, label.rows); break;
        }
        return;
    }
    const FirstCell cell = readFirstCell(first);
    if (!cell.beginsRow()) {
        errorAtLine(run.diagnostics, 2011, label.rows);
        return;
    }
    timeRow(run, waveform.rows, text, cell, label.rows, rowLimit(run.parse.version, label.form));
}

void closeWvfrm(Run& run, const Wvfrm& waveform, const WaveformLabel& label) {
    const std::uint32_t begin_line = run.mdl.wvfrm.begin_line;
    const auto line = static_cast<std::int32_t>(begin_line);
    if (label.form == WaveformForm::model) {
        for (const FixtureLine& fixture : kFixtureLines) {
            if (!fixture.required || (waveform.*fixture.value).has_value()) continue;
            error(run.diagnostics, 2004, fixture.name, label.open, line);
        }
    }
    checkEnds(run, waveform, label);
    if (label.form == WaveformForm::pulse) {
        checkSameEnds(run, waveform, label.open, line);
        checkOffsets(run, waveform, label, line);
    }
    run.mdl.wvfrm = WvfrmState{};
}

} // namespace kestrel
