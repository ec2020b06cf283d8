// Whoever gets findings can place them: each has a line of a file that is there, which is named or is that of the
// record that it is about, or it is about the whole file. And each is of a class that the list of messages names.

#include "files.hpp"
#include "findings/message_classes.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

/// What is about the whole file, or about another one.
const std::set<MessageCode>& ofWholeFile() {
    static const std::set<MessageCode> kCodes{
        900,  // no version that can be read
        903,  // no end
        4652, // a parameter of a parameter file that is required
        4101, // no component
    };
    return kCodes;
}

/// How many lines a file has, by its path; 0 when it is not there.
class LineCounts {
public:
    std::uint32_t of(std::string_view path) {
        const auto [at, is_new] = counts_.try_emplace(std::string(path));
        if (is_new && fs::is_regular_file(at->first)) {
            std::ifstream file(at->first, std::ios::binary);
            at->second = static_cast<std::uint32_t>(
                1 + std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
        }
        return at->second;
    }

private:
    std::map<std::string, std::uint32_t> counts_;
};

/// Where the findings of a check are, as "file:line code", with "?" behind a line that is not exact.
std::string placesOf(Files& files, const std::string& name) {
    std::string places;
    files.run.diagnostics.sink = [&places](const Finding& finding) {
        places.append(places.empty() ? "" : ", ").append(finding.file).push_back(':');
        appendInteger(places, finding.line);
        places.append(finding.exact ? " " : "? ").append(finding.code ? CodeText(finding.code).text() : finding.text);
    };
    files.check(name);
    return places;
}

// What the reader comes upon before it counts the line, or while it looks for the version, is in its own line and file.
TEST(Findings, areWhereTheyAreWhateverIsShown) {
    const std::string part =
        "[Component] C\n[Manufacturer] M\n[Package]\nR_pkg 0 NA NA\nL_pkg 0 NA NA\nC_pkg 0 NA NA\n"
        "[Pin] signal_name model_name\n1 VDD POWER\n";
    Files own;
    own.put("a.ibs", "|\n| \x01\n[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n" + part + "| \x02\xe9\n[End]\n");
    // The second line is read twice, the first time in search of the version.
    EXPECT_EQ(placesOf(own, "a.ibs"), "a.ibs:2 1917, a.ibs:2 1917, a.ibs:14 1917, a.ibs:14 1917");

    Files led;
    led.add("a.ibs", part + "[Package Model] p\n")
        .put("p.pkg", "|\n|\n|\x01\n[IBIS Ver] 4.2\n|[Define Package Model] p\n[Define Package Model] p\n");
    EXPECT_TRUE(placesOf(led, "a.ibs").starts_with("p.pkg:3 1917, p.pkg:3 1917, ")) << placesOf(led, "a.ibs");

    Files parameters;
    parameters.put("a.ami", "\n(a\n(b \x01\n \"c\n");
    EXPECT_EQ(placesOf(parameters, "a.ami"), "a.ami:3 1917, a.ami:4 924, a.ami:2 4624");
}

TEST(Findings, haveAFileAndALine) {
    LineCounts lines;
    std::map<MessageCode, std::string> without;
    std::set<MessageCode> of_file;
    int files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(KESTREL_CASES_DIR)) {
        const std::string path = entry.path().string();
        const std::optional<FileKind> kind = kindOfName(path);
        if (!entry.is_regular_file() || !kind) continue;
        ++files;
        TestRun test;
        test.run.diagnostics.silence_cautions = false;
        test.run.diagnostics.sink = [&](const Finding& finding) {
            const MessageCode code = finding.code.value_or(FindingCode{}).number;
            EXPECT_TRUE(finding.line >= 1 && finding.line <= lines.of(finding.file))
                << path << ": " << finding.file << ":" << finding.line << ": " << finding.text;
            EXPECT_TRUE(code == 0 || isReportedAs(code, levelOf(finding.severity))) << code;
            if (finding.exact || finding.subject != nullptr) return;
            if (ofWholeFile().contains(code))
                of_file.insert(code);
            else
                without.try_emplace(code, path + ": " + std::string(finding.text));
        };
        checkFile(test.run, path, *kind);
    }
    EXPECT_GT(files, 80);
    EXPECT_EQ(of_file, ofWholeFile());
    for (const auto& [code, first] : without)
        ADD_FAILURE() << code << " in " << first;
}

} // namespace
} // namespace kestrel
