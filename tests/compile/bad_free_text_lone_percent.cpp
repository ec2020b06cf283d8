// expect: unknownConversionInMessageText
#include "ibis/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorText(diagnostics, "100 %"); }
