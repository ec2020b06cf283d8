// expect: is not a constant expression
#include "report/html.hpp"

void write(kestrel::Html& html, std::string_view name) {
    html.begin("a", {{kestrel::TextAttribute("href"), kestrel::Text(name)}});
}
