// expect: noSuchMessageCode
#include "ibis/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorAtLine(diagnostics, 925); }
