// expect: tooFewArgumentsForMessageText
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::noteText(diagnostics, "%s and %s", "one"); }
