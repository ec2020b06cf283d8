#pragma once

#include "base/on_demand.hpp"
#include "model/crv.hpp"
#include "model/ramp.hpp"
#include "model/wvfrm.hpp"
#include "reader/sections.hpp"

/// The tables that models and submodels have alike, and the sections that read them.
namespace kestrel {

/// The I-V tables, the ramp and the waveforms of a model or submodel.
struct Tables {
    Crv pulldown;
    Crv pullup;
    Crv gnd_clamp;
    Crv power_clamp;
    OnDemand<Ramp> ramp;
    Rows<Wvfrm> rising_waveforms;  ///< in file order
    Rows<Wvfrm> falling_waveforms; ///< in file order
};

/// The state of a module that reads records with tables, which each record keeps in `tables` and `curveOwner` names.
template <class Record> struct TablesState : RecordState<Record> {
    CrvState crv;                   ///< of the open I-V table
    Wvfrm* last_waveform = nullptr; ///< of the record
};

template <class State, auto Slot, CurveKind Kind> constexpr Section<State> curveSection(KeywordCode key) {
    using Record = typename State::Record;
    constexpr auto kOpen = [](Context& context, State& state, Record& record, std::string_view text) {
        openCrv(context, state.crv, record.tables.made(context.rows).*Slot, Kind, text);
    };
    constexpr auto kLine = [](Context& context, State& state, Record& record, std::string_view text) {
        crvLine(context, state.crv, record.tables.made(context.rows).*Slot, Kind, text);
    };
    constexpr auto kClose = [](Context& context, const State& state, const Record& record) {
        closeCrv(context, state.crv, (*record.tables).*Slot, Kind, curveOwner(record));
    };
    constexpr auto kRows = [](Context& context, State& state, Record& record, LineReader& reader) {
        crvRows(context, state.crv, record.tables.made(context.rows).*Slot, Kind, reader);
    };
    return tableSection<State, kOpen, kLine, kClose, kRows>(key);
}

template <class State> constexpr Section<State> rampSection(KeywordCode key) {
    using Record = typename State::Record;
    constexpr auto kOpen = [](Context& context, Record& record, std::string_view text) {
        openRamp(context, record.tables.made(context.rows).ramp, text);
    };
    constexpr auto kLine = [](Context& context, Record& record, std::string_view text) {
        rampLine(context, record.tables.made(context.rows).ramp.made(context.rows), text, record.name);
    };
    constexpr auto kClose = [](Context& context, const Record& record) { closeRamp(context, *record.tables->ramp); };
    return section<State, kOpen, kLine, kClose>(key);
}

template <class State, auto List, const WaveformLabel& Label>
constexpr Section<State> waveformSection(KeywordCode key) {
    using Record = typename State::Record;
    constexpr auto kOpen = [](Context& context, State& state, Record& record, std::string_view text) {
        state.last_waveform = &openWvfrm(context, record.tables.made(context.rows).*List, Label, text);
    };
    constexpr auto kLine = [](Context& context, State& state, std::string_view text) {
        wvfrmLine(context, *state.last_waveform, Label, text);
    };
    constexpr auto kClose = [](Context& context, const State& state) {
        closeWvfrm(context, *state.last_waveform, Label);
    };
    constexpr auto kRows = [](Context& context, State& state, LineReader& reader) {
        wvfrmRows(context, *state.last_waveform, Label, reader);
    };
    return tableSection<State, kOpen, kLine, kClose, kRows>(key);
}

} // namespace kestrel
