// expect: tooManyArgumentsForMessageText
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::warningAtLine(diagnostics, 921, 1); }
