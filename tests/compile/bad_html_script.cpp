// expect: is not a constant expression
#include "report/html.hpp"

void write(kestrel::Html& html) { html << "<script>alert(1)</script>"; }
