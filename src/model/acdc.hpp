#pragma once

#include <string_view>

namespace kestrel {

struct Run;
struct Mdl;

/// Opens a "[Composite Current]" at its keyword line for the last waveform of the model being read. Reports 1701 (no
/// waveform; its rows are then passed over), 1702 (the old one is replaced) and 1703.
void openCompositeCurrent(Run& run, std::string_view text);

/// Reads a row of it. Reports 1704, 2011, 2018 to 2020 and what the row reader reports.
void compositeCurrentLine(Run& run, std::string_view text);

/// Ends it: 1705 or 1706, without line.
void closeCompositeCurrent(Run& run);

/// Checks "[ISSO PD]" and "[ISSO PU]" of a model that has been read (1501 to 1503, no line).
void checkIsso(Run& run, const Mdl& model);

/// Once the file is read, checks all models: composite currents in models that do not drive (1707), ramps against
/// waveforms (caution 1709), time points of composite currents (caution 2021). No line.
void checkCompositeCurrents(Run& run);

/// Once the file is read: components without "[Pin Mapping]" whose models have composite currents (caution 1708, no
/// line).
void checkComponentCurrents(Run& run);

} // namespace kestrel
