#include "report/compared_page.hpp"

#include "compare/change.hpp"
#include "header/hdr.hpp"
#include "ibis/ibis.hpp"
#include "model/mdl.hpp"
#include "model/submdl.hpp"
#include "report/compared_models.hpp"
#include "report/quantity.hpp"
#include "report/tables.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace kestrel {

namespace {

constexpr std::size_t kMostNames = 20;

/// The part of a path behind its folders.
std::string_view fileNameOf(std::string_view path) { return path.substr(path.find_last_of('/') + 1); }

/// By which names two files are told apart: without folders where these differ, else from the first folder that does.
std::pair<std::string_view, std::string_view> shortNames(std::string_view was, std::string_view is) {
    if (fileNameOf(was) != fileNameOf(is)) return {fileNameOf(was), fileNameOf(is)};
    const auto differ = std::ranges::mismatch(was, is);
    const auto same = static_cast<std::size_t>(differ.in1 - was.begin());
    if (same == was.size() && same == is.size()) return {was, is};
    const std::size_t folder = was.substr(0, same).find_last_of('/') + 1;
    return {was.substr(folder), is.substr(folder)};
}

/// The header that says most; an empty one where there is none.
const Hdr& headerOf(const Ibis* root, const Hdr& none) {
    if (root == nullptr) return none;
    for (const Hdr& header : root->headers.newestFirst())
        if (!header.ibis_version.empty() || !header.file_name.empty()) return header;
    return none;
}

void writeRow(Html& html, Markup name, std::string_view was, std::string_view is) {
    if (was.empty() && is.empty()) return;
    html << "<tr><th scope=\"row\">" << name << "</th><td>" << Text(was) << "</td><td>" << Text(is) << "</td></tr>\n";
}

/// Where the records are that changed, by their names.
struct Places {
    ViewMap<Anchor> models;
    ViewMap<Anchor> submodels;

    Places(std::uint32_t pair, const FileChanges& changes) {
        const auto enter = [pair](ViewMap<Anchor>& places, const auto& records, auto anchor_of) {
            for (std::size_t i = 0; i < records.size(); ++i) {
                const auto& [was, is, differs] = records[i];
                if (was == nullptr || is == nullptr || differs)
                    places.emplace(is != nullptr ? is->name : was->name, anchor_of(pair, i));
            }
        };
        enter(models, changes.models, anchorOfModel);
        enter(submodels, changes.submodels, anchorOfSubmodel);
    }

    /// The place of the first record of a group; null without one.
    [[nodiscard]] const Anchor* find(const ChangeGroup& group) const {
        const ViewMap<Anchor>& anchors = group.record == SubjectKind::model ? models : submodels;
        if (group.record != SubjectKind::model && group.record != SubjectKind::submodel) return nullptr;
        const auto at = anchors.find(group.names.front());
        return at == anchors.end() ? nullptr : &at->second;
    }
};

void writeChanges(Html& html, std::uint32_t number, const FileChanges& changes) {
    html.begin("h3", {Attribute::id(anchorOf(number, ComparedSection::changes))}) << "Changes</h3>\n";
    const Places places(number, changes);
    LongTable table(html, "All changes", changes.groups.size(),
                    {"<th scope=\"col\" class=\"link\">Of</th>", "<th scope=\"col\">Change</th>"}, true);
    std::string records;
    std::string body;
    for (const ChangeGroup* const group : changes.groups) {
        records.clear();
        body.clear();
        appendRecords(records, *group, kMostNames);
        appendBody(body, *group);
        body = withMinusSigns(body);
        table.row(std::array{TableCell{records, places.find(*group)}, TableCell{body}});
    }
}

std::string errorsOf(const ComparedPath& file) {
    if (file.errors == 0) return "none";
    return std::to_string(file.errors).append("; compared as far as it was read");
}

} // namespace

void ComparedPage::writeOutcome(Html& html, Outcome outcome) {
    switch (outcome) {
    case Outcome::same: html << "<strong class=\"verdict passed\">Same</strong>"; break;
    case Outcome::different: html << "<strong class=\"verdict failed\">Different</strong>"; break;
    case Outcome::notWhole: html << "<strong class=\"verdict unread\">Not compared whole</strong>"; break;
    case Outcome::notCompared: html << "<strong class=\"verdict unread\">Not compared</strong>"; break;
    case Outcome::onlyOld: html << "<strong class=\"verdict unread\">Only old</strong>"; break;
    case Outcome::onlyNew: html << "<strong class=\"verdict unread\">Only new</strong>"; break;
    }
}

void ComparedPage::writeHead(Html& html, const ComparedPair& pair, const Row& row, const Ibis* was,
                             const Ibis* is) const {
    const auto [old_name, new_name] = shortNames(pair.was.path, pair.is.path);
    html << "<header><h2>" << Text(new_name) << " <span class=\"sub\">compared with " << Text(old_name)
         << "</span></h2><p class=\"outcome\">";
    writeOutcome(html, row.outcome);
    html << " " << Text(row.summary) << "</p>\n";
    if (!pair.passed_over.empty()) {
        html << "<p>Not compared, since keywords of later versions are passed over:";
        for (const std::string_view keyword : pair.passed_over)
            html << " [" << Text(keyword) << "]";
        html << "</p>\n";
    }
    const Hdr none;
    const Hdr& before = headerOf(was, none);
    const Hdr& now = headerOf(is, none);
    html << "<div class=\"wide\"><table class=\"pair\"><thead><tr><td></td><th scope=\"col\">Old</th>"
            "<th scope=\"col\">New</th></tr></thead><tbody>\n";
    writeRow(html, "File", pair.was.path, pair.is.path);
    writeRow(html, "IBIS version", pair.was.version.value_or(""), pair.is.version.value_or(""));
    writeRow(html, "File name", before.file_name, now.file_name);
    writeRow(html, "Revision", before.file_rev, now.file_rev);
    writeRow(html, "Date", before.date, now.date);
    writeRow(html, "Source", before.source.value_or(""), now.source.value_or(""));
    if (pair.changes != nullptr) writeRow(html, "Errors", errorsOf(pair.was), errorsOf(pair.is));
    html << "</tbody></table></div>\n</header>\n";
}

void ComparedPage::pair(const ComparedPair& pair, const Ibis* was, const Ibis* is) {
    const bool differs = pair.changes != nullptr && !pair.changes->groups.empty();
    constexpr std::array kOutcomes{Outcome::same, Outcome::different, Outcome::notWhole, Outcome::notCompared};
    const Outcome outcome = kOutcomes[static_cast<std::size_t>(verdictOf(pair))];
    rows_.push_back({++pairs_, std::string(pair.is.path), outcome, summaryOf(pair)});
    Html html(page_.out());
    html.begin("article", {{"class", Literal("file")}, Attribute::id({'f', pairs_, 0})}) << "\n";
    writeHead(html, pair, rows_.back(), was, is);
    if (differs) {
        writeChanges(html, pairs_, *pair.changes);
        writeComparedModels(html, pairs_, *pair.changes);
        writeComparedSubmodels(html, pairs_, *pair.changes);
    }
    html << "</article>\n";
}

void ComparedPage::lonely(std::string_view path, bool is_new) {
    rows_.push_back({0, std::string(path), is_new ? Outcome::onlyNew : Outcome::onlyOld, {}});
}

void ComparedPage::end() {
    if (rows_.size() > 1) {
        Html html(page_.out());
        html << "<section id=\"files\"><h2>Files</h2><div class=\"wide\"><table class=\"sortable filter\"><thead><tr>"
                "<th scope=\"col\">File</th><th scope=\"col\">Outcome</th><th scope=\"col\">Summary</th></tr></thead>"
                "<tbody>\n";
        for (const Row& row : rows_) {
            const Anchor anchor{'f', row.number, 0};
            html << "<tr><td>";
            writeLink(html, row.number == 0 ? nullptr : &anchor, row.path);
            html << "</td><td>";
            writeOutcome(html, row.outcome);
            html << "</td><td>" << Text(row.summary) << "</td></tr>\n";
        }
        html << "</tbody></table></div></section>\n";
    }
    page_.end();
}

} // namespace kestrel
