// One test per case file, named after its path: `ctest -R Cases.reader/` runs the cases of one folder.
// With KESTREL_UPDATE_CASES=1 in the environment the expected outputs are rewritten; read the difference afterwards.

#include "case_runner.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <sys/resource.h>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using kestrel::cases::Programs;
using kestrel::cases::Texts;

struct Surroundings {
    Programs programs;
    Texts texts;
    bool update = false;
};

class CaseTest : public testing::Test {
public:
    CaseTest(fs::path file, const Surroundings& surroundings) : file_(std::move(file)), surroundings_(surroundings) {}

    void TestBody() override {
        const std::string problems =
            kestrel::cases::checkCaseFile(file_, surroundings_.programs, surroundings_.texts, surroundings_.update);
        EXPECT_TRUE(problems.empty()) << file_.string() << "\n" << problems;
    }

private:
    fs::path file_;
    const Surroundings& surroundings_;
};

std::vector<fs::path> findCases(const fs::path& directory) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.path().extension() == ".case") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// Characters that mean something in a test filter would make the test impossible to select.
bool isTestName(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '/' || c == '.';
    });
}

bool registerCases(const fs::path& directory, const Surroundings& surroundings) {
    for (const fs::path& file : findCases(directory)) {
        const std::string name = fs::relative(file, directory).replace_extension().generic_string();
        if (!isTestName(name)) {
            std::cerr << file.string() << ": use letters, digits, '_' and '.' only\n";
            return false;
        }
        testing::RegisterTest("Cases", name.c_str(), nullptr, nullptr, file.c_str(), 1,
                              [file, &surroundings]() -> testing::Test* { return new CaseTest(file, surroundings); });
    }
    return true;
}

// A program that never ends must not outlive its test; the limit passes to the programs that are run.
void limitTime() {
    constexpr rlim_t kSeconds = 120;
    const rlimit limit{kSeconds, kSeconds};
    setrlimit(RLIMIT_CPU, &limit);
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    limitTime();

    const fs::path directory = KESTREL_CASES_DIR;
    Surroundings surroundings;
    surroundings.programs = {{"kestrel", KESTREL_PATH_OF_KESTREL}, {"verimark", KESTREL_PATH_OF_VERIMARK}};
    surroundings.texts = kestrel::cases::readTexts(directory);
    const char* const update = std::getenv("KESTREL_UPDATE_CASES");
    surroundings.update = update != nullptr && std::string_view(update) == "1";
    if (!registerCases(directory, surroundings)) return EXIT_FAILURE;
    return RUN_ALL_TESTS();
}
