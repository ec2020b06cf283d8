#include "findings/format.hpp"
#include "findings/kept_text.hpp"
#include "findings/xml.hpp"

#include <stdexcept>
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
        failure_count_ = 0;
    }

    void finding(const Finding& finding) override {
        const bool fails = failsFile(levelOf(finding.severity), settings_.fail_on);
        if (fails) ++failure_count_;
        std::string text(finding.file);
        text.push_back(':');
        appendInteger(text, finding.line);
        text.append(": ").append(levelName(levelOf(finding.severity))).append(": ").append(messageOf(finding));
        if (finding.code) text.append(" [").append(CodeText(finding.code).text()).append("]");
        text.push_back('\n');
        Output escaped;
        writeXmlText(escaped, text);
        (fails ? failures_ : others_).add(escaped.text());
    }

    /// Throws when not all findings could be kept.
    void fileEnds(const FileEnd& end) override {
        const std::string problem = writeSuite(end);
        if (!problem.empty()) throw std::runtime_error("a temporary file cannot be used: " + problem);
    }

    void ends(const Totals& /*totals*/) override { suites_.reset(); }

private:
    /// Writes the suite of the file that ends; what is wrong with a temporary file is returned.
    std::string writeSuite(const FileEnd& end) {
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
        std::string problem;
        if (unread || failed) {
            XmlElement failure = test.element(unread ? "error" : "failure");
            failure.attribute("message", unread ? "not checked" : countText());
            problem = writeKept(failure, failures_);
        }
        if (others_.empty()) return problem;
        XmlElement output = test.element("system-out");
        const std::string other_problem = writeKept(output, others_);
        return problem.empty() ? other_problem : problem;
    }

    static std::string writeKept(XmlElement& element, KeptText& kept) {
        return kept.takeOut([&element](std::string_view piece) { element.escapedText(piece); });
    }

    [[nodiscard]] std::string countText() const {
        std::string text;
        appendInteger(text, failure_count_);
        return text.append(failure_count_ == 1 ? " finding" : " findings");
    }

    FormatSettings settings_;
    std::optional<XmlElement> suites_;
    std::string path_;
    KeptText failures_; // escaped
    KeptText others_;   // findings that do not fail the file
    std::int64_t failure_count_ = 0;
};

} // namespace

std::unique_ptr<Format> makeJunit(Output& out, const FormatSettings& settings) {
    return std::make_unique<JunitFormat>(out, settings);
}

} // namespace kestrel
