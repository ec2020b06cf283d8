// expect: tooFewArgumentsForMessageText
#include "diagnostics/diagnostics.hpp"

void report(kestrel::Diagnostics& diagnostics) { kestrel::errorAtLine(diagnostics, 1912, "Date", "text"); }
