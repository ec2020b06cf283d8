#include "model/wvfrm.hpp"

#include "base/text.hpp"
#include "model/table_ends.hpp"
#include "reader/context.hpp"
#include "reader/plain_rows.hpp"
#include "reader/subparameters.hpp"

namespace kestrel {

namespace {

constexpr std::size_t kMaxWaveforms = 100;

constexpr TableEndsMessages kEndsMessages{2005, 2006};
constexpr TableEndsMessages kGoldenEndsMessages{2329, 2330};

/// Values of the test fixture and of the device under test.
constexpr auto kFixture = subparameters<Subparameter<Wvfrm>>(
    {
        {"R_fixture", &Wvfrm::r_fixture},
        {"V_fixture", &Wvfrm::v_fixture},
        {"V_fixture_min", &Wvfrm::v_fixture_min},
        {"V_fixture_max", &Wvfrm::v_fixture_max},
        {"C_fixture", &Wvfrm::c_fixture},
        {"L_fixture", &Wvfrm::l_fixture},
        {"R_dut", &Wvfrm::r_dut},
        {"L_dut", &Wvfrm::l_dut},
        {"C_dut", &Wvfrm::c_dut},
    },
    {
        .repeated = 2014,
        .value = ValueLineMessages{2015, 2003, 2017, ScaleMessage(2016)},
        .about_owner = true,
    });

/// Deals with what follows the keyword and notes where the table begins.
void beginTable(Context& context, Wvfrm& waveform, const WaveformLabel& label, std::string_view text) {
    expectNoText(context, text, label.open,
                 label.form == WaveformForm::current ? CountMessage(1703) : CountMessage(2003));
    waveform.line = context.parse.line;
}

std::size_t rowLimit(IbisVersion version, WaveformForm form) {
    return version >= IbisVersion::v4 && form != WaveformForm::pulse ? 1000 : 100;
}

/// Adds a row of time and values to the end of `rows`.
void addRow(Context& context, Rows<TableRow>& rows, const TableRow& row, std::string_view label, std::size_t limit) {
    context.rows.add(rows, row);
    const std::size_t count = rows.size();
    if (count > limit) errorAtLine(context.diagnostics, 2018, static_cast<std::int32_t>(limit), label);
    if (row[kFirst].isNa()) errorAtLine(context.diagnostics, 2019, "Time");
    if (count < 2 || !row[kFirst].isNumber()) return;
    const TableRow& previous = rows[count - 2];
    if (previous[kFirst].isNumber() && row[kFirst].value() <= previous[kFirst].value()) {
        errorAtLine(context.diagnostics, 2020);
    }
}

/// The fixture line that begins with `item`, or null. Rows, of which there are many, are known by their first
/// character.
const Subparameter<Wvfrm>* findFixtureLine(std::string_view item) {
    return !item.empty() && isAlpha(item.front()) ? kFixture.find(item) : nullptr;
}

void checkEnds(Context& context, const Wvfrm& waveform, const WaveformLabel& label) {
    if (label.form != WaveformForm::current) {
        const TableEndsMessages& messages = label.form == WaveformForm::golden ? kGoldenEndsMessages : kEndsMessages;
        checkTableEnds(context.diagnostics, waveform.rows, messages, label.open, waveform.line);
        return;
    }
    const auto line = static_cast<std::int32_t>(waveform.line);
    if (waveform.rows.size() < 2) error(context.diagnostics, 1705, line);
    for (const EndFault& fault : findEndFaults(waveform.rows)) {
        error(context.diagnostics, 1706, fault.row, columnWord(fault.column), line);
    }
}

/// The value at which a pulse begins is that at which it ends.
void checkSameEnds(Context& context, const Wvfrm& waveform, std::string_view label, std::int32_t line) {
    if (waveform.rows.empty()) return;
    const TableRow& first = waveform.rows.front();
    const TableRow& last = waveform.rows.back();
    for (const Column column : kValueColumns) {
        if (!first[column].isNumber() || !last[column].isNumber() || first[column].value() == last[column].value())
            continue;
        error(context.diagnostics, 2007, columnWord(column), label, line);
    }
}

/// A pulse moves its reference to one side only.
void checkOffsets(Context& context, const Wvfrm& waveform, const WaveformLabel& label, std::int32_t line) {
    if (label.offsets == OffsetLimit::none) return;
    using OffsetMessage = CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::integer>;
    const bool below = label.offsets == OffsetLimit::notBelowZero;
    const OffsetMessage message = below ? OffsetMessage(2008) : OffsetMessage(2009);
    for (const Column column : kValueColumns) {
        const bool found = std::ranges::any_of(waveform.rows, [&](const TableRow& row) {
            return row[column].isNumber() && (below ? row[column].value() < 0.0 : row[column].value() > 0.0);
        });
        if (!found) continue;
        warning(context.diagnostics, message, label.open, columnWord(column), line);
    }
}

} // namespace

Wvfrm& openWvfrm(Context& context, Rows<Wvfrm>& list, const WaveformLabel& label, std::string_view text) {
    Wvfrm& waveform = context.rows.add(list, {});
    if (list.size() > kMaxWaveforms) errorAtLine(context.diagnostics, 2000, label.open);
    beginTable(context, waveform, label, text);
    return waveform;
}

void openSingleWvfrm(Context& context, OnDemand<Wvfrm>& slot, const WaveformLabel& label, std::string_view text) {
    beginTable(context, slot.madeAnew(context.rows), label, text);
}

void wvfrmLine(Context& context, Wvfrm& waveform, const WaveformLabel& label, std::string_view text) {
    const std::size_t limit = rowLimit(context.parse.version, label.form);
    TableRow row;
    if (readPlainRow(context, text, row)) {
        addRow(context, waveform.rows, row, label.rows, limit);
        return;
    }
    std::string_view rest = text;
    const std::string_view first = takeItem(context, rest, '=');
    if (const auto* const line = findFixtureLine(first)) {
        switch (label.form) {
        case WaveformForm::golden: errorAtLine(context.diagnostics, 2010); break;
        case WaveformForm::current: errorAtLine(context.diagnostics, 1704, line->name); break;
        case WaveformForm::model:
        case WaveformForm::pulse:
            if (!waveform.rows.empty()) errorAtLine(context.diagnostics, 2013, line->name);
            readSubparameter(context, kFixture, *line, waveform, text, rest, label.rows);
            break;
        }
        return;
    }
    const FirstCell cell = readFirstCell(first);
    if (!cell.beginsRow()) {
        errorAtLine(context.diagnostics, 2011, label.rows);
        return;
    }
    row = readRow(context, text, label.rows, "Time", cell);
    addRow(context, waveform.rows, row, label.rows, limit);
}

void wvfrmRows(Context& context, Wvfrm& waveform, const WaveformLabel& label, LineReader& reader) {
    const std::size_t limit = rowLimit(context.parse.version, label.form);
    takePlainRows(context, reader,
                  [&](const TableRow& row) { addRow(context, waveform.rows, row, label.rows, limit); });
}

void closeWvfrm(Context& context, const Wvfrm& waveform, const WaveformLabel& label) {
    const auto line = static_cast<std::int32_t>(waveform.line);
    if (label.form == WaveformForm::model) {
        for (const auto required : {&Wvfrm::r_fixture, &Wvfrm::v_fixture}) {
            if (waveform.*required) continue;
            error(context.diagnostics, 2004, kFixture.nameOf(required), label.open, line);
        }
    }
    checkEnds(context, waveform, label);
    if (label.form == WaveformForm::pulse) {
        checkSameEnds(context, waveform, label.open, line);
        checkOffsets(context, waveform, label, line);
    }
}

} // namespace kestrel
