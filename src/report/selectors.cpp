#include "ibis/run.hpp"
#include "report/sections.hpp"

namespace kestrel {

void writeSelectors(const PartContext& part) {
    if (part.root.model_selectors.empty()) return;
    Html& html = part.html;
    writeHeading(part, PageSection::selectors);
    for (const MSel* const selector : inFileOrder(part.root.model_selectors)) {
        html.begin("section", {{"class", Literal("selector")}, Attribute::id(*part.anchors.find(selector))});
        writeName(part, selector->name);
        writeFindingLinks(part, *selector);
        if (!selector->entries.empty()) html << "<ol>";
        for (const MSelEntry& entry : selector->entries) {
            html << "<li>";
            writeLink(html, part.anchors.find(part.root.models.find(entry.model_name)), entry.model_name);
            if (!entry.description.empty()) html << " <small>" << Text(entry.description) << "</small>";
            html << "</li>\n";
        }
        if (!selector->entries.empty()) html << "</ol>";
        html << "</section>\n";
    }
}

} // namespace kestrel
