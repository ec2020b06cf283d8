// expect: a message takes no bool
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorAtLine(diagnostics, 905, true); }
