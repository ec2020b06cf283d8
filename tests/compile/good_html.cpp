// What the pages of the report are made of; the bad_html files beside this one are refused for their one fault.
#include "report/html.hpp"

#include <string>
#include <string_view>

void write(kestrel::Html& html, const std::string& name, std::string_view view, std::size_t count) {
    using namespace kestrel;
    const Anchor anchor{'m', 1, 2};
    html << "<p class=\"sub\">" << Text(name) << " " << Text(view) << count << "</p>";
    html.begin("a", {Attribute::href(anchor), {"class", Literal("x")}, {TextAttribute("title"), Text(name)}});
    html << "</a>";
    html.begin("tr", {Attribute::id(anchor), {TextAttribute("data-rows"), 3}});
}
