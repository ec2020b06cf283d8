// The forms with a line, or the printed text, for each finding.

#include "base/utf8.hpp"
#include "findings/format.hpp"

namespace kestrel {

namespace {

/// What people read: the findings as kestrel prints them, and the summary of each file.
class TextFormat : public Format {
public:
    TextFormat(Output& out, const FormatSettings& settings) : out_(out), settings_(settings) {}

    void finding(const Finding& finding) override {
        printFinding(out_, finding, settings_.color ? TextForm::coloredWords : TextForm::words);
    }

    void fileEnds(const FileEnd& end) override {
        const bool failed = end.verdict == Verdict::failed || failureCount(end.counts) != 0;
        if (!end.checked || (settings_.quiet && !failed)) return;
        printSummary(out_, end.counts, failed);
        out_.write("\n");
    }

private:
    Output& out_;
    FormatSettings settings_;
};

/// What compilers print, which editors know how to jump by.
class GccFormat : public Format {
public:
    GccFormat(Output& out, const FormatSettings& settings) : out_(out), color_(settings.color) {}

    void finding(const Finding& finding) override {
        const Level level = levelOf(finding.severity);
        line_.clear();
        line_.push_back(':');
        appendInteger(line_, finding.line);
        line_.append(": ");
        writeOnOneLine(out_, finding.file);
        out_.write(line_);
        if (color_) out_.writeControl(colorOf(level));
        out_.write(wordOf(level));
        if (color_) out_.writeControl(kColorOff);
        writeOnOneLine(out_, messageOf(finding));
        line_.clear();
        if (const CodeText code(finding.code); finding.code) line_.append(" [").append(code.text()).append("]");
        line_.push_back('\n');
        out_.write(line_);
    }

private:
    static std::string_view wordOf(Level level) {
        switch (level) {
        case Level::bug:
        case Level::error: return "error: ";
        case Level::warning: return "warning: ";
        case Level::note:
        case Level::advice:
        case Level::caution: break;
        }
        return "note: ";
    }

    Output& out_;
    bool color_;
    std::string line_;
};

/// Commands for a workflow's log, which shows them beside the lines.
class GithubFormat : public Format {
public:
    explicit GithubFormat(Output& out) : out_(out) {}

    void finding(const Finding& finding) override {
        out_.write(commandOf(levelOf(finding.severity)));
        out_.write(" file=");
        write(normalPath(finding.file), true); // annotations are sought by the path in the repository
        text_.assign(",line=");
        appendInteger(text_, finding.line);
        out_.write(text_);
        writeTitle(finding);
        out_.write("::");
        write(messageOf(finding), false);
        out_.write("\n");
    }

private:
    static std::string_view commandOf(Level level) {
        switch (level) {
        case Level::bug:
        case Level::error: return "::error";
        case Level::warning: return "::warning";
        case Level::note:
        case Level::advice:
        case Level::caution: break;
        }
        return "::notice";
    }

    void writeTitle(const Finding& finding) {
        text_.clear();
        if (finding.code) text_.append(CodeText(finding.code).text());
        if (finding.subject != nullptr) {
            text_.append(text_.empty() ? "" : " ").append("(").append(subjectKindName(finding.subject->kind));
            if (!finding.subject->name.empty()) text_.append(" ").append(finding.subject->name);
            text_.append(")");
        }
        if (text_.empty()) return;
        out_.write(",title=");
        write(text_, true);
    }

    /// Escapes what ends a command and, in its properties, what ends these; nothing else can be escaped.
    void write(std::string_view text, bool property) {
        while (!text.empty()) {
            const Character character = takeCharacter(text);
            if (!character.valid) {
                out_.write(kReplacement);
            } else if (character.code == '%') {
                out_.write("%25");
            } else if (character.code == '\n') {
                out_.write("%0A");
            } else if (character.code == '\r') {
                out_.write("%0D");
            } else if (property && character.code == ':') {
                out_.write("%3A");
            } else if (property && character.code == ',') {
                out_.write("%2C");
            } else if (character.isControl() && character.code != '\t') {
                out_.write(kReplacement);
            } else {
                out_.write(character.bytes);
            }
        }
    }

    Output& out_;
    std::string text_;
};

} // namespace

void writeOnOneLine(Output& out, std::string_view text) {
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && static_cast<unsigned char>(text[plain]) >= 0x20 && text[plain] != '\x7f')
            ++plain;
        out.write(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) return;
        out.write(" ");
        text.remove_prefix(1);
    }
}

std::unique_ptr<Format> makeText(Output& out, const FormatSettings& settings) {
    return std::make_unique<TextFormat>(out, settings);
}

std::unique_ptr<Format> makeGcc(Output& out, const FormatSettings& settings) {
    return std::make_unique<GccFormat>(out, settings);
}

std::unique_ptr<Format> makeGithub(Output& out) { return std::make_unique<GithubFormat>(out); }

} // namespace kestrel
