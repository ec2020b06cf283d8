// Which folder may include which: read from the include lines of the sources.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

using Names = std::set<std::string>;

/// What the sources of each folder may include, themselves aside. Every folder stands behind those that it uses.
const std::map<std::string, Names>& allowed() {
    static const Names kReading{"base", "diagnostics", "reader"};
    static const auto kWith = [](Names names, std::initializer_list<std::string> more) {
        names.insert(more);
        return names;
    };
    static const std::map<std::string, Names> kAllowed{
        {"base", {}},
        {"diagnostics", {"base"}},
        {"topics", {"base", "diagnostics"}},
        {"findings", {"base", "diagnostics", "topics"}},
        {"reader", {"base", "diagnostics"}},
        {"header", kReading},
        {"external", kReading},
        {"ami", kReading},
        {"model", kWith(kReading, {"external"})},
        {"component", kWith(kReading, {"external"})},
        {"package", kReading},
        {"board", kWith(kReading, {"package"})},
        {"ibis", kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board"})},
        {"quality", kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board", "ibis"})},
        {"check",
         kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board", "ibis", "quality"})},
        {"api", kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board", "ibis",
                                 "quality", "check"})},
        {"compare", kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board", "ibis",
                                     "findings", "quality"})},
        {"report", kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board", "ibis",
                                    "findings", "quality", "topics"})},
        {"main", kWith(kReading, {"header", "external", "ami", "model", "component", "package", "board", "ibis",
                                  "findings", "quality", "check", "report", "compare", "topics"})},
    };
    return kAllowed;
}

std::string folderOf(const std::string& file) { return file.substr(0, file.find('/')); }

/// The own files that each source includes, by names such as "model/crv.hpp".
std::map<std::string, Names> includes() {
    const fs::path root = KESTREL_SOURCE_DIR;
    std::map<std::string, Names> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        Names& names = found[fs::relative(entry.path(), root).generic_string()];
        std::ifstream file(entry.path());
        constexpr std::string_view kInclude = "#include \"";
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(kInclude))
                names.insert(line.substr(kInclude.size(), line.size() - kInclude.size() - 1));
        }
    }
    return found;
}

TEST(Layers, foldersIncludeOnlyThoseBelowThem) {
    const auto found = includes();
    ASSERT_GT(found.size(), 100U);
    for (const auto& [file, names] : found) {
        const auto folder = allowed().find(folderOf(file));
        ASSERT_NE(folder, allowed().end()) << file << " is in no known folder";
        for (const std::string& name : names) {
            const bool fits = folderOf(name) == folder->first || folder->second.contains(folderOf(name));
            EXPECT_TRUE(fits) << file << " includes " << name;
        }
    }
}

/// Follows the includes of headers; `path` leads to `file`.
void expectNoCycle(const std::map<std::string, Names>& found, const std::string& file, std::vector<std::string>& path,
                   Names& done) {
    if (done.contains(file) || !found.contains(file)) return;
    ASSERT_EQ(std::ranges::find(path, file), path.end()) << file << " includes itself by way of " << path.back();
    path.push_back(file);
    for (const std::string& name : found.at(file))
        expectNoCycle(found, name, path, done);
    path.pop_back();
    done.insert(file);
}

TEST(Layers, noHeaderIncludesItself) {
    const auto found = includes();
    std::vector<std::string> path;
    Names done;
    for (const auto& [file, names] : found)
        expectNoCycle(found, file, path, done);
}

} // namespace
} // namespace kestrel
