// expect: cannot convert
#include "report/html.hpp"

void write(kestrel::Html& html, std::string_view name) { html.begin("p", {{"class", name}}); }
