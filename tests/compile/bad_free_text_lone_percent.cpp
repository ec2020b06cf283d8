// expect: unknownConversionInMessageText
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorText(diagnostics, "100 %"); }
