// expect: is not a constant expression
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics, kestrel::MessageCode code) { kestrel::errorAtLine(diagnostics, code); }
