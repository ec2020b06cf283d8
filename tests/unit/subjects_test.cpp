// Whoever gets findings can place them: each names a line or the record that it is about, or is about the whole file.

#include "files.hpp"

#include <filesystem>
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
        924,  // parameter files: a string without its end,
        4624, // brackets without theirs,
        4652, // a parameter that is required
        1905, // a file that is referred to does not open
        4101, // no component
    };
    return kCodes;
}

TEST(Findings, haveALineOrARecord) {
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
        test.run.diagnostics.on_finding = [&](const Finding& finding) {
            if (finding.exact || finding.subject != nullptr) return;
            const MessageCode code = finding.code.value_or(0);
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
