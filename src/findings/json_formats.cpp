#include "findings/format.hpp"
#include "findings/json.hpp"

namespace kestrel {

namespace {

/// Fills the object of one finding.
void fillFinding(JsonObject& object, const Finding& finding) {
    object.text("file", finding.file);
    object.number("line", finding.line);
    object.flag("exact", finding.exact);
    object.text("severity", levelName(levelOf(finding.severity)));
    if (finding.code) {
        object.text("code", CodeText(finding.code).text());
    } else {
        object.null("code");
    }
    object.text("message", messageOf(finding));
    if (finding.subject == nullptr) {
        object.null("subject");
        return;
    }
    JsonObject subject(object, "subject");
    subject.text("kind", subjectKindName(finding.subject->kind));
    subject.text("name", finding.subject->name);
}

void fillCounts(JsonObject& object, const FindingCounts& counts) {
    object.number("bugs", counts.bugs);
    object.number("errors", counts.errors);
    object.number("warnings", counts.warnings);
    object.number("notes", counts.notes);
    object.number("advice", counts.advice);
}

/// One object of everything. What is only known at the end of a file is written behind its findings, so that none has
/// to be kept.
class JsonFormat : public Format {
public:
    JsonFormat(Output& out, const FormatSettings& settings) : text_{out} {
        whole_.emplace(text_);
        writeTool(*whole_, settings.tool, settings.version);
        files_.emplace(*whole_, "files", true);
    }

    void fileBegins(const FileStart& start) override {
        file_.emplace(*files_);
        file_->text("path", start.path);
        file_->text("kind", start.kind);
        findings_.emplace(*file_, "findings", true);
    }

    void finding(const Finding& finding) override {
        JsonObject object(*findings_);
        fillFinding(object, finding);
    }

    void fileEnds(const FileEnd& end) override {
        findings_.reset();
        if (end.version) {
            file_->text("version", *end.version);
        } else {
            file_->null("version");
        }
        file_->text("verdict", verdictName(end.verdict));
        {
            JsonObject counts(*file_, "counts");
            fillCounts(counts, end.counts);
        }
        file_.reset();
    }

    void ends(const Totals& totals) override {
        files_.reset();
        {
            JsonObject object(*whole_, "totals");
            object.number("files", totals.files);
            object.number("failed", totals.failed);
            object.number("unread", totals.unread);
            fillCounts(object, totals.counts);
        }
        whole_.reset();
        text_.out.write("\n");
    }

private:
    JsonText text_;
    // Each within the one above, and gone before it.
    std::optional<JsonObject> whole_;
    std::optional<JsonArray> files_;
    std::optional<JsonObject> file_;
    std::optional<JsonArray> findings_;
};

/// One line for each finding.
class JsonlFormat : public Format {
public:
    explicit JsonlFormat(Output& out) : text_{out} {}

    void finding(const Finding& finding) override {
        {
            JsonObject object(text_);
            fillFinding(object, finding);
        }
        text_.out.write("\n");
    }

    /// Whoever reads along has the findings of a file when it is done.
    void fileEnds(const FileEnd& /*end*/) override { text_.out.flush(); }

private:
    JsonText text_;
};

} // namespace

std::unique_ptr<Format> makeJson(Output& out, const FormatSettings& settings) {
    return std::make_unique<JsonFormat>(out, settings);
}

std::unique_ptr<Format> makeJsonl(Output& out) { return std::make_unique<JsonlFormat>(out); }

} // namespace kestrel
