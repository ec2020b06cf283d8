// The search for package models beside a file: what is found, that a folder is looked through once for all who ask, and
// what cannot be read.

#include "files.hpp"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

std::string defining(std::string_view name) { return "[Define Package Model] " + std::string(name) + "\n"; }

/// What a search found, as "file: name, file: name".
std::string found(const PkgDirectory& directory) {
    std::string text;
    for (const PkgName& name : directory.names)
        text.append(text.empty() ? "" : ", ").append(directory.files[name.file]).append(": ").append(name.name);
    return text;
}

class PkgFolder : public ::testing::Test {
protected:
    PkgFolder() {
        std::string pattern = (fs::temp_directory_path() / "kestrel_XXXXXX").string();
        folder_ = std::string(mkdtemp(pattern.data())) + "/";
    }
    ~PkgFolder() override { fs::remove_all(folder_); }
    void put(const std::string& name, std::string_view text) const { std::ofstream(folder_ + name) << text; }

    std::string folder_;
    SourceStore none_;
};

TEST_F(PkgFolder, isListedAndScannedOnce) {
    put("b.pkg", "| a remark\n" + defining("beta  | remark") + defining("alpha"));
    put("A.PKG", "[define_package model]gamma\r\n [DEFINE PACKAGE_MODEL] delta"); // indented, and without line end
    put("no.ibs", defining("none"));
    PkgSearch search;
    const auto first = search.directory(none_, folder_);
    EXPECT_EQ(first->files, (std::vector<std::string>{"A.PKG", "b.pkg"}));
    EXPECT_EQ(found(*first), "b.pkg: alpha, b.pkg: beta  | remark, A.PKG: delta, A.PKG: gamma");
    // What comes to the folder later, and what changes, is not seen by who asks again.
    put("c.pkg", defining("epsilon"));
    put("b.pkg", "");
    EXPECT_EQ(search.directory(none_, folder_), first);
    PkgSearch other;
    EXPECT_EQ(found(*other.directory(none_, folder_)), "A.PKG: delta, c.pkg: epsilon, A.PKG: gamma");
}

TEST_F(PkgFolder, passesOverWhatCannotBeRead) {
    put("good.pkg", defining("good"));
    fs::create_directory(folder_ + "folder.pkg");
    fs::create_symlink("nowhere", folder_ + "link.pkg");
    ASSERT_EQ(mkfifo((folder_ + "pipe.pkg").c_str(), 0600), 0);
    PkgSearch search;
    EXPECT_EQ(found(*search.directory(none_, folder_)), "good.pkg: good");
    EXPECT_TRUE(search.directory(none_, folder_ + "nowhere/")->files.empty());
    EXPECT_TRUE(search.directory(none_, folder_ + "good.pkg/")->files.empty());
}

TEST_F(PkgFolder, isSearchedOnceByManyThreads) {
    for (int i = 0; i < 50; ++i)
        put("p" + std::to_string(i) + ".pkg", defining("m" + std::to_string(i)));
    // More folders than are kept, beside the one that all ask for now and then.
    constexpr int kFolders = 100;
    for (int i = 0; i < kFolders; ++i) {
        fs::create_directory(folder_ + std::to_string(i));
        put(std::to_string(i) + "/own.pkg", defining("own" + std::to_string(i)));
    }
    PkgSearch search;
    const auto common = search.directory(none_, folder_);
    EXPECT_EQ(common->names.size(), 50U);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&, thread] {
            for (int step = 0; step < kFolders; ++step) {
                const std::string number = std::to_string((step + thread) % kFolders);
                if (found(*search.directory(none_, folder_ + number + "/")) != "own.pkg: own" + number) ++wrong;
                if (search.directory(none_, folder_) != common) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(PkgSearch, ofLaterVersionsTakesNamesOfAnyLength) {
    const std::string part =
        "[Component] Part\n[Manufacturer] Maker\n[Package]\nR_pkg 0 NA NA\nL_pkg 0 NA NA\nC_pkg 0 NA NA\n"
        "[Pin] signal_name model_name\n1 VDD POWER\n[Package Model] ";
    const std::string long_name(3000, 'n');
    const auto codes = [&](std::string_view version, const std::string& wanted, const std::string& before) {
        Files files(true);
        files.add("a.ibs", part + wanted, version).put("b.pkg", "|\n" + before + defining(long_name)).check("a.ibs");
        return files.codes();
    };
    // The file is led to, and found to have no version.
    EXPECT_EQ(codes("7.0", long_name, ""), "E0900");
    EXPECT_EQ(codes("7.0", long_name + "n", ""), "E0516");
    // Up to version 5 a name is looked for in the first 120 characters of a line; 23 are the keyword's.
    const std::string wanted = long_name.substr(0, 10);
    EXPECT_EQ(codes("5.1", wanted, std::string(120 - 23 - 10, ' ')), "E0900");
    EXPECT_EQ(codes("5.1", wanted, std::string(120 - 23 - 9, ' ')), "E0516");
    EXPECT_EQ(codes("7.0", wanted, std::string(120 - 23 - 9, ' ')), "E0900");
    EXPECT_EQ(codes("7.0", wanted, std::string(120 - 22, ' ')), "E0900");
    EXPECT_EQ(codes("7.0", wanted, std::string(120 - 21, ' ')), "E0516");
}

} // namespace
} // namespace kestrel
