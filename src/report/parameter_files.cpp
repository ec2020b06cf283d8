#include "ami/check.hpp"
#include "ami/outline.hpp"
#include "ami/tree.hpp"
#include "base/name_list.hpp"
#include "ibis/run.hpp"
#include "reader/source.hpp"
#include "report/sections.hpp"

namespace kestrel {

namespace {

/// How much of a file is shown, and how deep it unfolds: what is deeper is shown as it reads.
constexpr std::size_t kMostNodes = 20000;
constexpr std::size_t kDeepest = 24;
constexpr std::size_t kMostOfText = 400;

/// A text as far as it is shown.
std::string_view shortened(std::string_view text) { return text.substr(0, kMostOfText); }

/// Writes the nodes of a file as lists that fold.
class TreeWriter {
public:
    explicit TreeWriter(Html& html) : html_(html) {}

    void write(std::string_view node, std::size_t depth) {
        if (left_ == 0) return;
        --left_;
        Scanner scanner(node.substr(1));
        const Token name = scanner.next();
        std::string texts;
        std::vector<std::string_view> nodes;
        collect(node, name, texts, nodes);
        if (nodes.empty()) {
            html_ << "<li>";
            writeHead(name, texts);
            html_ << "</li>\n";
            return;
        }
        html_ << "<li>";
        if (depth < 2) {
            html_ << "<details class=\"fold\" open><summary>";
        } else {
            html_ << "<details class=\"fold\"><summary>";
        }
        if (texts.empty()) texts = descriptionIn(nodes);
        writeHead(name, texts);
        html_ << "</summary>";
        if (depth >= kDeepest) {
            html_ << "<pre>" << Text(shortened(node)) << "</pre>";
        } else {
            html_ << "<ul>";
            for (const std::string_view inner : nodes)
                write(inner, depth + 1);
            html_ << "</ul>";
        }
        html_ << "</details></li>\n";
    }

    [[nodiscard]] bool isCut() const { return left_ == 0; }

private:
    void writeHead(const Token& name, std::string_view texts) {
        const bool has_name = name.isText() && !name.text.empty();
        if (!has_name && texts.empty()) html_ << "( )";
        if (has_name) html_ << "<b>" << Text(shortened(name.text)) << "</b>";
        if (!texts.empty()) html_ << " " << Text(shortened(texts));
    }

    /// Parts what is directly in a node into its texts and its nodes.
    void collect(std::string_view node, const Token& name, std::string& texts,
                 std::vector<std::string_view>& nodes) const {
        Scanner scanner(node.substr(1));
        if (name.isText()) scanner.next();
        std::size_t depth = 0;
        const char* begin = nullptr;
        for (Token token = scanner.next(); token.kind != TokenKind::end; token = scanner.next()) {
            if (token.kind == TokenKind::open) {
                if (depth++ == 0) begin = token.text.data();
            } else if (token.kind == TokenKind::close) {
                if (depth == 0) return;
                if (--depth > 0) continue;
                nodes.emplace_back(begin, static_cast<std::size_t>(token.text.data() + 1 - begin));
                if (nodes.size() > left_) return; // the others will not be shown
            } else if (depth == 0 && texts.size() < kMostOfText) {
                texts.append(texts.empty() ? "" : " ").append(shortened(token.text));
            }
        }
    }

    /// What the node's "Description" says.
    static std::string descriptionIn(const std::vector<std::string_view>& nodes) {
        for (const std::string_view node : nodes) {
            Scanner scanner(node.substr(1));
            if (!equalsNoCase(scanner.next().text, "Description")) continue;
            const Token text = scanner.next();
            return text.isText() ? std::string(shortened(text.text)) : std::string();
        }
        return {};
    }

    Html& html_;
    std::size_t left_ = kMostNodes;
};

/// Writes the tree of a file that is found by its name; false when it cannot be read.
bool writeTree(const PartContext& part, std::string_view name, std::string_view directory) {
    Output nowhere = Output::nowhere();
    Run quiet(nowhere);
    quiet.sources.texts = part.run.sources.texts;
    quiet.parse.directory = directory;
    quiet.diagnostics.sink = [](const Finding&) {};
    quiet.diagnostics.on_assertion = OnAssertion::raise;
    // One in a folder is sought from where the .ibs file is; a bare name is sought there anyhow.
    constexpr std::string_view kSeparators = "/\\";
    const bool is_bare = name.find_first_of(kSeparators) == std::string_view::npos;
    const bool is_whole = directory.empty() || kSeparators.find(name.front()) != std::string_view::npos;
    const std::string path = is_bare || is_whole ? std::string(name) : std::string(directory).append(name);
    if (path.size() >= kMaxPath) return false;
    try {
        std::optional<Source> source = openSource(quiet, path, FileKind::ami, WhenAbsent::leave);
        if (!source) return false;
        nameFile(quiet.diagnostics, source->path);
        const std::string text = collectAmi(quiet, *source);
        const AmiOutline outline = readAmiOutline(quiet, text);
        if (outline.nodes.empty()) return false;
        TreeWriter writer(part.html);
        part.html << "<ul class=\"tree\">";
        writer.write(outline.nodes.front().text, 0);
        part.html << "</ul>";
        if (writer.isCut()) part.html << "<p class=\"none\">The first " << kMostNodes << " branches are shown.</p>";
        return true;
    } catch (const AssertionFailed&) { // whatever is wrong with the file was reported by its check
        return false;
    }
}

void writeFile(const PartContext& part, std::string_view name, std::string_view directory) {
    part.html << "<section class=\"parameters\">";
    writeName(part, name);
    if (!writeTree(part, name, directory))
        part.html << "<p class=\"none\">It could not be read as a tree of parameters.</p>";
    part.html << "</section>\n";
}

} // namespace

void writeParameterFiles(const PartContext& part) {
    if (part.kind == FileKind::ami) {
        writeHeading(part, PageSection::parameters);
        writeFile(part, part.path, "");
        return;
    }
    NameList names;
    for (const Mdl& model : part.root.models.newestFirst()) {
        if (!model.algorithmic_model) continue;
        for (const AlgExecutable& executable : model.algorithmic_model->executables)
            if (kindOfName(executable.parameter_file) == FileKind::ami) names.add(executable.parameter_file);
    }
    if (names.names.empty()) return;
    writeHeading(part, PageSection::parameters);
    for (const std::string& name : names.names)
        writeFile(part, name, part.run.parse.directory);
}

} // namespace kestrel
