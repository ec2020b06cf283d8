// expect: messageIsReserved
#include "ibis/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::error(diagnostics, 140); }
