#pragma once

#include "base/on_demand.hpp"
#include "base/row_store.hpp"
#include "reader/rngp.hpp"

#include <cstdint>
#include <string_view>

namespace kestrel {

class LineReader;
struct Context;

/// One voltage-versus-time table with its test fixture: time (seconds), then typical, minimum and maximum voltage.
struct Wvfrm {
    std::uint32_t line = 0;            ///< at which it began
    GivenValue r_fixture;              ///< ohms
    GivenValue v_fixture;              ///< volts
    GivenValue v_fixture_min;          ///< volts
    GivenValue v_fixture_max;          ///< volts
    GivenValue c_fixture;              ///< farads
    GivenValue l_fixture;              ///< henries
    GivenValue r_dut;                  ///< ohms
    GivenValue l_dut;                  ///< henries
    GivenValue c_dut;                  ///< farads
    Rows<TableRow> rows;               ///< in file order
    OnDemand<Wvfrm> composite_current; ///< rows of amperes through the supply over the same time
};

/// How a V-t table is read and closed.
enum class WaveformForm : std::uint8_t {
    model,  ///< fixture lines, of which two are required; 100 or 1000 rows by version
    pulse,  ///< 100 rows; begins and ends at the same value
    golden, ///< no fixture lines
    current ///< no fixture lines; amperes in place of volts
};

/// The side of zero on which a table of offsets has to stay.
enum class OffsetLimit : std::uint8_t { none, notBelowZero, notAboveZero };

/// The labels of a V-t table in messages: of the keyword line and the close, and of the rows.
struct WaveformLabel {
    std::string_view open;
    std::string_view rows;
    WaveformForm form;
    OffsetLimit offsets = OffsetLimit::none;
};

inline constexpr WaveformLabel kRisingWaveform{"Rising Waveform", "Rising Waveform", WaveformForm::model};
inline constexpr WaveformLabel kFallingWaveform{"Falling Waveform", "Falling Waveform", WaveformForm::model};
inline constexpr WaveformLabel kCompositeCurrent{"Composite Current", "Composite Current", WaveformForm::current};
inline constexpr WaveformLabel kGndPulse{"GND Pulse", "GND Pulse Table", WaveformForm::pulse,
                                         OffsetLimit::notBelowZero};
inline constexpr WaveformLabel kPowerPulse{"POWER Pulse", "POWER Pulse Table", WaveformForm::pulse,
                                           OffsetLimit::notAboveZero};

/// Appends a waveform to its list at the keyword line and returns it; it moves when the next one is appended. Lists of
/// more than 100 are reported.
Wvfrm& openWvfrm(Context& context, Rows<Wvfrm>& list, const WaveformLabel& label, std::string_view text);

/// Opens a table that is no part of a list; the caller has dealt with an older one.
void openSingleWvfrm(Context& context, OnDemand<Wvfrm>& slot, const WaveformLabel& label, std::string_view text);

/// Reads a fixture line or a table row.
void wvfrmLine(Context& context, Wvfrm& waveform, const WaveformLabel& label, std::string_view text);

/// Reads the rows that follow as long as their lines are plain.
void wvfrmRows(Context& context, Wvfrm& waveform, const WaveformLabel& label, LineReader& reader);

/// Ends the open waveform: checks by its form that the fixture is there, that the table has two rows and values at its
/// ends, and that a pulse keeps to its side. All without line.
void closeWvfrm(Context& context, const Wvfrm& waveform, const WaveformLabel& label);

} // namespace kestrel
