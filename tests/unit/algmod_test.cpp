// Parameter files of algorithmic models: brackets, sections, parameters and the reserved ones.

#include "ami/check.hpp"
#include "files.hpp"

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// What the text of a parameter file, its comments gone, is answered with.
std::string printedFor(std::string_view text, bool coded) {
    TestRun test(coded);
    checkAmi(test.run, text);
    return test.out.text();
}

std::string codesFor(std::string_view text) { return codesOf(printedFor(text, true)); }

constexpr std::string_view kVersion51 = "(AMI_Version (Usage Info) (Type String) (Value \"5.1\"))";
constexpr std::string_view kRequired =
    "(Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True))"
    "(GetWave_Exists (Usage Info) (Type Boolean) (Value False))";

/// A whole file without a fault of its own.
std::string file(std::string_view version, std::string_view reserved, std::string_view specific) {
    std::string text("(m (Reserved_Parameters ");
    text.append(version).append(kRequired).append(reserved).append(")");
    if (!specific.empty()) text.append("(Model_Specific ").append(specific).append(")");
    return text.append(")");
}

struct Row {
    std::string_view text;
    std::string_view codes;
};

TEST(AmiBrackets, areReportedAndEndTheChecks) {
    const std::initializer_list<Row> rows{
        {"", "E4620"},
        {" \n\t\n", "E4620"},
        {"word (m)", "E4621@"},
        {"\"text\"", "E4621@"},
        {") (m)", "E4621@"},
        {"(m", "E4624"},
        {"(m (Reserved_Parameters (a", "E4624"},
        {"(", "E4624"},
        {"(m))", "E4625@"},
        {"(m) word (more) words", "E4625@"},
        {"(m ())", "E4622@"},
        {"(m ((a)))", "E4622@"},
        {"(m () (", "E4622@ E4624"},
        {"(m (s (a (Table (1) () ((2)))) (", "E4624"}, // only the rows of a table go without a name
        {"(m (s (a (Table (1 (()))))))", "E4622@ E4622@"},
        {"(m (Table ()))", "E4622@"},
        {"(m (s (Table ())))", "E4622@"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(codesFor(row.text), row.codes) << row.text;
    EXPECT_EQ(printedFor("\n(m\n (Reserved_Parameters\n", false),
              "ERROR - 2 closing ')' missing, the first unclosed '(' is on line 2\n");
}

TEST(AmiSections, areFoundInAnyOrderOnce) {
    const std::string reserved = file(kVersion51, "", "");
    const std::string inside = reserved.substr(3, reserved.size() - 4);
    const std::string first(kRequired);
    const std::initializer_list<std::pair<std::string, std::string_view>> rows{
        {reserved, ""},
        {"(\"any name\" (Description \"text\") " + inside + ")", ""},
        {"(m)", "E4627"},
        {"(m (Description text) word (Other) " + inside + ")", "E4631@ E4630@ E4626@"},
        {"(m (Description \"a\") (Description \"b\") " + inside + ")", "E4628@"},
        {"(m (model_specific) " + inside + ")", "E4629@ E4656@ W4647@"},
        {"(m (Model_Specific (b (Description \"only\"))) " + inside + ")", "E4656@ W4647@"},
        {"(m (Model_Specific (p (Usage Out) (Type Float))) (Reserved_Parameters " + first + "))", ""},
        {"(m " + inside + "(Model_Specific (p (Usage Out) (Type Float))) (Model_Specific (p (Usage Out) (Type UI))))",
         "E4628@ E4632@"},
        {"(m (Model_Specific) (Model_Specific) " + inside + ")", "E4656@ W4647@ E4628@ W4647@"},
        {"(m " + inside +
             "(Model_Specific (Description \"a\") (p (Usage Out) (Type UI)))"
             "(Model_Specific (Description \"b\") (q (Usage Out) (Type UI)) (Description \"c\")))",
         "E4628@ E4632@"},
        {"(m (Reserved_Parameters))", "W4647@ E4652 E4652"},
    };
    for (const auto& [text, codes] : rows)
        EXPECT_EQ(codesFor(text), codes) << text;
}

TEST(AmiParameters, standInBranches) {
    const std::initializer_list<Row> rows{
        {"(b)", "W4647@"},
        {"(b word)", "E4630@"},
        {"(b (c) (Description \"text\"))", "W4647@"},
        {"(b (c (p (Usage Out) (Type UI))) (p (Usage Out) (Type UI)))", ""},
        {"(b (p (Usage Out) (Type UI)) (p) (p (Usage Out) (Type UI)))", "E4632@ W4647@ E4632@"},
        {"(b (Range (Usage Out) (Type UI)) (Table (Usage Out) (Type UI)) (Type (Usage Out) (Type UI)))", ""},
        {"(Tx_Jitter (Usage Out) (Type UI)) (b (GetWave_Exists (Usage Out) (Type UI)))", "W4660@ W4660@"},
        {"(b (Table (q (Usage Out) (Type UI))))", ""},
        {"(b (Table (Labels a) (1)))", "E4633@ E4633@"}, // nothing but a parameter holds a table
        {"(b (Table (Description \"text\")))", "W4647@"},
        {"(p (Usage Out) (Type Float) (Table (Table ())))", "E4622@"},
        {"(p (Usage Out) (Type String) (Table (a (Format Table () ()))))", "E4622@ E4622@"},
        {"(b (Table (q (Usage Bad) (Type UI)) ()))", "E4622@"},
        {"(b (Format Value (x (Usage Out) (Type UI))))", "E4630@"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(codesFor(file(kVersion51, "", row.text)), row.codes) << row.text;
}

TEST(AmiParameters, reservedOnesAreCheckedAgainstTheirTable) {
    const std::initializer_list<Row> rows{
        {"(Ignore_Bits (Usage Out) (Type Integer) (Range 3 0 5))", ""},
        {"(Ignore_Bits (Usage In) (Type Float) (Table (1)))", "E4653@ E4654@ W4655@"},
        {"(Tx_Jitter (Usage Info) (Type UI) (Value 1))", "W4655@"},
        {"(Tx_Jitter (Usage Info) (Type UI) (Default 1))", "W4655@"},
        {"(Tx_Jitter (Usage Info) (Type UI) (format Gaussian 0 1) (Default 1))", "E4645@"},
        {"(Ignore_Bits (Usage In (x)) (Type Float (x)) (Value 1))", "E4645@ E4645@ E4653@ E4654@"},
        {"(Rx_Clock_PDF (Usage Info) (Type Float) (Table (-1 0.5) (1 0.5)))", ""},
        {"(Max_Init_Aggressors (Usage Info) (Type Integer) (Default -1))", "E4661@"},
        {"(Max_Init_Aggressors (Usage Info) (Type Integer) (Default -1.5))", "E4638@"},
        {"(Ignore_Bits (Usage Info) (Type Integer) (List -1 2))", ""},
        {"(Ignore_Bits (Usage Info) (Type Integer) (Value (-1)))", "E4645@"},
        {"(Ignore_Bits (Usage Info) (Type Integer) (Range 1 0 2) (Default -1))", "W4642@ E4661@"},
        {"(Ignore_Bits (Usage Info) (Type Integer) (Value -1) (Default x))", "W4648@ E4638@ E4661@"},
        {"(Ignore_Bits (Usage Info) (Type Integer) (Gaussian 0 1))", "E4639@"},
        {"(Tx_DCD (Usage Info) (Type UI String) (Table (1 a)))", "E4654@ W4655@"},
        {"(Tx_DCD (Usage Info) (Type UI) (Value 1)) (tx_dcd (Usage Info) (Type UI) (Value 1))", "E4632@ E4662@"},
        {"(Max_Init_Aggressors (Usage Out) (Type Integer) (Value 1))", "E4653@"},
        {"(Use_Init_Output (Usage Info) (Type Boolean) (Value True))", "W4658@"},
        {"(ignore_bits (Usage In) (Type Integer) (Value 1))", "E4662@ E4653@"},
        {"(Tx_Rj (Usage In) (Type Float) (Value x))", "W4651@ E4638@"},
        {"(Mine (Usage In) (Type Float) (Value 1))", "E4650@"},
        {"(b (Mine (Usage In) (Type Float) (Value 1)))", "E4649@"},
        {"(GetWave_Exists (Usage Info) (Type Boolean) (Value True))", "E4632@"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(codesFor(file(kVersion51, row.text, "")), row.codes) << row.text;
    EXPECT_EQ(codesFor("(m (Reserved_Parameters (GetWave_Exists (x (Usage Out) (Type UI)))))"), "E4649@ E4652");
    EXPECT_EQ(codesFor("(m (Reserved_Parameters (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value False))"
                       "(GetWave_Exists (Usage Info) (Type Boolean) (Format Value False))))"),
              "W4659");
    EXPECT_EQ(codesFor("(m (Reserved_Parameters (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value \"False\"))"
                       "(GetWave_Exists (Usage Info) (Type Boolean) (Value False))))"),
              "E4638@");
    EXPECT_EQ(codesFor("(m (Reserved_Parameters (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value False)"
                       "(Default x)) (GetWave_Exists (Usage Info) (Type Boolean) (Value False))))"),
              "E4638@ W4659");
}

TEST(AmiParameters, areReadByTheVersionOfTheirFile) {
    constexpr std::string_view kLater = "(ami_version (Usage Info) (Type String) (Value 6.0))";
    constexpr std::string_view kOdd = "(AMI_Version (Usage Info) (Type String) (Value \"4.2\"))";
    constexpr std::string_view kWords = "(p (Usage New) (Type Float) (Tip 1) (Value 1))";
    constexpr std::string_view kOldWays =
        "(p (Usage In) (Type Float) (Corner 1 2)) (p (Usage In) (Type Float) (Value 1)"
        "(Default 1))";
    EXPECT_EQ(codesFor(file("", "(Use_Init_Output (Usage Info) (Type Boolean) (Value True))", kOldWays)), "W4632@");
    EXPECT_EQ(codesFor(file(kVersion51, "", kOldWays)), "E4637@ E4632@ W4648@");
    constexpr std::string_view kUsages =
        "(p (Usage Inout) (Type Float) (Value 1)) (q (Type Float) (Value 1)) (r (Usage INOUT) (Type Float) (Value 1))";
    EXPECT_EQ(codesFor(file("", "", kUsages)), "W4633@ E4636@");
    EXPECT_EQ(codesFor(file(kVersion51, "", kUsages)), "E4636@ E4633@ E4636@");
    // Whole numbers are compared exactly, however large.
    EXPECT_EQ(codesFor(file(kVersion51, "",
                            "(p (Usage In) (Type Integer) (List 100000000000000) (Default 100000000000001))")),
              "W4642@");
    constexpr std::string_view kNewer = "(Tx_Rj (Usage Info) (Type Float) (List 1 2) (List_Tip one))";
    EXPECT_EQ(codesFor(file("", kNewer, "")), "W4651@ W4651@ E4637@");
    EXPECT_EQ(codesFor(file(kLater, kNewer, "")), "E4662@ W4657@ E4637@");
    EXPECT_EQ(codesFor(file(kLater, "(Mine (Usage In) (Type Float) (Value 1))", kWords)), "E4662@ W4657@");
    EXPECT_EQ(codesFor(file(kLater, "", "(p (usage In) (Type (Float)) (Value 1))")), "E4662@ W4657@ E4633@ E4633@");
    EXPECT_EQ(codesFor(file("(AMI_Version (Usage Info) (Type String) (List \"5.0\") (Value \"6.0\"))", "",
                            "(p (Usage New) (Type Float) (Value 1))")),
              "E4634@ W4655@ E4635@");
    EXPECT_EQ(
        codesFor(file(kLater, "(Tx_DCD (Usage Info) (Type UI (x)) (Format New 1))",
                      "(p (Usage In) (Type Float (x 1)) (Table (1 2))) (q (Usage In) (Type Float) (Default (x)))")),
        "E4662@ W4657@");
    EXPECT_EQ(codesFor(file("(AMI_Version (Usage Info) (Type Boolean) (Value 5.2))", "", "")), "E4638@ E4654@");
    EXPECT_EQ(codesFor(file("(AMI_Version (Usage Info) (Type String) (List \"5.1\") (Default \"6.0\"))", "", kWords)),
              "W4642@ W4655@ E4635@ E4645@");
    for (const std::string_view value :
         {"(Default (x) \" 6.0\")", "(Value (x) 6.0.1)", "(Value 5.1.1)", "(Format Value (x) 6.0)"}) {
        const std::string version = "(AMI_Version (Usage Info) (Type String) " + std::string(value) + ")";
        EXPECT_EQ(codesFor(file(version, "", kWords)), "W4657@") << value;
    }
    EXPECT_EQ(codesFor(file(kOdd, "(Mine (Usage In) (Type Float) (Value 1))", kWords)), "W4657@ E4650@ E4635@ E4645@");
}

TEST(AmiTree, takesAnyPieceOfTheExample) {
    std::ifstream file(std::string(KESTREL_EXAMPLES_DIR) + "/receiver.ami");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const auto check = [](std::string_view piece) { return checkText(piece, "piece.ami"); };
    ASSERT_TRUE(check(text).ends_with("File Passed\n"));
    for (std::size_t size = 0; size < text.rfind(')'); ++size) {
        EXPECT_TRUE(check(text.substr(0, size)).ends_with("File Failed\n")) << size;
        std::string changed(text);
        changed.replace(size, 1 + size % 7, 1 + size % 3, "()\"x "[size % 5]);
        const std::string printed = check(changed);
        EXPECT_EQ(printed.find("BUG"), std::string::npos) << changed;
        EXPECT_TRUE(printed.ends_with("File Passed\n") || printed.ends_with("File Failed\n")) << changed;
    }
}

TEST(AmiTree, takesAnyDepthAndLength) {
    constexpr std::size_t kDepth = 200000;
    std::string deep;
    for (std::size_t i = 0; i < kDepth; ++i)
        deep.append("(b ");
    EXPECT_EQ(codesFor(file(kVersion51, "", deep + std::string(kDepth, ')'))), "W4647@");
    EXPECT_EQ(printedFor(deep, false), "ERROR - 200000 closing ')' missing, the first unclosed '(' is on line 1\n");

    // Faults of things with a long name, and many names in one branch.
    std::string many = "(" + std::string(100000, 'n');
    for (int i = 0; i < 20000; ++i)
        many.append(" w (b").append(std::to_string(i)).append(" w)");
    EXPECT_EQ(codesFor(file(kVersion51, "", many + ")")).size(), 40000 * std::string_view("E4630@ ").size() - 1);

    // Nodes without a name, first and last in each of many tables within tables: told in the order of the file.
    std::string tables;
    for (int i = 0; i < 20000; ++i)
        tables.append("(Table ()\n");
    for (int i = 0; i < 20000; ++i)
        tables.append("())\n");
    const std::string printed = printedFor(file(kVersion51, "", "(b " + tables + ")"), false);
    EXPECT_TRUE(
        printed.starts_with("ERROR (line    1) - Missing name after '('\n"
                            "ERROR (line    2) - Missing name after '('\n"));
    EXPECT_TRUE(
        printed.ends_with("ERROR (line 39999) - Missing name after '('\n"
                          "ERROR (line 40000) - Missing name after '('\n"));

    // A long name is shown in part, and a string as far as its line goes.
    const std::string name(100000, 'n');
    EXPECT_EQ(printedFor(file(kVersion51, "", "(" + name + " word)"), false),
              "ERROR (line    1) - Unexpected text 'word' in '" + name.substr(0, 120) + "'\n");
    EXPECT_EQ(printedFor(file(kVersion51, "", "\"two\nlines\"\n(b)"), false),
              "ERROR (line    1) - Unexpected text 'two' in 'Model_Specific'\n"
              "WARNING (line    3) - 'b' holds no parameters\n");
}

TEST(AlgorithmicModels, stayInTheirFolderWhereThatIsWanted) {
    // The last two are in the folder, however they are written.
    const std::vector<std::string> names{"../q.ami",  "/q.ami",          "inner/../../q.ami",
                                         "..\\q.ami", "inner/../in.ami", "./on.ami"};
    std::string text = "[IBIS Ver] 5.1\n[Model] M\n[Algorithmic Model]\n";
    for (const std::string& name : names)
        text.append("Executable Linux_gcc_64 a.so ").append(name).append("\n");
    for (const bool stays : {true, false}) {
        Files files;
        files.run.ami_files.stay_in_folder = stays;
        for (const std::string path : {"q.ami", "/q.ami", "folder/../q.ami", "folder/in.ami", "folder/inner/../in.ami",
                                       "folder/..\\q.ami", "folder/inner/../../q.ami", "folder/./on.ami"})
            files.put(path, "(p\n");
        const std::string& printed =
            files.put("folder/a.ibs", text + "[End Algorithmic Model]\n[End]\n").check("folder/a.ibs");
        for (std::size_t i = 0; i < names.size(); ++i) {
            const bool outside = stays && i < 4;
            EXPECT_EQ(printed.find("'" + names[i] + "' of Model 'M' is outside") != std::string::npos, outside)
                << names[i];
        }
        EXPECT_EQ(printed.find("q.ami for IBIS") == std::string::npos, stays) << printed;
        EXPECT_NE(printed.find("on.ami for IBIS"), std::string::npos) << printed;
    }
}

TEST(AlgorithmicModels, leaveTheReaderAsItWas) {
    Files files;
    const kestrel::Run& run = files.run;
    files.put("folder/board.ibs",
              "[IBIS Ver] 5.1\n[Comment Char] #_char\n[Model] M\n[Algorithmic Model]\n"
              "Executable Linux_gcc_64 a.so inner/p.ami # in a folder\n"
              "Executable Linux_gcc_32 a.so ././inner/./p.ami\n"
              "Executable Linux_gcc_32 a.so inner/../q.ami\n"
              "Executable Linux_gcc_32 a.so Q.AMI\n[End Algorithmic Model]\n[End]\n");
    files.put("folder/inner/p.ami", "(p | not a root\n");
    files.put("folder/q.ami", "\n\n\"open | string\n");
    const std::string& printed = files.check("folder/board.ibs");
    EXPECT_NE(printed.find("\nChecking folder/inner/p.ami for IBIS 5.1 Compatibility...\n\nERROR - 1 closing"),
              std::string::npos);
    // Not kept under this spelling, and known for the same without being looked for.
    EXPECT_EQ(printed.find("././inner"), std::string::npos);
    EXPECT_NE(printed.find("WARNING - Parameter file 'inner/../q.ami' of Model 'M' was not found"), std::string::npos);
    EXPECT_NE(printed.find("\nChecking Q.AMI for IBIS 5.1 Compatibility...\n\n"
                           "ERROR - Unterminated string detected. Possibly started at line 3\n"
                           "ERROR (line    3) - Expecting '(' , found 'open | string'\n"),
              std::string::npos);
    EXPECT_EQ(run.parse.directory, "folder/");
    EXPECT_EQ(run.parse.file_name, "board.ibs");
    EXPECT_EQ(run.parse.line, 10U);
    EXPECT_EQ(run.parse.kind, FileKind::ibs);
    EXPECT_EQ(run.parse.comment, '#');
    EXPECT_FALSE(run.parse.long_lines);
}

} // namespace
} // namespace kestrel
