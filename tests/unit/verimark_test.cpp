// verimark's command line: what is told on the error output, and the exit statuses that go with it. What it prints of
// files that can be checked is in the cases.

#include "main/verimark.hpp"

#include "base/output.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
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

    int run(std::initializer_list<std::string> arguments) {
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

private:
    void write(std::string_view name, std::string_view text) const { std::ofstream(folder_ / name) << text; }

    fs::path folder_;
};

TEST_F(Verimark, wrongCommandLines) {
    const std::string hint = "; try \"verimark --help\"\n";
    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(errors_, "verimark: no file given" + hint);
    EXPECT_EQ(run({"--"}), 2);
    EXPECT_EQ(errors_, "verimark: no file given" + hint);
    // Nothing is checked, wherever the wrong option stands.
    for (const std::string option : {"-", "-h", "--HELP", "--helpx"}) {
        EXPECT_EQ(run({"good.ami", option}), 2);
        EXPECT_EQ(errors_, "verimark: " + option + ": no such option" + hint);
        EXPECT_EQ(out_, "");
    }
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
