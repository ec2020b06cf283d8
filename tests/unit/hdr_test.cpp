// What the header keeps of its lines, faulty ones included, and which version a file gets.

#include "ibis/run.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_literals;

/// An open header, read at line 3.
struct OpenHeader {
    explicit OpenHeader(IbisVersion version = IbisVersion::none) {
        openRecord(run, run.hdr, createRoot(run).headers);
        run.parse.line = 3;
        run.parse.top_level = true;
        run.parse.version = version;
    }
    void keyword(KeywordCode code, std::string_view text) {
        recordLine(run, run.hdr, kHdr, {LineKind::keyword, code, text});
    }
    void data(KeywordCode code, std::string_view text) { recordLine(run, run.hdr, kHdr, {LineKind::data, code, text}); }
    /// What was printed, each message on one line.
    [[nodiscard]] std::string said() const {
        std::string text = out.text();
        for (std::size_t at = 0; (at = text.find(" -\n    ", at)) != std::string::npos;)
            text.replace(at, 7, " - ");
        return text;
    }

    Output out;
    Run run{out};
    Hdr& header() const { return *run.hdr.current; }
};

std::string errorLine(std::string_view text) { return "ERROR (line    3) - "s.append(text) + "\n"; }

TEST(Header, takesItsVersionFromKnownTextsOnly) {
    using V = IbisVersion;
    const std::string long_text(71, '4');
    const std::string cut_text(70, '4');
    struct Row {
        std::string_view text;
        V version; // v3 stands before the line
        std::string said;
        bool top_level = true;
    };
    const Row rows[] = {
        {"2.0", V::v2, ""},
        {"2.1", V::v2, ""},
        {"3.2", V::v3, ""},
        {"4.0", V::v4, ""},
        {"4.2", V::v4, ""},
        {"5.0", V::v5, ""},
        {"5.1", V::v5, ""},
        {"1.1", V::v1, ""},
        {"1.", V::v1, ""},
        {"1.1", V::v3, errorLine("Illegal IBIS_Version '1.1'."), false},
        {"2.2", V::v3, errorLine("Illegal IBIS_Version '2.2'.")},
        {"6.0", V::v3, errorLine("Illegal IBIS_Version '6.0'.")},
        {"5.1 draft", V::v3, errorLine("Illegal IBIS_Version '5.1 draft'.")},
        {"5", V::v3, errorLine("Illegal IBIS_Version '5'.")},
        {"", V::v3, errorLine("Zero length value for keyword 'IBIS_Version'.")},
        {long_text, V::v3,
         errorLine("IBIS_Version string '" + long_text + "' is too long, truncating to 70 characters.") +
             errorLine("Illegal IBIS_Version '" + cut_text + "'.")},
    };
    for (const Row& row : rows) {
        OpenHeader test(V::v3);
        test.run.parse.top_level = row.top_level;
        test.keyword(KeywordCode::ibisVer, row.text);
        EXPECT_EQ(test.run.parse.version, row.version) << row.text;
        EXPECT_EQ(test.said(), row.said) << row.text;
    }
}

TEST(Header, holdsTheFileNameToTheLimitOfTheVersion) {
    using V = IbisVersion;
    struct Row {
        V version;
        std::size_t length, stored;
        std::string_view verdict; // behind the name
    };
    const Row rows[] = {
        {V::none, 12, 12, ""},
        {V::none, 13, 12, "is too long, truncating to 12 characters."},
        {V::v2, 13, 12, "is too long, truncating to 12 characters."},
        {V::v3, 24, 24, ""},
        {V::v3, 25, 25, "is too long, maximum length 24 allowed."},
        {V::v4, 44, 44, ""},
        {V::v4, 45, 45, "is too long, maximum length 44 allowed."},
        {V::v5, 45, 45, "is too long, maximum length 44 allowed."},
        {V::v5, 1025, 1024, "is too long, maximum length 44 allowed."},
    };
    for (const Row& row : rows) {
        const std::string name = "x." + std::string(row.length - 2, 'y');
        OpenHeader test(row.version);
        test.run.parse.file_name =
            "X." + std::string(row.stored - 2, 'Y'); // as stored, so no word about the name opened
        test.keyword(KeywordCode::fileName, name);
        EXPECT_EQ(test.header().file_name, name.substr(0, row.stored));
        const std::string said = "File_name string '" + name + "' ";
        EXPECT_EQ(test.said(), row.verdict.empty() ? "" : errorLine(said + std::string(row.verdict)));
    }
}

TEST(Header, judgesEveryCharacterOfTheFileName) {
    constexpr std::string_view kLegal = "abcdefghijklmnopqrstuvwxyz0123456789_^$~!#%&-{}()@'`";
    for (char c = '!'; c <= '~'; ++c) {
        const std::string name = "a"s + c + ".ibs";
        std::string verdict = "contains a character '"s + c + "' that is illegal for DOS.";
        if (c >= 'A' && c <= 'Z') verdict = "contains an upper case character '"s + c + "'.";
        if (c == '.') verdict = "contains more than one period.";
        OpenHeader test;
        test.run.parse.file_name = name;
        test.keyword(KeywordCode::fileName, name);
        const bool fine = kLegal.find(c) != std::string_view::npos;
        EXPECT_EQ(test.said(), fine ? "" : errorLine("File_name '" + name + "' " + verdict));
    }
}

TEST(Header, joinsTheLinesOfAText) {
    OpenHeader test;
    using K = KeywordCode;
    test.keyword(K::source, "");
    test.data(K::source, "  [Model] is text here");
    test.keyword(K::notes, "first");
    test.data(K::notes, "second");
    test.keyword(K::disclaimer, "one");
    test.data(K::disclaimer, " two");
    EXPECT_EQ(test.said(), "");

    test.keyword(K::notes, "refused");
    test.data(K::notes, "third");
    test.keyword(K::disclaimer, "three");
    EXPECT_EQ(test.said(), errorLine("Duplicate Notes keyword."));
    EXPECT_EQ(test.header().source, "\n  [Model] is text here");
    EXPECT_EQ(test.header().notes, "first\nsecond\nthird");
    EXPECT_EQ(test.header().disclaimer, "one\n two\nthree");
    EXPECT_EQ(test.header().copyright, std::nullopt);
}

} // namespace
} // namespace kestrel
