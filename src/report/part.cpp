#include "report/part.hpp"

#include "ibis/run.hpp"
#include "report/sections.hpp"

#include <array>

namespace kestrel {

namespace {

/// The sections, in the order of the page.
struct SectionRow {
    PageSection section;
    Markup title;
    bool (*is_there)(const PartContext& part);
    void (*write)(const PartContext& part);
};

bool namesParameterFiles(const PartContext& part) {
    if (part.kind == FileKind::ami) return true;
    for (const Mdl& model : part.root.models.newestFirst())
        if (model.algorithmic_model && !model.algorithmic_model->executables.empty()) return true;
    return false;
}

void writeFindingSection(const PartContext& part) {
    writeHeading(part, PageSection::findings);
    writeFindings(part.html, part.findings);
}

constexpr auto kSections = std::to_array<SectionRow>({
    {PageSection::findings, "Findings", [](const PartContext& part) { return !part.findings.list.empty(); },
     writeFindingSection},
    {PageSection::components, "Components", [](const PartContext& part) { return !part.root.components.empty(); },
     writeComponents},
    {PageSection::selectors, "Selectors", [](const PartContext& part) { return !part.root.model_selectors.empty(); },
     writeSelectors},
    {PageSection::models, "Models", [](const PartContext& part) { return !part.root.models.empty(); }, writeModels},
    {PageSection::submodels, "Submodels", [](const PartContext& part) { return !part.root.submodels.empty(); },
     writeSubmodels},
    {PageSection::testData, "Test data",
     [](const PartContext& part) { return !part.root.test_data.empty() || !part.root.test_loads.empty(); },
     writeTestData},
    {PageSection::packages, "Package models", [](const PartContext& part) { return !part.root.package_models.empty(); },
     writePackageModels},
    {PageSection::boards, "Boards", [](const PartContext& part) { return !part.root.board_descriptions.empty(); },
     writeBoards},
    {PageSection::parameters, "Parameter files", namesParameterFiles, writeParameterFiles},
});

Anchor anchorOf(const PartContext& part, PageSection section) {
    return part.anchors.numbered('h', static_cast<std::uint32_t>(section) + 1);
}

struct Item {
    Markup name;
    std::string_view text;
};

/// A list of names with their texts, of which those that are empty are left out.
void writeItems(Html& html, std::initializer_list<Item> items) {
    if (std::ranges::all_of(items, [](const Item& item) { return item.text.empty(); })) return;
    html << "<dl>";
    for (const auto& [name, text] : items)
        if (!text.empty()) html << "<dt>" << name << "</dt><dd>" << Text(text) << "</dd>\n";
    html << "</dl>\n";
}

/// Texts of the header: those that are short are items of its list, others are folded below it.
constexpr std::size_t kMostLines = 12;
constexpr std::size_t kMostLetters = 1000;

bool isLong(std::string_view text) {
    return text.size() > kMostLetters || static_cast<std::size_t>(std::ranges::count(text, '\n')) >= kMostLines;
}

std::string_view shortText(const std::optional<std::string>& text) {
    return text && !isLong(*text) ? std::string_view(*text) : std::string_view();
}

void writeLongText(Html& html, Markup name, const std::optional<std::string>& text) {
    if (!text || !isLong(*text)) return;
    html << "<details class=\"fold\"><summary>" << name << "</summary><p class=\"text\">" << Text(*text)
         << "</p></details>\n";
}

std::string componentNames(const Ibis& root) {
    constexpr std::size_t kMost = 20;
    std::string names;
    std::size_t count = 0;
    for (const Cmpnt* const component : inFileOrder(root.components)) {
        if (++count > kMost) continue;
        names.append(names.empty() ? "" : ", ").append(component->name);
    }
    if (count > kMost) names.append(" and ").append(std::to_string(count - kMost)).append(" more");
    return names;
}

/// The path of the file as it was opened; the call may leave the extension out.
std::string pathOf(const Ibis& root, const FilePart& file) {
    for (const Hdr& header : root.headers.newestFirst())
        if (header.file != nullptr) return *header.file;
    return file.path;
}

/// The header that says most.
const Hdr* headerOf(const Ibis& root) {
    for (const Hdr& header : root.headers.newestFirst())
        if (!header.ibis_version.empty() || !header.file_name.empty()) return &header;
    return nullptr;
}

void writeHead(const PartContext& part, const FilePart& file) {
    Html& html = part.html;
    const std::size_t folder = file.path.find_last_of('/') + 1;
    html << "<header><h2><span class=\"sub\">" << Text(std::string_view(file.path).substr(0, folder)) << "</span>"
         << Text(std::string_view(file.path).substr(folder)) << "</h2><p class=\"outcome\">";
    writeVerdict(html, file.verdict);
    html << " ";
    writeCounts(html, file.counts);
    html << "</p>\n";
    const std::string components = componentNames(part.root);
    const Hdr none;
    const Hdr* const found = headerOf(part.root);
    const Hdr& header = found != nullptr ? *found : none;
    writeItems(html, {{"IBIS version", file.version ? std::string_view(*file.version) : std::string_view()},
                      {"File name", header.file_name},
                      {"Revision", header.file_rev},
                      {"Date", header.date},
                      {"Components", components},
                      {"Source", shortText(header.source)},
                      {"Notes", shortText(header.notes)},
                      {"Disclaimer", shortText(header.disclaimer)},
                      {"Copyright", shortText(header.copyright)}});
    writeLongText(html, "Source", header.source);
    writeLongText(html, "Notes", header.notes);
    writeLongText(html, "Disclaimer", header.disclaimer);
    writeLongText(html, "Copyright", header.copyright);
    const auto is_there = [&](const SectionRow& row) { return row.is_there(part); };
    if (std::ranges::none_of(kSections, is_there)) {
        html << "</header>\n";
        return;
    }
    html << "<nav aria-label=\"Sections\"><ul>";
    for (const SectionRow& row : kSections) {
        if (!row.is_there(part)) continue;
        html << "<li>";
        html.begin("a", {Attribute::href(anchorOf(part, row.section))}) << row.title << "</a></li>";
    }
    html << "</ul></nav></header>\n";
}

} // namespace

void KeptFindings::add(const Finding& finding) {
    counts.add(levelOf(finding.severity));
    if (kept < kMostFindings) {
        log.add({}, finding);
        ++kept;
    } else {
        ++left_out;
    }
}

void writeHeading(const PartContext& part, PageSection section) {
    part.html.begin("h3", {Attribute::id(anchorOf(part, section))})
        << kSections[static_cast<std::size_t>(section)].title << "</h3>\n";
}

void writeName(const PartContext& part, std::string_view name) {
    part.html << "<h4>" << Text(name.empty() ? std::string_view("unnamed") : name) << "</h4>";
}

void writeFindingLinks(const PartContext& part, const Subject& record) {
    constexpr std::size_t kMost = 12;
    std::vector<const ShownFinding*> findings = part.findings.about(part.anchors.find(&record));
    if (findings.empty()) return;
    // What weighs most leads.
    std::ranges::stable_sort(findings, {}, [](const ShownFinding* finding) {
        constexpr std::array<int, kLevels> kRanks{0, 0, 1, 3, 2, 3};
        return kRanks[static_cast<std::size_t>(finding->level)];
    });
    Html& html = part.html;
    html << "<ul class=\"about\">";
    for (std::size_t i = 0; i < findings.size() && i < kMost; ++i) {
        const ShownFinding& finding = *findings[i];
        html.begin("li", {{"class", classOf(finding.level)}});
        html << "<span class=\"level\">" << Text(levelName(finding.level)) << "</span> ";
        html.begin("a", {Attribute::href(finding.anchor)}) << Text(finding.shownText()) << "</a></li>";
    }
    if (findings.size() > kMost) html << "<li>and " << findings.size() - kMost << " more</li>";
    html << "</ul>\n";
}

void writePart(Html& html, const FilePart& file, const KeptFindings& findings, Run* run) {
    Output nowhere = Output::nowhere();
    std::optional<Run> none;
    if (run == nullptr) run = &none.emplace(nowhere);
    if (run->roots.empty()) createRoot(*run);
    const Ibis& root = *run->roots.front();
    Anchors anchors(file.number);
    anchors.enter(root);
    const std::string path = pathOf(root, file);
    const ShownFindings shown = collectFindings(findings.log, findings.left_out, path, file.begun, anchors);
    const PartContext part{html, *run, root, path, file.kind, anchors, shown};
    html.begin("article", {{"class", Literal("file")}, Attribute::id(anchors.file())}) << "\n";
    writeHead(part, file);
    for (const SectionRow& row : kSections)
        if (row.is_there(part)) row.write(part);
    html << "</article>\n";
}

void writeVerdict(Html& html, Verdict verdict) {
    switch (verdict) {
    case Verdict::passed: html << "<strong class=\"verdict passed\">Passed</strong>"; break;
    case Verdict::failed: html << "<strong class=\"verdict failed\">Failed</strong>"; break;
    case Verdict::unread: html << "<strong class=\"verdict unread\">Not read</strong>"; break;
    }
}

void writeCounts(Html& html, const FindingCounts& counts) {
    struct Class {
        std::int64_t count;
        Literal name;
        std::string_view one;
        std::string_view many;
    };
    bool any = false;
    for (const Class& row :
         {Class{counts.bugs, "error", "bug", "bugs"}, Class{counts.errors, "error", "error", "errors"},
          Class{counts.warnings, "warning", "warning", "warnings"}, Class{counts.notes, "note", "note", "notes"},
          Class{counts.advice, "advice", "advice", "advice"}}) {
        if (row.count == 0) continue;
        html.begin("span", {{"class", row.name}});
        html << "<span class=\"level\">" << row.count << " " << Text(row.count == 1 ? row.one : row.many)
             << "</span></span> ";
        any = true;
    }
    if (!any) html << "no findings";
}

} // namespace kestrel
