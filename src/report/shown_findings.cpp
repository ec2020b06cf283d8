#include "report/shown_findings.hpp"

#include "findings/format.hpp"
#include "report/explanation.hpp"

namespace kestrel {

namespace {

constexpr std::uint32_t kLinesAround = 2;

std::uint64_t keyOf(const Anchor& anchor) {
    return std::uint64_t{anchor.number} << 8U | static_cast<unsigned char>(anchor.kind);
}

/// The words for kinds of records.
std::string_view kindWord(SubjectKind kind) {
    switch (kind) {
    case SubjectKind::header: return "header";
    case SubjectKind::component: return "component";
    case SubjectKind::model: return "model";
    case SubjectKind::externalCircuit: return "external circuit";
    case SubjectKind::submodel: return "submodel";
    case SubjectKind::modelSelector: return "selector";
    case SubjectKind::testData: return "test data";
    case SubjectKind::testLoad: return "test load";
    case SubjectKind::packageModel: return "package model";
    case SubjectKind::board: return "board";
    }
    return "";
}

/// The numbers of the lines that the findings of the file itself are shown with, in order.
std::vector<std::uint32_t> wantedLines(const std::vector<ShownFinding>& list) {
    std::vector<std::uint32_t> wanted;
    for (const ShownFinding& finding : list) {
        if (!finding.file.empty()) continue;
        const std::uint32_t first = finding.line > kLinesAround ? finding.line - kLinesAround : 1;
        for (std::uint32_t line = first; line <= finding.line + kLinesAround; ++line)
            wanted.push_back(line);
    }
    std::ranges::sort(wanted);
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
    return wanted;
}

void writeLines(Html& html, const ShownFinding& finding, const SourceLines& lines) {
    const std::uint32_t first = finding.line > kLinesAround ? finding.line - kLinesAround : 1;
    auto at = lines.lower_bound(first);
    if (at == lines.end() || at->first > finding.line + kLinesAround) return;
    html << "<pre>";
    for (; at != lines.end() && at->first <= finding.line + kLinesAround; ++at) {
        if (at->first == finding.line) html << "<b>";
        html << "<i>" << at->first << "</i> ";
        html.cell(Text(at->second));
        if (at->first == finding.line) html << "</b>";
        html << "\n";
    }
    html << "</pre>";
}

/// The findings that explain what those of their topic mean; later ones lead there.
using Explained = std::unordered_map<const Topic*, Anchor>;

void writeTopic(Html& html, const ShownFinding& finding, const Topic& topic, Explained& explained) {
    const auto [at, is_new] = explained.try_emplace(&topic, finding.anchor);
    if (is_new) {
        writeExplanation(html, topic);
    } else {
        html << "<p>Explained at the ";
        html.begin("a", {Attribute::href(at->second)}) << "first finding of its kind</a></p>";
    }
}

void writeFinding(Html& html, const ShownFinding& finding, const SourceLines& lines, Explained& explained) {
    html.begin("tr", {Attribute::id(finding.anchor), {"class", classOf(finding.level)}});
    html << "<td class=\"v\">" << finding.line;
    if (!finding.file.empty()) html << "<br><small>" << Text(finding.file) << "</small>";
    html << "</td><td><span class=\"level\">" << Text(levelName(finding.level)) << "</span></td><td class=\"v\">"
         << Text(CodeText(finding.code).text()) << "</td><td>";
    const bool has_lines = finding.file.empty() && !lines.empty();
    const Topic* const topic = finding.code ? topicOf(*finding.code) : nullptr;
    if (has_lines || topic != nullptr) {
        html << "<details><summary>" << Text(finding.shownText()) << "</summary>";
        if (has_lines) writeLines(html, finding, lines);
        if (topic != nullptr) writeTopic(html, finding, *topic, explained);
        html << "</details>";
    } else {
        html << "<p>" << Text(finding.shownText()) << "</p>";
    }
    html << "</td><td>";
    writeLink(html, finding.place ? &*finding.place : nullptr, finding.about);
    html << "</td></tr>\n";
}

} // namespace

Literal classOf(Level level) {
    switch (level) {
    case Level::bug:
    case Level::error: return "error";
    case Level::warning: return "warning";
    case Level::advice: return "advice";
    case Level::note:
    case Level::caution: break;
    }
    return "note";
}

std::vector<const ShownFinding*> ShownFindings::about(const Anchor* place) const {
    std::vector<const ShownFinding*> found;
    if (place == nullptr) return found;
    if (const auto at = by_place_.find(keyOf(*place)); at != by_place_.end())
        for (const std::uint32_t number : at->second)
            found.push_back(&list[number]);
    return found;
}

ShownFindings collectFindings(const FindingLog& log, std::size_t left_out, const std::string& path,
                              std::filesystem::file_time_type since, const Anchors& anchors) {
    ShownFindings findings;
    findings.left_out = left_out;
    log.replay([&](std::string_view, const Finding& finding) {
        const auto number = static_cast<std::uint32_t>(findings.list.size());
        ShownFinding shown{.level = levelOf(finding.severity),
                           .code = finding.code,
                           .line = finding.line,
                           .exact = finding.exact,
                           .file = {},
                           .about = {},
                           .text = std::string(messageOf(finding)),
                           .place = std::nullopt,
                           .anchor = anchors.numbered('e', number + 1),
                           .at = finding.at};
        if (finding.file != path) shown.file = finding.file;
        if (finding.subject != nullptr) {
            shown.about.assign(kindWord(finding.subject->kind)).append(" ").append(finding.subject->name);
            if (const Anchor* const place = anchors.find(finding)) {
                shown.place = *place;
                findings.by_place_[keyOf(*place)].push_back(number);
            }
        }
        findings.list.push_back(std::move(shown));
    });
    findings.lines = readLines(path, wantedLines(findings.list), since);
    return findings;
}

void writeFindings(Html& html, const ShownFindings& findings) {
    html << "<section class=\"findings\"><div class=\"wide\"><table class=\"sortable filter\"><thead><tr>"
            "<th scope=\"col\">Line</th><th scope=\"col\">Severity</th><th scope=\"col\">Code</th>"
            "<th scope=\"col\">Message</th><th scope=\"col\">About</th></tr></thead><tbody>\n";
    Explained explained;
    for (const ShownFinding& finding : findings.list)
        writeFinding(html, finding, findings.lines, explained);
    html << "</tbody></table></div>";
    if (findings.left_out > 0)
        html << "<p class=\"none\">These are the first " << findings.list.size() << " findings; " << findings.left_out
             << " more are in what verimark prints.</p>";
    html << "</section>\n";
}

} // namespace kestrel
