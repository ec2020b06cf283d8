// expect: unknownConversionInMessageText
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::warningText(diagnostics, "%f", 1.0); }
