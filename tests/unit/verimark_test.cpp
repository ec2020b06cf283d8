// verimark's command line: what is told on the error output, and the exit statuses that go with it. What it prints of
// files that can be checked is in the cases.

#include "main/verimark.hpp"

#include "base/output.hpp"
#include "main/verimark_options.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

/// A folder with files to check.
class Verimark : public ::testing::Test {
protected:
    Verimark() {
        std::string pattern = (fs::temp_directory_path() / "verimark_XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        write("good.ami",
              "(good (Reserved_Parameters (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True))"
              "(GetWave_Exists (Usage Info) (Type Boolean) (Value True))))\n");
        write("bad.ami", "(\"bad)\n");
        write("empty.ibs", "");
        write("v1.ibs", "[IBIS Ver] 1.1\n[End]\n");
        write("none.pkg", "| no version\n[End]\n");
        write("old.ebd", "|\n|\n[IBIS Ver] 2.1\n[End]\n");
    }
    ~Verimark() override { fs::remove_all(folder_); }

    /// Names with a period are those of files in the folder.
    int run(const std::vector<std::string>& arguments) {
        std::vector<std::string> words;
        for (const std::string& argument : arguments)
            words.push_back(argument.find('.') == std::string::npos ? argument : path(argument));
        const std::vector<std::string_view> views(words.begin(), words.end());
        Output out;
        Output errors;
        const int status = runVerimark(out, errors, views);
        out_ = out.text();
        errors_ = errors.text();
        return status;
    }

    [[nodiscard]] std::string path(std::string_view name) const { return (folder_ / name).string(); }
    [[nodiscard]] std::string notChecked(std::string_view name) const {
        return "verimark: " + path(name) + ": not checked\n";
    }

    std::string out_;
    std::string errors_;

    void write(std::string_view name, std::string_view text) const { std::ofstream(folder_ / name) << text; }
    [[nodiscard]] std::string read(std::string_view name) const {
        std::ifstream file(folder_ / name);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    /// The names in the folder, without what a temporary one has behind its hyphen.
    [[nodiscard]] std::multiset<std::string> files() const {
        std::multiset<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
            const std::string name = entry.path().filename().string();
            names.insert(name.substr(0, name.find('-')));
        }
        return names;
    }

private:
    fs::path folder_;
};

TEST_F(Verimark, wrongCommandLines) {
    const std::string hint = "; try \"verimark --help\"\n";
    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(errors_, "verimark: no file given" + hint);
    EXPECT_EQ(run({"--"}), 2);
    EXPECT_EQ(errors_, "verimark: no file given" + hint);
    // Nothing is checked, wherever the wrong option stands; the nearest right one is named.
    const std::string help = "; did you mean \"--help\"?\n";
    const std::map<std::string, std::string> options = {
        {"-z", ": no such option" + hint},
        {"-h", ": no such option" + help},
        {"--HELP", ": no such option" + help},
        {"--helpx", ": no such option" + help},
        {"--output", ": needs a value, as in --output=FILE\n"},
        {"--output=", ": needs a value, as in --output=FILE\n"},
        {"-o", ": needs a value, as in --output=FILE\n"},
        {"--quiet=1", ": takes no value\n"},
        {"-format=gcc", ": no such option; did you mean \"--format\"?\n"},
        {"--base", ": no such option; did you mean \"--baseline\"?\n"},
        {"--xxxxxxxxxxxxxxxx", ": no such option" + hint},
        {"--format=xml", ": no such FORMAT; choose from text, gcc, json, jsonl, sarif, github, junit\n"},
        {"--format=jsno", ": no such FORMAT; did you mean \"json\"?\n"},
        {"--fail-on=never", ": no such LEVEL; choose from error, warning, advice\n"},
        {"--jobs=0", ": it takes a number from 1 to 1024\n"},
        {"--jobs=-1", ": it takes a number from 1 to 1024\n"},
        {"--jobs=1025", ": it takes a number from 1 to 1024\n"},
        {"--jobs=4294967297", ": it takes a number from 1 to 1024\n"},
        {"--jobs=2x", ": it takes a number from 1 to 1024\n"},
        {"--jobs=", ": needs a value, as in --jobs=N\n"},
        {"-j", ": needs a value, as in --jobs=N\n"},
        {"--job", ": no such option; did you mean \"--jobs\"?\n"},
        {"--max-memory=0", ": it takes a size such as 512K, 500M or 2G\n"},
        {"--max-memory=M", ": it takes a size such as 512K, 500M or 2G\n"},
        {"--max-memory=5MB", ": it takes a size such as 512K, 500M or 2G\n"},
        {"--max-memory=5T", ": it takes a size such as 512K, 500M or 2G\n"},
        {"--max-memory=-5", ": it takes a size such as 512K, 500M or 2G\n"},
        {"--max-memory=17179869184G", ": it takes a size such as 512K, 500M or 2G\n"},
        {"--maxmemory", ": no such option; did you mean \"--max-memory\"?\n"},
        {"--progress=maybe", ": no such WHEN; choose from auto, always, never\n"},
        {"--ignore=905,,1", ": there is no message \"\"; \"verimark --messages\" lists them\n"},
        {"--ignore=E99", ": there is no message \"E99\"; \"verimark --messages\" lists them\n"},
        {"--ignore=103", ": there is no message \"103\"; \"verimark --messages\" lists them\n"}, // reserved
    };
    for (const auto& [option, answer] : options) {
        EXPECT_EQ(run({"good.ami", option}), 2) << option;
        EXPECT_EQ(errors_, "verimark: " + option + answer);
        EXPECT_EQ(out_, "");
    }
    EXPECT_EQ(run({"--fromat=gcc"}), 2);
    EXPECT_EQ(errors_, "verimark: --fromat: no such option; did you mean \"--format\"?\n");
    EXPECT_EQ(run({"-fjsno"}), 2);
    EXPECT_EQ(errors_, "verimark: --format=jsno: no such FORMAT; did you mean \"json\"?\n");
}

TEST_F(Verimark, optionsInAllSpellings) {
    const std::string expected =
        path("bad.ami") + ":1: error: Unterminated string detected. Possibly started at line 1 [924]\n";
    for (const auto& words : std::vector<std::vector<std::string>>{{"-fgcc", "bad.ami"},
                                                                   {"-f", "gcc", "bad.ami"},
                                                                   {"bad.ami", "--format=gcc"},
                                                                   {"--format", "gcc", "bad.ami"}}) {
        EXPECT_EQ(run(words), 1);
        EXPECT_EQ(out_.substr(0, out_.find('\n') + 1), expected);
    }
    // The last one counts.
    EXPECT_EQ(run({"-fgcc", "-ftext", "good.ami"}), 0);
    EXPECT_TRUE(out_.ends_with("File Passed\n\n"));
}

TEST_F(Verimark, outputFiles) {
    EXPECT_EQ(run({"-fgcc", "bad.ami"}), 1);
    const std::string expected = out_;
    const std::string temporary = ".verimark";
    write("out.txt", "what was there before");
    EXPECT_EQ(run({"-fgcc", "-o", "out.txt", "bad.ami"}), 1);
    EXPECT_EQ(out_ + errors_, "");
    EXPECT_EQ(read("out.txt"), expected);
    // Nothing is left behind, and a wrong call leaves what was there.
    EXPECT_EQ(run({"-o", "out.txt", "--baseline=nosuch", "bad.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: nosuch: cannot be read: No such file or directory\n");
    EXPECT_EQ(read("out.txt"), expected);
    EXPECT_EQ(files().count(temporary), 0U);

    const std::string folder = path("no.folder");
    EXPECT_EQ(run({"-o", "no.folder/out.txt", "good.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: " + folder + "/out.txt: cannot be written: No such file or directory\n");
    EXPECT_EQ(out_, "");
    EXPECT_EQ(run({"-o", "bad.ami", "good.ami", "bad.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: " + path("bad.ami") + ": is a file to check\n");
    EXPECT_EQ(run({"-o", ".", "good.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: " + path(".") + ": is a folder\n");
    EXPECT_EQ(run({"-o", "/dev/full", "bad.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: /dev/full: cannot be written: No space left on device\n");
    EXPECT_EQ(run({"--write-baseline", "/dev/full", "bad.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: /dev/full: cannot be written: No space left on device\n");
    EXPECT_EQ(read("bad.ami"), "(\"bad)\n");

    // A link stays one, and the rights of what is replaced stay.
    fs::create_symlink("out.txt", path("link.txt"));
    fs::permissions(path("out.txt"), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(run({"-o", "link.txt", "--version"}), 0);
    EXPECT_TRUE(fs::is_symlink(path("link.txt")));
    EXPECT_EQ(read("out.txt"), "Verimark 5.1.4\n");
    EXPECT_EQ(fs::status(path("out.txt")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Verimark, baselinesThereAndBack) {
    const auto writePart = [this](std::string_view faults) {
        write("part.ibs",
              std::string("[IBIS Ver] 3.2\n[File Name] part.ibs\n[File Rev] 1\n")
                  .append(faults)
                  .append("[Component] C\n[Manufacturer] M\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
                          "[Pin] signal_name model_name\n1 A NC\n[End]\n"));
    };
    const std::string part = path("part.ibs");
    const std::string known = path("known.txt");
    const std::string left_out = "verimark: " + known + ": ";
    writePart("[Oh]\n[Ah]\n");
    EXPECT_EQ(run({"--write-baseline", "known.txt", "-fgcc", "part.ibs"}), 1);
    EXPECT_EQ(out_, part + ":4: error: Invalid Keyword: Oh [916]\n" + part + ":5: error: Invalid Keyword: Ah [916]\n");
    const std::string list = "# verimark baseline 1: path, code, message\n" + part + ", 916, Invalid Keyword: Ah\n" +
                             part + ", 916, Invalid Keyword: Oh\n";
    EXPECT_EQ(read("known.txt"), list);

    // Nothing is new, also where lines moved; the summary does not count what is left out.
    writePart("\n[Ah]\n|\n[Oh]\n");
    EXPECT_EQ(run({"--baseline", "known.txt", "part.ibs", "good.ami"}), 0);
    EXPECT_EQ(out_.find("Failed"), std::string::npos);
    EXPECT_EQ(errors_, left_out + "2 known findings left out\n");
    // One more of a kind is new.
    writePart("[Oh]\n[Ah]\n[Oh]\n");
    EXPECT_EQ(run({"--baseline", "known.txt", "-fgcc", "part.ibs"}), 1);
    EXPECT_EQ(out_, part + ":6: error: Invalid Keyword: Oh [916]\n");
    EXPECT_EQ(errors_, left_out + "2 known findings left out\n");
    // One that was mended is named.
    writePart("[Ah]\n");
    EXPECT_EQ(run({"--baseline", "known.txt", "-fgcc", "part.ibs"}), 0);
    EXPECT_EQ(out_, "");
    EXPECT_EQ(errors_, left_out + "1 known finding left out\nverimark: " + known + ":3: no longer found: " + part +
                           ", 916, Invalid Keyword: Oh\n");
    // Other files are not asked about it. What is known is written again.
    EXPECT_EQ(run({"--baseline", "known.txt", "good.ami"}), 0);
    EXPECT_EQ(errors_, left_out + "0 known findings left out\n");
    writePart("[Oh]\n[Ah]\n");
    EXPECT_EQ(run({"--baseline", "known.txt", "--write-baseline", "known.txt", "-fgcc", "part.ibs"}), 0);
    EXPECT_EQ(read("known.txt"), list);

    write("known.txt", list + "nothing\n");
    EXPECT_EQ(run({"--baseline", "known.txt", "part.ibs"}), 2);
    EXPECT_EQ(errors_, "verimark: " + known + ":4: damaged baseline: the line is not \"path, code, message\"\n");
    EXPECT_EQ(out_, "");
}

TEST_F(Verimark, whatIsIgnoredIsNoLessKnown) {
    EXPECT_EQ(run({"--write-baseline", "known.txt", "bad.ami"}), 1);
    EXPECT_EQ(run({"--baseline", "known.txt", "--ignore=924", "bad.ami"}), 0);
    EXPECT_EQ(errors_, "verimark: " + path("known.txt") + ": 1 known finding left out\n") << read("known.txt");
}

TEST_F(Verimark, baselineFilesThatAreNone) {
    // A device has no end.
    EXPECT_EQ(run({"--baseline=/dev/zero", "good.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: /dev/zero:1: damaged baseline: the line does not begin a baseline\n");
    write("known.txt", "# verimark baseline 1: path, code, message\n");
    for (const std::string option : {"--baseline", "--write-baseline"}) {
        EXPECT_EQ(run({"-o", "known.txt", option, "known.txt", "bad.ami"}), 2);
        EXPECT_EQ(errors_, "verimark: " + path("known.txt") + ": is the file of the baseline, too\n");
        EXPECT_EQ(run({option, "-", "bad.ami"}), 2);
        EXPECT_EQ(errors_, "verimark: " + option + "=-: it takes the name of a file; a file of this name is \"./-\"\n");
    }
    EXPECT_EQ(run({"-o", "new.txt", "--write-baseline", "./x/../new.txt", "bad.ami"}), 2);
    EXPECT_EQ(read("known.txt"), "# verimark baseline 1: path, code, message\n");
    EXPECT_FALSE(fs::exists(path("new.txt")));
}

TEST_F(Verimark, messagesAreListed) {
    EXPECT_EQ(run({"--messages"}), 0);
    EXPECT_NE(out_.find("\n 921  warning           IBIS files should not contain tab characters.  [tab-character]\n"),
              std::string::npos);
    EXPECT_NE(out_.find("\n4632  error,warning     "), std::string::npos);
    EXPECT_EQ(out_.find("Reserved."), std::string::npos);
    EXPECT_TRUE(out_.starts_with(" 100  -                 Unable to Allocate Memory: %s %d\n"));
    EXPECT_EQ(run({"-fjson", "--messages"}), 0);
    EXPECT_NE(out_.find("\n{\"code\":\"921\",\"classes\":[\"warning\"],\"text\":\"IBIS files should not contain "
                        "tab characters.\",\"topic\":\"tab-character\"}"),
              std::string::npos);
}

/// Files that cannot be compared, and calls that ask for it in a wrong way. What is told of others is in the cases.
TEST_F(Verimark, comparesOrSaysWhyNot) {
    const std::string head = "[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n";
    write("a.ibs", head + "[End]\n");
    write("b.ibs", head + "[Model] m\nModel_type Terminator\nC_comp 1p NA NA\n[End]\n");
    EXPECT_EQ(run({"--compare", "a.ibs", "a.ibs"}), 0);
    EXPECT_EQ(run({"--compare", "a.ibs", "b.ibs"}), 1);
    EXPECT_NE(out_.find("\nModel m: added\n"), std::string::npos) << out_;
    EXPECT_EQ(errors_, "");
    // As of diff, what cannot be read is trouble; so is a version that is not checked.
    for (const char* const name : {"empty.ibs", "missing.ibs"}) {
        EXPECT_EQ(run({"--compare", "a.ibs", name}), 2);
        EXPECT_EQ(out_, "");
        EXPECT_EQ(errors_, "verimark: " + path(name) + ": cannot be read, or is empty; not compared\n");
    }
    for (const char* const name : {"v1.ibs", "none.pkg"}) {
        EXPECT_EQ(run({"--compare", "-fjson", name, "a.ibs"}), 2);
        EXPECT_NE(out_.find("\"verdict\":\"not compared\""), std::string::npos) << out_;
        EXPECT_EQ(errors_, "verimark: " + path(name) + ": its version is not checked; not compared\n");
    }
    EXPECT_EQ(run({"--compare", "a.ibs", "good.ami"}), 2);
    EXPECT_EQ(errors_, "verimark: " + path("good.ami") + ": only .ibs and .pkg files are compared\n");
    const std::map<std::vector<std::string>, std::string> wrong{
        {{"--compare", "a.ibs"}, "--compare: needs two files or two folders, as in --compare OLD NEW"},
        {{"--compare", "-", "-"}, "--compare: needs two files or two folders, as in --compare OLD NEW"},
        {{"--compare", "-fsarif", "a.ibs", "b.ibs"}, "--format=sarif: what changed is written as text or json"},
        {{"--compare", "--tolerance=-1", "x", "y"}, "--tolerance=-1: it takes per cent from 0 to 100"},
        {{"--compare", "--tolerance=nan", "x", "y"}, "--tolerance=nan: it takes per cent from 0 to 100"},
    };
    for (const auto& [arguments, text] : wrong) {
        EXPECT_EQ(run(arguments), 2) << text;
        EXPECT_EQ(errors_, "verimark: " + text + "\n");
    }
    // An output is written whole, and never over what is compared.
    EXPECT_EQ(run({"--compare", "a.ibs", "b.ibs", "-o", "changes.txt"}), 1);
    EXPECT_TRUE(read("changes.txt").ends_with("1 model added\n\n"));
    EXPECT_EQ(run({"--compare", "a.ibs", "b.ibs", "-o", "b.ibs"}), 2);
    EXPECT_EQ(errors_, "verimark: " + path("b.ibs") + ": is a file to check\n");
}

/// The manual page has each option in the order of the help, with the name of its value.
TEST(Manual, listsTheOptions) {
    std::ifstream file(fs::path(KESTREL_SOURCE_DIR) / "../man/verimark.1.in");
    std::vector<std::string> listed;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(".BR \\-") || line.starts_with(".B \\-\\-")) listed.push_back(line);
    std::vector<std::string> expected;
    const auto escaped = [](std::string_view text) {
        std::string result;
        for (const char c : text)
            result.append(c == '-' ? "\\-" : std::string(1, c));
        return result;
    };
    for (const OptionRow& row : optionRows()) {
        if (row.group == OptionGroup::hidden) continue;
        std::string line = row.value.empty() ? ".B " : ".BR ";
        if (row.letter != 0) line += escaped(std::string{'-', row.letter}) + " \", \" ";
        line += escaped("--" + std::string(row.name));
        if (!row.value.empty()) line += " =\\fI" + std::string(row.value) + "\\fR";
        expected.push_back(line);
    }
    expected.emplace_back(".B \\-\\-");
    EXPECT_EQ(listed, expected);
}

TEST_F(Verimark, filesThatAreNotChecked) {
    EXPECT_EQ(run({"nosuch.ibs"}), 2);
    EXPECT_EQ(out_, "ERROR - Unable To Open File '" + path("nosuch.ibs") + "'\n");
    EXPECT_EQ(errors_, notChecked("nosuch.ibs"));
    EXPECT_EQ(run({"empty.ibs"}), 2);
    EXPECT_EQ(out_, "");
    EXPECT_EQ(errors_, notChecked("empty.ibs"));
    EXPECT_EQ(run({"good.txt"}), 2);
    EXPECT_EQ(out_, "ERROR - File Name Requires '.ibs' Extension.\n");
    EXPECT_EQ(run({"none.pkg"}), 1);
    EXPECT_EQ(out_, "ERROR (line    2) - IBIS Version Cannot Be Determined.  Exiting.\n");
    EXPECT_EQ(errors_, notChecked("none.pkg"));
    EXPECT_EQ(run({"old.ebd"}), 1);
    EXPECT_EQ(out_, "ERROR (line    3) - Version not valid for .ebd files.  Exiting.\n");
    EXPECT_EQ(errors_, notChecked("old.ebd"));
    EXPECT_EQ(run({"nosuch.ami"}), 2);
    EXPECT_EQ(out_, "\nChecking " + path("nosuch.ami") +
                        " for IBIS 5.1 Compatibility...\n\n"
                        "ERROR - Unable To Open File '" +
                        path("nosuch.ami") + "'\n\nErrors  : 1\n\nFile Failed\n\n");
    EXPECT_EQ(errors_, notChecked("nosuch.ami"));
    EXPECT_EQ(run({std::string(1024, 'a') + ".pkg"}), 2);
    EXPECT_EQ(out_, "");
}

TEST_F(Verimark, theWorstStatusCounts) {
    EXPECT_EQ(run({"good.ami", "good.ami"}), 0);
    EXPECT_EQ(errors_, "");
    EXPECT_EQ(run({"bad.ami", "good.ami"}), 1);
    EXPECT_EQ(run({"v1.ibs"}), 1);
    EXPECT_EQ(run({"nosuch.ibs", "old.ebd", "bad.ami", "good.ami"}), 2);
    EXPECT_EQ(errors_, notChecked("nosuch.ibs") + notChecked("old.ebd"));
    EXPECT_EQ(run({"bad.ami", "empty.ibs"}), 2);
}

TEST_F(Verimark, optionsEnd) {
    EXPECT_EQ(run({"--", "--help"}), 2);
    EXPECT_EQ(out_, "ERROR - Unable To Open File '--help.ibs'\n");
    EXPECT_EQ(run({"--version", "nosuch.ibs"}), 0);
    EXPECT_EQ(out_, "Verimark 5.1.4\n");
}

} // namespace
} // namespace kestrel
