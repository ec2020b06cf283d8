#pragma once

namespace kestrel {

struct Context;
struct SubMdl;

/// Checks a submodel that has ended, without line: what its type requires and forbids (2424 to 2440), then its trigger
/// voltages against the ends of its waveforms (warnings 2441 to 2444).
void checkSubMdl(Context& context, const SubMdl& submodel);

} // namespace kestrel
