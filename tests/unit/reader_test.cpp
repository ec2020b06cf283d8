#include "ami/check.hpp"
#include "files.hpp"

#include <csignal>
#include <fstream>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// The lines of a text, each in brackets, and what was reported while they were read.
std::string readAll(std::string_view text, std::size_t capacity) {
    Output out;
    kestrel::Run run(out);
    LineReader reader(ByteSource(std::make_shared<const std::string>(text)));
    std::string lines;
    while (const std::optional<SourceLine> line = reader.next(run, capacity)) {
        ++run.parse.line;
        lines.append("[").append(line->text).append("]");
    }
    return lines + out.text();
}

TEST(Reader, linesEndAndAreCutAsTheFormatSays) {
    using namespace std::string_literals;
    struct Row {
        std::string text;
        std::size_t capacity;
        std::string expected;
    };
    const std::string converting = "  Converting to space.\n";
    const std::string control = "ERROR (line    0) - Found illegal control character (code ";
    const std::string wrapped = "ERROR (line    0) -\n    Found illegal control character (code ";
    const Row rows[] = {
        {"", 10, ""},
        {"\n", 10, "[]"},
        {"a", 10, "[a]"},
        {"a\n\nb", 10, "[a][][b]"},
        {"a\r\nb\r\n", 10, "[a][b]"},
        {"abcdefghi\nz", 10, "[abcdefghi][z]"},
        {"abcdefghij\nz", 10, "[abcdefghi][z]"},
        {"abcdefghijklmnop\r\nz", 10, "[abcdefghi][z]"},
        {"\x7f\t~", 10, "[\x7f\t~]"},
        {"a\x1a", 10, "[a]"},
        {"\x1a", 10, "[]"},
        {"a\n\x1a", 10, "[a][]"},
        {"\x1a\n", 10, "[ ]" + wrapped + "1a)." + converting},
        {"\x1a\x1a", 10, "[ ]" + wrapped + "1a)." + converting},
        {"a\r", 10, "[a ]" + wrapped + "d)." + converting},
        {"a\r\r\n", 10, "[a ]" + wrapped + "d)." + converting},
        {"abc\x01", 4, "[abc]" + control + "1).\n"},
        {"ab\x01", 4, "[ab ]" + wrapped + "1)." + converting},
        {"\0"s, 4, "[ ]ERROR (line    0) - Found illegal NUL character (code 0)." + converting},
    };
    for (const Row& row : rows)
        EXPECT_EQ(readAll(row.text, row.capacity), row.expected) << ::testing::PrintToString(row.text);
}

TEST(Reader, silentReadingTakesEveryCharacter) {
    Output out;
    kestrel::Run run(out);
    LineReader reader(ByteSource(std::make_shared<const std::string>("a\x01\xff\n")), LineReader::Police::off);
    EXPECT_EQ(reader.next(run, 10)->text, "a\x01\xff");
    EXPECT_EQ(out.text(), "");
}

TEST(Reader, theVersionScanCountsWhatItReads) {
    struct Row {
        std::string_view text;
        IbisVersion version;
        std::uint32_t lines;
    };
    const std::string twenty = [] {
        std::string text;
        for (int i = 0; i < 20; ++i)
            text += "| comment\n";
        return text + "[IBIS Ver] 4.2\n[File Name] x.ibs\n";
    }();
    const std::string beyond = std::string(118, ' ') + "[IBIS Ver] 4.2\n";
    const Row rows[] = {
        {twenty, IbisVersion::v4, 21},
        {"   [ibis_ver]   5.1", IbisVersion::v5, 1},
        {"[IBIS Ver]5.9", IbisVersion::v5, 1},
        {"[IBIS Ver]", IbisVersion::none, 1},
        {"[IBIS Ver] v2.1", IbisVersion::none, 1},
        {"[IBIS Version] 2.1", IbisVersion::none, 1},
        {"[File Name] x.ibs\n[IBIS Ver] 4.2", IbisVersion::none, 1},
        {"\n\nno keyword", IbisVersion::none, 3},
        {beyond, IbisVersion::none, 1}, // only 120 characters of a line are looked at
        {"", IbisVersion::none, 0},
    };
    for (const Row& row : rows) {
        Output out;
        kestrel::Run run(out);
        run.sources.texts["a.ibs"] = std::make_shared<const std::string>(row.text);
        std::uint32_t lines = 0;
        EXPECT_EQ(scanVersion(run, "a", FileKind::ibs, lines), row.version) << row.text;
        EXPECT_EQ(lines, row.lines) << row.text;
        EXPECT_EQ(out.text(), "");
    }
}

TEST(Reader, namesAreCompletedSplitAndBounded) {
    Output out;
    kestrel::Run run(out);
    const SourceText text = std::make_shared<const std::string>("x");
    run.sources.texts = {
        {"d/board.ibs", text}, {"d\\board.IBS", text}, {"LOUD/BOARD.EBD", text}, {"LOUD/PART.IBS", text}};

    EXPECT_EQ(openSource(run, "d/board", FileKind::ibs)->bare_name, "board.ibs");
    EXPECT_EQ(run.parse.directory, "d/");
    EXPECT_EQ(openSource(run, "board", FileKind::ibs)->path, "d/board.ibs"); // beside the last file
    EXPECT_EQ(openSource(run, "d\\board.IBS", FileKind::ibs)->path, "d\\board.IBS");
    EXPECT_EQ(openSource(run, "Loud/board.ebd", FileKind::ebd)->bare_name, "board.ebd");
    EXPECT_EQ(run.parse.directory, "LOUD/"); // companions are looked for in the case that was found
    EXPECT_EQ(openSource(run, "part", FileKind::ibs)->path, "LOUD/PART.IBS");
    EXPECT_EQ(out.text(), "");

    run.parse.directory.clear();
    const std::string longest(1020, 'n');
    for (const std::string& name : {longest, longest + "n", "d/" + longest})
        EXPECT_FALSE(openSource(run, name, FileKind::ibs));
    for (const FileKind kind : {FileKind::ibs, FileKind::pkg, FileKind::ebd, FileKind::ami})
        EXPECT_FALSE(openSource(run, "x.txt", kind));
    EXPECT_EQ(out.text(), "ERROR - Unable To Open File '" + longest +
                              ".ibs'\n"
                              "ERROR - Unable to append filename extension.\n"
                              "ERROR - Unable to assemble filename.\n"
                              "ERROR - File Name Requires '.ibs' Extension.\n"
                              "ERROR - File Name Requires '.pkg' Extension.\n"
                              "ERROR - File Name Requires '.ebd' Extension.\n"
                              "ERROR - File Name Requires '.ami' Extension.\n");
    // To stderr, where a death test looks.
    Output errors(stderr);
    kestrel::Run aborting(errors);
    EXPECT_EXIT(static_cast<void>(openSource(aborting, std::string(1024, 'n'), FileKind::pkg)),
                ::testing::KilledBySignal(SIGABRT), "^source\\.cpp:[0-9]+:assertion failed\\.\n$");
}

TEST(Reader, amiTextLosesItsCommentsAndKeepsItsStrings) {
    Output out;
    kestrel::Run run(out);
    const std::string text =
        "(root | a comment with a \"\n  (text \"one | two\nthree\" end) | gone\n" + std::string(500, ' ') + "\"open\n";
    Source source{
        .bytes = ByteSource(std::make_shared<const std::string>(text)), .path = "p.ami", .bare_name = "p.ami"};
    EXPECT_EQ(collectAmi(run, source),
              "(root \n  (text \"one | two\nthree\" end) \n" + std::string(500, ' ') + "\"open\n");
    EXPECT_EQ(out.text(), "ERROR - Unterminated string detected. Possibly started at line 4\n");
    EXPECT_FALSE(run.parse.long_lines);
}

constexpr std::string_view kHeader = "[IBIS Ver] 5.1\n[File Name] test.ibs\n[File Rev] 1\n";

TEST(Reader, aLongRunOfBlanksIsTheOneAbort) {
    const std::string text(kHeader);
    EXPECT_NE(checkText(text + std::string(120, ' ') + "\n[End]\n").find("File Failed"), std::string::npos);
    Output errors(stderr);
    kestrel::Run run(errors);
    run.sources.texts["test.ibs"] = std::make_shared<const std::string>(text + std::string(121, ' ') + "\n[End]\n");
    EXPECT_EXIT(static_cast<void>(checkFile(run, "test.ibs", FileKind::ibs)), ::testing::KilledBySignal(SIGABRT),
                "items\\.cpp:[0-9]+:assertion failed\\.\n$");
}

/// The report of a keyword that is tried behind a header, reduced to whether the reader knows it.
bool isKnown(std::string_view keyword, std::string_view version) {
    const std::string text = "[IBIS Ver] " + std::string(version) + "\n[File Name] test.ibs\n[File Rev] 1\n[" +
                             std::string(keyword) + "] text\n data 1 2 3\n";
    return checkText(text).find("Invalid Keyword") == std::string::npos;
}

TEST(Reader, everyKeywordIsKnownInItsVersionsAndHarmlessInAll) {
    struct Row {
        std::string_view keyword;
        std::string_view known; // one mark for each of 2.1, 3.2, 4.2, 5.1
    };
    const Row rows[] = {
        {"Pin Mapping", "yyyy"},          {"PIN_MAPPING", "yyyy"},       {"pin mapping", "yyyy"},
        {"Series Pin Mapping", "-yyy"},   {"Model Selector", "-yyy"},    {"Begin Board Description", "-yyy"},
        {"Receiver Thresholds", "--yy"},  {"Test Data", "--yy"},         {"External Circuit", "--yy"},
        {"Circuit Call", "--yy"},         {"Algorithmic Model", "---y"}, {"Begin EMI Component", "---y"},
        {"C Comp Corner", "---y"},        {"Composite Current", "---y"}, {"Number Of Sections", "-yyy"},
        {"Define Package Model", "yyyy"}, {"Not Key", "----"},           {"Comment Char", "yyyy"},
        {"Pin\tMapping", "----"},         {"Pin  Mapping", "----"},      {" Pin Mapping", "----"},
    };
    for (const Row& row : rows) {
        const std::string_view versions[] = {"2.1", "3.2", "4.2", "5.1"};
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(isKnown(row.keyword, versions[i]), row.known[i] == 'y') << row.keyword << " in " << versions[i];
    }
}

TEST(Reader, keywordsAreNamedByTheOldestTable) {
    Output out;
    kestrel::Run run(out);
    run.diagnostics.coded_form = true;
    EXPECT_EQ(keywordName(run.diagnostics, KeywordCode::component), "COMPONENT");
    EXPECT_EQ(keywordName(run.diagnostics, KeywordCode::packageManufacturer), "MANUFACTURER");
    EXPECT_EQ(keywordName(run.diagnostics, KeywordCode::notKey), "NOT_KEY");
    EXPECT_EQ(codesOf(out.text()), "");
    EXPECT_EQ(keywordName(run.diagnostics, KeywordCode::modelSpec), "Unknown enumerated keyword code");
    EXPECT_EQ(codesOf(out.text()), "B0904@");
}

TEST(Reader, keywordsThatComeInTheMiddle) {
    const std::string header = "[IBIS Ver] 4.2\n[File Name] test.ibs\n[File Rev] 1\n";
    const std::string model = "[Model] M\nModel_type Terminator\n[Voltage Range] 3 NA NA\n[GND Clamp]\n0 0 NA NA\n";
    const struct {
        std::string_view label;
        std::string text;
        std::string_view codes;
        FileKind kind = FileKind::ibs;
        std::string name = "test.ibs";
    } rows[] = {
        {"an unknown keyword ends the data and closes nothing",
         header + model + "[Nonsense]\n0 0 NA NA\n[POWER Clamp]\n0 0 NA NA\n1 0 NA NA\n[End]\n",
         "E0916@ E0907@ E1108 E0181 E4101 W0219"},
        {"the end of the file closes a table, then its model", header + model, "E0903 E1108 E0181 E4101 W0219"},
        {"a keyword of a model ends a submodel",
         header + "[Submodel] S\nSubmodel_type Dynamic_clamp\n[GND Clamp]\n-1 -1 NA NA\n0 0 NA NA\n"
                  "[Voltage Range] 3 NA NA\n[Pulldown]\n0 0 NA NA\n[End]\n",
         "E0102@ E2402@ E2403@ E4101 W0220"},
        {"the end of the file ends a state without its slash",
         header + "[Component] C\n[Manufacturer] M\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
                  "[Pin] signal_name model_name\n1 A POWER\n[Series Switch Groups]\nOn\n",
         "E0903 E0909@"},
        {"the oldest table has no keyword for a board's pins",
         "[IBIS Ver] 3.9\n[File Name] e.ebd\n[File Rev] 1\n[Begin Board Description] b\n[Manufacturer] m\n"
         "[Number Of Pins] 5\ndata\n[Pin List] signal_name\n[End]\n",
         "E1008@ E0916@ B0908@ B0908@ E0916@", FileKind::ebd, "e.ebd"},
    };
    for (const auto& row : rows) {
        Output out;
        kestrel::Run run(out);
        run.diagnostics.coded_form = true;
        run.sources.texts[row.name] = std::make_shared<const std::string>(row.text);
        checkFile(run, row.name, row.kind);
        EXPECT_EQ(codesOf(out.text()), row.codes) << row.label << "\n" << out.text();
    }
}

std::string readExample(const std::string& name) {
    std::ifstream file(std::string(KESTREL_EXAMPLES_DIR) + "/" + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(BadInput, everyTruncationOfASampleEndsInASummary) {
    const std::string sample = readExample("board.ibs");
    ASSERT_GT(sample.size(), 4000U);
    for (std::size_t size = 0; size < sample.size() - 6; ++size) {
        EXPECT_NE(checkText(sample.substr(0, size), "board.ibs").find("\nFile Failed\n"), std::string::npos) << size;
    }
    EXPECT_NE(checkText(sample, "board.ibs").find("\nErrors  : 0\n"), std::string::npos);
}

TEST(BadInput, noiseEndsInASummary) {
    std::mt19937 random(20261121);
    const std::string sample = readExample("board.ibs");
    for (int round = 0; round < 300; ++round) {
        std::string text = round % 3 == 0 ? std::string(kHeader) : sample;
        if (round % 3 == 0) {
            for (int i = 0; i < 2000; ++i)
                text.push_back(static_cast<char>(random() & 0xff));
        } else {
            // Bytes of the sample changed, or whole pieces moved to another place.
            for (int i = 0; i < 60; ++i) {
                if (round % 3 == 1) {
                    text[40 + random() % (text.size() - 40)] = "\n[]= |/.0\tNA"[random() % 12];
                } else {
                    text.insert(40 + random() % (text.size() - 40),
                                text.substr(40 + random() % (text.size() - 200), random() % 150));
                }
            }
        }
        EXPECT_NE(checkText(text).find("\nFile "), std::string::npos) << round;
    }
}

TEST(BadInput, longLinesAndManyLinesKeepTheirPlace) {
    const std::string megabyte(1 << 20, 'x');
    const std::string text = checkText(std::string(kHeader) + "[Notes] " + megabyte + "\n" + megabyte + "\n[" +
                                       megabyte + "]\n[Nonsense]\n");
    EXPECT_NE(text.find("ERROR (line    4) - Exceeds 120 chararacters.\nERROR (line    5) - Exceeds 120 chararacters.\n"
                        "ERROR (line    6) - Exceeds 120 chararacters.\n"
                        "ERROR (line    6) - Keyword Missing Ending Bracket (']').\n"
                        "ERROR (line    7) - Invalid Keyword: Nonsense\n"),
              std::string::npos);
}

/// How large a record may be whose opening line without a name is `line`: 30 bytes of memory for each of the file is
/// the limit. The allocator adds up to 24 to a record, and while the list of records grows its entries there take 24
/// more.
constexpr std::size_t largestRecord(std::string_view line) { return 30 * (line.size() + 1) - 24 - 24; }

TEST(BadInput, ofBareOpeningLinesTakesLittleMemory) {
    EXPECT_LE(sizeof(Mdl), largestRecord("[Model]"));
    EXPECT_LE(sizeof(SubMdl), largestRecord("[Submodel]"));
    EXPECT_LE(sizeof(Cmpnt), largestRecord("[Component]"));
}

TEST(Runs, shareNothing) {
    const std::string first = std::string(kHeader) + "[Comment Char] #_char\n[Component] A\n[Component] A\n";
    const std::string second = "[IBIS Ver] 2.1\n[File Name] test.ibs\n| comment\n[Component] A\n";
    const std::string alone = checkText(second);
    Output out_first;
    Output out_second;
    kestrel::Run run_first(out_first);
    kestrel::Run run_second(out_second);
    run_first.sources.texts["test.ibs"] = std::make_shared<const std::string>(first);
    run_second.sources.texts["test.ibs"] = std::make_shared<const std::string>(second);
    checkFile(run_first, "test.ibs", FileKind::ibs);
    checkFile(run_second, "test.ibs", FileKind::ibs);
    printSummary(run_second.diagnostics);
    EXPECT_EQ(out_second.text(), alone);
    EXPECT_EQ(currentRoot(run_second).components.size(), 1U);
    EXPECT_EQ(currentRoot(run_first).components.size(), 2U);
}

TEST(Roots, aFreedRootLeavesTheStackWhereverItStands) {
    Output out;
    kestrel::Run run(out);
    Ibis& bottom = createRoot(run);
    Ibis& middle = createRoot(run);
    const Ibis& top = createRoot(run);
    freeRoot(run, middle);
    EXPECT_EQ(&currentRoot(run), &top);
    freeRoot(run, currentRoot(run));
    EXPECT_EQ(&currentRoot(run), &bottom);
    freeRoot(run, bottom);
    EXPECT_TRUE(run.roots.empty());
}

} // namespace
} // namespace kestrel
