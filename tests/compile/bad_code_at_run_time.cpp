// expect: is not a constant expression
#include "ibis/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics, kestrel::MessageCode code) { kestrel::errorAtLine(diagnostics, code); }
