// expect: a message takes no pointer
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics, const char* name) { kestrel::errorAtLine(diagnostics, 916, name); }
