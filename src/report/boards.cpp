#include "ibis/run.hpp"
#include "report/quantity.hpp"
#include "report/sections.hpp"
#include "report/tables.hpp"

namespace kestrel {

namespace {

/// Most elements of a chain that are shown.
constexpr std::size_t kMostElements = 400;

void appendSection(std::string& text, const Sect& sect) {
    text.append("[");
    if (sect.len) appendQuantity(text.append("Len\u00a0"), *sect.len, "");
    const auto add = [&](std::string_view word, const std::optional<double>& value, std::string_view unit) {
        if (value) appendQuantity(text.append(text.back() == '[' ? "" : ", ").append(word), *value, unit);
    };
    add("L\u00a0", sect.l, "H");
    add("R\u00a0", sect.r, kOhm);
    add("C\u00a0", sect.c, "F");
    text.append("]");
}

} // namespace

std::string chainText(const Chain& chain, const EbdPath* path) {
    struct Open {
        std::uint32_t behind; ///< the element behind the fork
    };
    std::string text;
    if (chain.empty()) return text;
    std::vector<Open> forks;
    std::uint32_t at = 0;
    std::size_t shown = 0;
    bool begins = true; // nothing is ahead on this branch
    for (;;) {
        while (at == kNoElement && !forks.empty()) {
            text.append(" }");
            at = forks.back().behind;
            forks.pop_back();
            begins = false;
        }
        if (at == kNoElement) break;
        if (shown++ == kMostElements) {
            text.append(" and more");
            break;
        }
        const ChainElement& element = chain.elements[at];
        if (!begins) text.append(" \u2014 ");
        begins = false;
        switch (element.kind) {
        case ElementKind::section: appendSection(text, chain.sections[element.payload]); break;
        case ElementKind::pin:
            if (path != nullptr) text.append("pin ").append(path->pins[element.payload]);
            break;
        case ElementKind::node:
            if (path != nullptr) {
                const EbdNode& node = path->nodes[element.payload];
                text.append(node.designator).append(".").append(node.pin);
            }
            break;
        case ElementKind::nc: text.append("NC"); break;
        case ElementKind::fork:
            text.append("{ ");
            forks.push_back({element.next});
            at = element.payload;
            begins = true;
            continue;
        }
        at = element.next;
    }
    return text;
}

void writeBoards(const PartContext& part) {
    if (part.root.board_descriptions.empty()) return;
    Html& html = part.html;
    writeHeading(part, PageSection::boards);
    for (const EbdMdl* const board : inFileOrder(part.root.board_descriptions)) {
        html.begin("section", {{"class", Literal("board")}, Attribute::id(*part.anchors.find(board))});
        writeName(part, board->name);
        part.html << "<p class=\"sub\">" << Text(board->manufacturer) << "</p>";
        writeFindingLinks(part, *board);
        if (!board->refdes_map.empty()) {
            LongTable table(html, "Mounted", board->refdes_map.size(),
                            {"<th scope=\"col\">Designator</th>", "<th scope=\"col\">File</th>",
                             "<th scope=\"col\">Component</th>"},
                            true);
            for (const EbdRefDes& entry : board->refdes_map)
                table.row(
                    std::array{TableCell{entry.designator}, TableCell{entry.file_name}, TableCell{entry.component}});
        }
        if (!board->paths.empty()) {
            LongTable table(html, "Paths", board->paths.size(),
                            {"<th scope=\"col\">Path</th>", "<th scope=\"col\">Pins, sections and nodes</th>"}, true);
            for (const EbdPath& path : board->paths) {
                const std::string chain = chainText(path.chain, &path);
                table.row(std::array{TableCell{path.name}, TableCell{chain}});
            }
        }
        if (!board->pins.empty()) {
            LongTable table(html, "Pins", board->pins.size(),
                            {"<th scope=\"col\">Pin</th>", "<th scope=\"col\">Signal</th>"}, false);
            for (const EbdPin& pin : board->pins)
                table.row(std::array{TableCell{pin.name}, TableCell{pin.signal_name}});
        }
        html << "</section>\n";
    }
}

} // namespace kestrel
