// expect: noSuchMessageCode
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorAtLine(diagnostics, 925); }
