// expect: unknownConversionInMessageText
#include "ibis/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::warningText(diagnostics, "%f", 1.0); }
