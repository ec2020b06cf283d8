// expect: wrongArgumentTypeForMessageText
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorAtLine(diagnostics, 916, 1.5); }
