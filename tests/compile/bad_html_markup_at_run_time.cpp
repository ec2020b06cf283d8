// expect: is not a constant expression
#include "report/html.hpp"

void write(kestrel::Html& html, const char* name) { html << kestrel::Markup(name); }
