// expect: not an argument of a message
#include "diagnostics/diagnostics.hpp"

struct Name {};
void report(kestrel::Diagnostics& diagnostics, Name name) { kestrel::errorAtLine(diagnostics, 916, name); }
