#pragma once

namespace kestrel {

struct Context;

/// Checks the parameter file whose text the reader has collected: its tree, sections, parameters and the reserved ones
/// among them. Reports 4620 to 4662, at the lines of the parameter file; the line counter is left at the last of them.
void checkAmi(Context& context);

} // namespace kestrel
