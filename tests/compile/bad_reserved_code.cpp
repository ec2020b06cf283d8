// expect: messageIsReserved
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::error(diagnostics, 140); }
