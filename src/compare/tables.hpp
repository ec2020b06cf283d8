#pragma once

#include "compare/comparison.hpp"
#include "model/mdl.hpp"
#include "model/submdl.hpp"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

/// I-V tables: currents over the voltages that both have, and what each covers.
void compareCurve(Comparison& comparison, const FieldName& field, const Crv& was, const Crv& is);

/// A table over time, of volts or, for composite currents, amperes.
void compareTimes(Comparison& comparison, const FieldName& field, Unit unit, const Rows<TableRow>& was,
                  const Rows<TableRow>& is);

/// Waveforms of both files that belong together, in the order of NEW, and those that only one has.
struct WaveformPairs {
    std::vector<std::pair<const Wvfrm*, const Wvfrm*>> pairs;
    std::vector<const Wvfrm*> gone;
    std::vector<const Wvfrm*> fresh;
};

/// Pairs the waveforms of an edge by their fixtures, then by what is most alike. `points` is room for tables.
[[nodiscard]] WaveformPairs matchWaveforms(std::array<PointRoom, 2>& points, const Rows<Wvfrm>& was,
                                           const Rows<Wvfrm>& is);

/// How changes call a waveform: by its keyword and its fixture, as OLD has it.
[[nodiscard]] std::string waveformField(std::string_view keyword, const Wvfrm& waveform);

/// Waveforms of an edge, matched by their fixtures.
void compareWaveforms(Comparison& comparison, std::string_view keyword, const Rows<Wvfrm>& was, const Rows<Wvfrm>& is);

/// One waveform against another, its fixture and its composite current included.
void compareWaveform(Comparison& comparison, std::string_view keyword, const Wvfrm& was, const Wvfrm& is);

/// A waveform that a record has once at most.
void compareOnlyWaveform(Comparison& comparison, std::string_view keyword, const OnDemand<Wvfrm>& was,
                         const OnDemand<Wvfrm>& is);

/// The rates of a ramp, by their slew; the step and the time of a rate where the slew does not say it.
void compareRamp(Comparison& comparison, const OnDemand<Ramp>& was, const OnDemand<Ramp>& is);

/// The tables that models and submodels have alike.
void compareTables(Comparison& comparison, const Tables& was, const Tables& is);

} // namespace kestrel
