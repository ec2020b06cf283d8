#include "ibis/run.hpp"
#include "report/model_pictures.hpp"
#include "report/quantity.hpp"
#include "report/sections.hpp"
#include "report/tables.hpp"

namespace kestrel {

namespace {

/// A value of a test load: what it is called, and its unit.
template <class Member> struct Named {
    Markup name;
    Member member;
    std::string_view unit;
};

constexpr auto kValues = std::to_array<Named<GivenValue TestLoad::*>>({
    {"<th scope=\"col\">C1_near</th>", &TestLoad::c1_near, "F"},
    {"<th scope=\"col\">Rs_near</th>", &TestLoad::rs_near, kOhm},
    {"<th scope=\"col\">Ls_near</th>", &TestLoad::ls_near, "H"},
    {"<th scope=\"col\">C2_near</th>", &TestLoad::c2_near, "F"},
    {"<th scope=\"col\">Rp1_near</th>", &TestLoad::rp1_near, kOhm},
    {"<th scope=\"col\">Rp2_near</th>", &TestLoad::rp2_near, kOhm},
    {"<th scope=\"col\">Td</th>", &TestLoad::td, "s"},
    {"<th scope=\"col\">Zo</th>", &TestLoad::zo, kOhm},
    {"<th scope=\"col\">Rp1_far</th>", &TestLoad::rp1_far, kOhm},
    {"<th scope=\"col\">Rp2_far</th>", &TestLoad::rp2_far, kOhm},
    {"<th scope=\"col\">C2_far</th>", &TestLoad::c2_far, "F"},
    {"<th scope=\"col\">Ls_far</th>", &TestLoad::ls_far, "H"},
    {"<th scope=\"col\">Rs_far</th>", &TestLoad::rs_far, kOhm},
    {"<th scope=\"col\">C1_far</th>", &TestLoad::c1_far, "F"},
    {"<th scope=\"col\">R_diff_near</th>", &TestLoad::r_diff_near, kOhm},
    {"<th scope=\"col\">R_diff_far</th>", &TestLoad::r_diff_far, kOhm},
});

constexpr auto kVoltages = std::to_array<Named<GivenRange TestLoad::*>>({
    {"<th scope=\"col\">V_term1 (typ / min / max)</th>", &TestLoad::v_term1, "V"},
    {"<th scope=\"col\">V_term2 (typ / min / max)</th>", &TestLoad::v_term2, "V"},
});

std::string_view typeText(TestType type) {
    const auto* const row = rowOf(kTestTypes, type, &EnumerationRow<TestType>::code);
    return row != nullptr ? row->text : std::string_view();
}

void writeModelLink(const PartContext& part, Markup lead, std::string_view name) {
    if (name.empty()) return;
    part.html << lead;
    writeLink(part.html, part.anchors.find(part.root.models.find(name)), name);
}

/// What drives the load, and which it is.
void writeDriver(const PartContext& part, const TestData& data) {
    if (data.driver_model.empty() && data.test_load.empty()) return;
    Html& html = part.html;
    html << "<p>";
    writeModelLink(part, "Driver ", data.driver_model);
    writeModelLink(part, ", inverting ", data.driver_model_inv);
    if (!data.test_load.empty()) {
        html << " into the test load ";
        writeLink(html, part.anchors.find(part.root.test_loads.find(data.test_load)), data.test_load);
    }
    html << "</p>";
}

void writeData(const PartContext& part, const TestData& data) {
    Html& html = part.html;
    html.begin("section", {{"class", Literal("model")}, Attribute::id(*part.anchors.find(&data))});
    writeName(part, data.name);
    html << "<div class=\"values\">";
    if (const std::string_view type = typeText(data.type); !type.empty())
        html << "<p class=\"sub\">" << Text(type) << "</p>";
    writeDriver(part, data);
    writeFindingLinks(part, data);
    html << "</div>\n";
    writeGoldenWaveforms(part, data);
    html << "</section>\n";
}

/// The columns of values that some load has.
template <class Names> [[nodiscard]] auto columnsOf(const Names& names, const std::vector<const TestLoad*>& loads) {
    std::vector<const typename Names::value_type*> columns;
    for (const auto& name : names) {
        const auto has_it = [&name](const TestLoad* load) { return bool(load->*name.member); };
        if (std::ranges::any_of(loads, has_it)) columns.push_back(&name);
    }
    return columns;
}

std::string voltageText(const GivenRange& voltage, std::string_view unit) {
    std::string text;
    if (!voltage) return text;
    for (const Cell& cell : *voltage)
        text.append(text.empty() ? "" : " / ").append(cellText(cell, unit));
    return text;
}

void writeLoads(const PartContext& part) {
    const std::vector<const TestLoad*> loads = inFileOrder(part.root.test_loads);
    if (loads.empty()) return;
    const auto values = columnsOf(kValues, loads);
    const auto voltages = columnsOf(kVoltages, loads);
    Html& html = part.html;
    html << "<div class=\"wide\"><table class=\"loads\"><caption>Test loads</caption><thead><tr>"
            "<th scope=\"col\">Test load</th><th scope=\"col\">Type</th>";
    for (const auto* const column : values)
        html << column->name;
    for (const auto* const column : voltages)
        html << column->name;
    html << "<th scope=\"col\">Receiver</th></tr></thead><tbody>\n";
    for (const TestLoad* const load : loads) {
        html.begin("tr", {Attribute::id(*part.anchors.find(load))});
        html << "<th scope=\"row\">" << Text(load->name) << "</th><td>" << Text(typeText(load->type)) << "</td>";
        for (const auto* const column : values) {
            const GivenValue& value = load->*column->member;
            html << "<td>" << Text(value ? quantityText(*value, column->unit) : std::string()) << "</td>";
        }
        for (const auto* const column : voltages)
            html << "<td>" << Text(voltageText(load->*column->member, column->unit)) << "</td>";
        html << "<td>";
        writeModelLink(part, "", load->receiver_model);
        writeModelLink(part, ", inverting ", load->receiver_model_inv);
        html << "</td></tr>\n";
    }
    html << "</tbody></table></div>\n";
    for (const TestLoad* const load : loads)
        writeFindingLinks(part, *load);
}

} // namespace

void writeTestData(const PartContext& part) {
    if (part.root.test_data.empty() && part.root.test_loads.empty()) return;
    writeHeading(part, PageSection::testData);
    for (const TestData* const data : inFileOrder(part.root.test_data))
        writeData(part, *data);
    writeLoads(part);
}

} // namespace kestrel
