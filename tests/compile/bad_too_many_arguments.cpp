// expect: tooManyArgumentsForMessageText
#include "ibis/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::warningAtLine(diagnostics, 921, 1); }
