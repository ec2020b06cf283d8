#include "ibis/run.hpp"
#include "report/quantity.hpp"
#include "report/sections.hpp"
#include "report/tables.hpp"

namespace kestrel {

namespace {

/// The other pin of a pair, with the side on which the first one is.
std::string partnerOf(const Cmpnt& component, std::string_view pin) {
    if (!component.diff_pins) return {};
    const DiffPins& pairs = *component.diff_pins;
    std::string text;
    if (const DifPin* const pair = pairs.rows.find(pin)) {
        text.append("+ of ").append(pair->inv_pin);
    } else if (const DifPin* const inverted = pairs.inv_pin_index.find(pairs.rows.rows(), pin)) {
        text.append(kMinus).append(" of ").append(inverted->pin);
    }
    return text;
}

/// The supply buses of a pin, by their columns.
std::string busesOf(const Cmpnt& component, std::string_view pin) {
    constexpr std::array<std::string_view, kBusColumns> kShort{"pd", "pu", "gc", "pc", "ext"};
    std::string text;
    if (!component.pin_mapping) return text;
    const PinMap* const row = component.pin_mapping->rows.find(pin);
    if (row == nullptr) return text;
    for (std::size_t column = 0; column < kBusColumns; ++column) {
        const std::string& label = row->labels[column];
        if (label.empty() || equalsNoCase(label, "NC")) continue;
        text.append(text.empty() ? "" : ", ").append(kShort[column]).append("\u00a0").append(label);
    }
    return text;
}

const Anchor* placeOfModel(const PartContext& part, Name name) {
    if (const Anchor* const model = part.anchors.find(part.root.models.find(name))) return model;
    return part.anchors.find(part.root.model_selectors.find(name));
}

/// Texts of cells of which most are missing.
std::string_view pinValue(std::string& room, const Cell& cell, std::string_view unit) {
    room.clear();
    if (cell.isNumber()) appendQuantity(room, cell.value(), unit);
    return room;
}

void writePins(const PartContext& part, const Cmpnt& component) {
    constexpr std::size_t kMostOpen = 64;
    const bool has_pairs = component.diff_pins && !component.diff_pins->rows.empty();
    const bool has_buses = component.pin_mapping && !component.pin_mapping->rows.empty();
    const auto hasValues = [&component](Cell Pin::*value) {
        return std::ranges::any_of(component.pins, [value](const Pin& pin) { return (pin.*value).isNumber(); });
    };
    const bool has_r = hasValues(&Pin::r_pin);
    const bool has_l = hasValues(&Pin::l_pin);
    const bool has_c = hasValues(&Pin::c_pin);
    LongTable table(
        part.html, "Pins", component.pins.size(),
        {"<th scope=\"col\">Pin</th>", "<th scope=\"col\">Signal</th>", "<th scope=\"col\" class=\"link\">Model</th>",
         has_r ? Markup("<th scope=\"col\">R</th>") : Markup(""),
         has_l ? Markup("<th scope=\"col\">L</th>") : Markup(""),
         has_c ? Markup("<th scope=\"col\">C</th>") : Markup(""),
         has_pairs ? Markup("<th scope=\"col\">Pair</th>") : Markup(""),
         has_buses ? Markup("<th scope=\"col\">Buses</th>") : Markup("")},
        component.pins.size() <= kMostOpen);
    std::string r;
    std::string l;
    std::string c;
    for (const Pin& pin : component.pins) {
        const std::string partner = partnerOf(component, pin.name);
        const std::string buses = busesOf(component, pin.name);
        std::array<TableCell, 8> cells{
            TableCell{pin.name}, {pin.signal_name}, {pin.model_name, placeOfModel(part, pin.model_name)}};
        std::size_t count = 3;
        if (has_r) cells[count++].text = pinValue(r, pin.r_pin, kOhm);
        if (has_l) cells[count++].text = pinValue(l, pin.l_pin, "H");
        if (has_c) cells[count++].text = pinValue(c, pin.c_pin, "F");
        if (has_pairs) cells[count++].text = partner;
        if (has_buses) cells[count++].text = buses;
        table.row(std::span(cells).first(count));
    }
}

void writeSeriesPins(const PartContext& part, const SeriesPins& pins) {
    if (pins.rows.empty()) return;
    LongTable table(part.html, "Series pins", pins.rows.size(),
                    {"<th scope=\"col\">Pin</th>", "<th scope=\"col\">Pin</th>",
                     "<th scope=\"col\" class=\"link\">Model</th>", "<th scope=\"col\">Group</th>"},
                    false);
    for (const SPin& pin : pins.rows) {
        const std::array<TableCell, 4> cells{
            TableCell{pin.pin_1}, {pin.pin_2}, {pin.model_name, placeOfModel(part, pin.model_name)}, {pin.group}};
        table.row(cells);
    }
}

void writePackage(const PartContext& part, const Cmpnt& component) {
    CornerTable table(part.html, "Package");
    if (component.package) {
        table.row("R_pkg", component.package->r_pkg, kOhm);
        table.row("L_pkg", component.package->l_pkg, "H");
        table.row("C_pkg", component.package->c_pkg, "F");
    }
    table.end();
    if (!component.package_model.empty()) {
        part.html << "<p>Package model: ";
        writeLink(part.html, part.anchors.find(part.root.package_models.find(component.package_model)),
                  component.package_model);
        part.html << "</p>\n";
    }
    if (!component.alternates || component.alternates->models.names.empty()) return;
    part.html << "<p>Alternatives:";
    for (const std::string& name : component.alternates->models.names) {
        part.html << " ";
        writeLink(part.html, part.anchors.find(part.root.package_models.find(name)), name);
    }
    part.html << "</p>\n";
}

void writeComponent(const PartContext& part, const Cmpnt& component) {
    Html& html = part.html;
    html.begin("section", {{"class", Literal("component")}, Attribute::id(*part.anchors.find(&component))});
    writeName(part, component.name);
    if (!component.manufacturer.empty()) html << "<p class=\"sub\">" << Text(component.manufacturer) << "</p>";
    writeFindingLinks(part, component);
    writePackage(part, component);
    if (!component.pins.empty()) writePins(part, component);
    if (component.series_pins) writeSeriesPins(part, *component.series_pins);
    html << "</section>\n";
}

} // namespace

void writeComponents(const PartContext& part) {
    if (part.root.components.empty()) return;
    writeHeading(part, PageSection::components);
    for (const Cmpnt* const component : inFileOrder(part.root.components))
        writeComponent(part, *component);
}

} // namespace kestrel
