#include "findings/format.hpp"
#include "findings/xml.hpp"

#include <string>

namespace kestrel {

namespace {

/// A suite with one case for each file. Its counts come ahead of its findings, so these are kept to the end of the
/// file.
class JunitFormat : public Format {
public:
    JunitFormat(Output& out, const FormatSettings& settings) : settings_(settings) {
        suites_.emplace(out, "testsuites");
        suites_->attribute("name", settings.tool);
    }

    void fileBegins(const FileStart& start) override {
        path_ = start.path;
        failures_.clear();
        others_.clear();
        failure_count_ = 0;
    }

    void finding(const Finding& finding) override {
        const bool fails = failsFile(levelOf(finding.severity), settings_.fail_on);
        if (fails) ++failure_count_;
        std::string& text = fails ? failures_ : others_;
        text.append(finding.file).push_back(':');
        appendInteger(text, finding.line);
        text.append(": ").append(levelName(levelOf(finding.severity))).append(": ").append(messageOf(finding));
        if (finding.code) text.append(" [").append(CodeText(finding.code).text()).append("]");
        text.push_back('\n');
    }

    void fileEnds(const FileEnd& end) override {
        const bool unread = end.verdict == Verdict::unread;
        const bool failed = end.verdict == Verdict::failed;
        XmlElement suite = suites_->element("testsuite");
        suite.attribute("name", path_);
        suite.attribute("tests", 1);
        suite.attribute("failures", failed ? 1 : 0);
        suite.attribute("errors", unread ? 1 : 0);
        XmlElement test = suite.element("testcase");
        test.attribute("name", path_);
        test.attribute("classname", settings_.tool);
        if (unread || failed) {
            XmlElement failure = test.element(unread ? "error" : "failure");
            failure.attribute("message", unread ? "not checked" : countText());
            failure.text(failures_);
        }
        if (others_.empty()) return;
        XmlElement output = test.element("system-out");
        output.text(others_);
    }

    void ends(const Totals& /*totals*/) override { suites_.reset(); }

private:
    [[nodiscard]] std::string countText() const {
        std::string text;
        appendInteger(text, failure_count_);
        return text.append(failure_count_ == 1 ? " finding" : " findings");
    }

    FormatSettings settings_;
    std::optional<XmlElement> suites_;
    std::string path_;
    std::string failures_;
    std::string others_; // findings that do not fail the file
    std::int64_t failure_count_ = 0;
};

} // namespace

std::unique_ptr<Format> makeJunit(Output& out, const FormatSettings& settings) {
    return std::make_unique<JunitFormat>(out, settings);
}

} // namespace kestrel
