// expect: no match for
#include "report/html.hpp"

void write(kestrel::Html& html, std::string_view name) { html << name; }
