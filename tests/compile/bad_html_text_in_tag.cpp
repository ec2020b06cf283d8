// expect: is not a constant expression
#include "report/html.hpp"

void write(kestrel::Html& html, std::string_view name) { html << "<p class=\"" << kestrel::Text(name) << "\">"; }
