#include "ibis/run.hpp"
#include "report/model_pictures.hpp"
#include "report/sections.hpp"

namespace kestrel {

namespace {

std::string_view typeText(SubmodelType type) {
    switch (type) {
    case SubmodelType::dynamicClamp: return "Dynamic_clamp";
    case SubmodelType::busHold: return "Bus_hold";
    case SubmodelType::fallBack: return "Fall_back";
    case SubmodelType::notGiven:
    case SubmodelType::noType: break;
    }
    return "No Type";
}

} // namespace

void writeSubmodels(const PartContext& part) {
    if (part.root.submodels.empty()) return;
    Html& html = part.html;
    writeHeading(part, PageSection::submodels);
    for (const SubMdl* const submodel : inFileOrder(part.root.submodels)) {
        html.begin("section", {{"class", Literal("model")}, Attribute::id(*part.anchors.find(submodel))});
        writeName(part, submodel->name);
        part.html << "<div class=\"values\"><p class=\"sub\">" << Text(typeText(submodel->type)) << "</p>";
        writeFindingLinks(part, *submodel);
        {
            CornerTable table(html, "Values");
            const SmSpec& spec = *submodel->tables->spec;
            table.row("V_trigger_r", spec.v_trigger_r, "V");
            table.row("V_trigger_f", spec.v_trigger_f, "V");
            table.row("Off_delay", spec.off_delay, "s");
            writeRamp(table, *submodel->tables->ramp);
        }
        html << "</div>";
        writeSubmodelPictures(part, *submodel);
        html << "</section>\n";
    }
}

} // namespace kestrel
