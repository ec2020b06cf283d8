// What the forms of findings make of odd texts: valid JSON and XML whatever the bytes, one line where one is promised,
// fingerprints that stay.

#include "findings/format.hpp"
#include "findings/json.hpp"
#include "findings/xml.hpp"

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_view_literals;
using testing::HasSubstr;

std::string json(std::string_view text) {
    Output out;
    writeJsonString(out, text);
    return out.text();
}

std::string xml(std::string_view text) {
    Output out;
    writeXmlText(out, text);
    return out.text();
}

TEST(Texts, areValidWhateverTheirBytes) {
    struct Row {
        std::string_view text;
        std::string_view in_json;
        std::string_view in_xml;
    };
    const Row rows[] = {
        {"", "\"\"", ""},
        {"a\"b\\c", R"("a\"b\\c")", "a&quot;b\\c"},
        {"<&>", "\"<&>\"", "&lt;&amp;&gt;"},
        {"\t\n\r", R"("\t\n\r")", "\t\n&#13;"},
        {"\0\x1b[m\x7f"sv, R"("\u0000\u001b[m\u007f")", "\uFFFD\uFFFD[m&#127;"},
        {"\u00e9\u20ac\U0001f600", "\"\u00e9\u20ac\U0001f600\"", "\u00e9\u20ac\U0001f600"},
        {"\u0085", R"("\u0085")", "&#133;"},
        {"\ufffe", "\"\ufffe\"", "\uFFFD"},
        // A byte that begins nothing, a character cut off, one in too many bytes, a surrogate, one beyond the last.
        {"\xff", "\"\uFFFD\"", "\uFFFD"},
        {"\xe2\x82", "\"\uFFFD\uFFFD\"", "\uFFFD\uFFFD"},
        {"\xc0\xaf", "\"\uFFFD\uFFFD\"", "\uFFFD\uFFFD"},
        {"\xed\xa0\x80", "\"\uFFFD\uFFFD\uFFFD\"", "\uFFFD\uFFFD\uFFFD"},
        {"\xf4\x90\x80\x80", "\"\uFFFD\uFFFD\uFFFD\uFFFD\"", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xc3(", "\"\uFFFD(\"", "\uFFFD("},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(json(row.text), row.in_json);
        EXPECT_EQ(xml(row.text), row.in_xml);
    }
}

TEST(Json, nestsAndPartsItsValues) {
    Output out;
    {
        JsonText text{out};
        JsonObject whole(text);
        whole.number("n", -3);
        {
            JsonArray words(whole, "words");
            words.text("a");
            words.text("b");
        }
        const JsonArray none(whole, "none", true);
    }
    EXPECT_EQ(out.text(), R"({"n":-3,"words":["a","b"],"none":[]})");
}

TEST(JsonDeathTest, aScopeIsLeftAloneWhileOneWithinItIsOpen) {
#ifdef NDEBUG
    GTEST_SKIP() << "assertions are off";
#endif
    Output out;
    JsonText text{out};
    JsonObject whole(text);
    const JsonObject inner(whole, "inner");
    EXPECT_DEATH(whole.null("x"), "open");
}

/// A finding in the board's line 7, or about the model in line 3.
Finding finding(std::string_view text, const Subject* subject = nullptr, std::string_view file = "b.ibs") {
    return {.severity = subject != nullptr ? Severity::error : Severity::errorAtLine,
            .code = FindingCode{CodeFamily::message, 905},
            .file = file,
            .line = subject != nullptr ? subject->line : 7,
            .shown_line = 7,
            .exact = subject == nullptr,
            .subject = subject,
            .text = text};
}

/// The whole output of a form for the findings of one file.
std::string written(FormatKind kind, const std::vector<Finding>& findings) {
    Output out;
    const auto format = makeFormat(kind, out, {.version = "1"});
    format->fileBegins({.path = "b.ibs", .kind = "ibs"});
    for (const Finding& one : findings)
        format->finding(one);
    format->fileEnds({.version = "4.2", .verdict = Verdict::failed, .checked = true, .counts = {}});
    format->ends({});
    return out.text();
}

TEST(Gcc, keepsAFindingOnItsLine) {
    EXPECT_EQ(written(FormatKind::gcc, {finding("a\r\nb\x1b[2J\n\n", nullptr, "x\ny.ibs")}),
              "x y.ibs:7: error: a  b [2J [905]\n");
}

TEST(Github, escapesWhatEndsACommand) {
    NameTable names;
    const Subject model{SubjectKind::model, 3, names.enter("a,b::c%"), nullptr};
    EXPECT_EQ(
        written(FormatKind::github, {finding("50%\r\n::error::x, \x1b", &model, "a,b:c\n.ibs")}),
        "::error file=a%2Cb%3Ac%0A.ibs,line=3,title=905 (model a%2Cb%3A%3Ac%25)::50%25%0D%0A::error::x, \uFFFD\n");
}

/// The fingerprints of the findings.
std::vector<std::string> fingerprints(const std::vector<Finding>& findings) {
    constexpr std::string_view kKey = "\"finding/v1\":\"";
    std::vector<std::string> found;
    const std::string text = written(FormatKind::sarif, findings);
    for (std::size_t at = text.find(kKey); at != std::string::npos; at = text.find(kKey, at)) {
        at += kKey.size();
        found.push_back(text.substr(at, text.find('"', at) - at));
    }
    return found;
}

TEST(Sarif, fingerprintsSurviveMovedLinesAndTellFindingsApart) {
    NameTable names;
    Subject model{SubjectKind::model, 3, names.enter("m"), nullptr};
    const Subject other{SubjectKind::model, 3, names.enter("n"), nullptr};
    const auto before = fingerprints({finding("x", &model)});
    model.line = 30;
    EXPECT_EQ(fingerprints({finding("x", &model)}), before);
    const auto all = fingerprints({finding("x", &model), finding("x", &model), finding("x", &other), finding("x"),
                                   finding("y", &model), finding("x", &model, "c.ibs")});
    ASSERT_EQ(all.size(), 6U);
    EXPECT_EQ(std::set(all.begin(), all.end()).size(), 6U);
    EXPECT_EQ(all[0], before[0]);
    // What a message says of lines moves as well.
    Finding waveform = finding("typ Not Defined For Rising Waveform Beginning on Line 12", &model);
    waveform.code = FindingCode{CodeFamily::message, 2004};
    Finding moved = waveform;
    moved.text = "typ Not Defined For Rising Waveform Beginning on Line 7";
    EXPECT_EQ(fingerprints({waveform}), fingerprints({moved}));
    // FNV-1a over "b.ibs", "905", "x", "model", "m", each with a NUL behind it.
    EXPECT_EQ(before[0], "811a449ee9e5c4b7:1");
}

TEST(Sarif, pathsAreReferences) {
    EXPECT_THAT(written(FormatKind::sarif, {finding("x", nullptr, "../a b/c:d%\xff.ibs")}),
                HasSubstr(R"("uri":"../a%20b/c%3Ad%25%FF.ibs")"));
    // However a file is named, a service has to find it.
    for (const std::string_view spelling : {"./a/b.ibs", "a/./c/../b.ibs", "a//b.ibs"}) {
        EXPECT_THAT(written(FormatKind::sarif, {finding("x", nullptr, spelling)}), HasSubstr(R"("uri":"a/b.ibs")"));
        EXPECT_THAT(written(FormatKind::github, {finding("x", nullptr, spelling)}), HasSubstr(" file=a/b.ibs,"));
        EXPECT_EQ(fingerprints({finding("x", nullptr, spelling)}), fingerprints({finding("x", nullptr, "a/b.ibs")}));
    }
    EXPECT_THAT(written(FormatKind::sarif, {finding("x", nullptr, "/a/b.ibs")}),
                HasSubstr(R"("uri":"file:///a/b.ibs")"));
}

TEST(Messages, endWithoutWhiteSpace) {
    EXPECT_THAT(written(FormatKind::jsonl, {finding("a\n \n")}), HasSubstr(R"("message":"a",)"));
}

} // namespace
} // namespace kestrel
