#pragma once

namespace kestrel {

struct Context;
struct SubMdl;

/// Checks a submodel that has ended, without line: what its type requires and forbids, then its trigger voltages
/// against the ends of its waveforms.
void checkSubMdl(Context& context, const SubMdl& submodel);

} // namespace kestrel
