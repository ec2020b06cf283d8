#pragma once

namespace kestrel {

struct Context;
struct Mdl;

/// True when some waveform of the model has a "[Composite Current]".
[[nodiscard]] bool hasCompositeCurrent(const Mdl& model);

/// Checks a model once the file is read: composite currents where it does not drive, its ramp against its waveforms,
/// the time points of its composite currents. No line.
void checkCompositeCurrents(Context& context, const Mdl& model);

} // namespace kestrel
