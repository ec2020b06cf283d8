// Runs entries over files of inputs, each in a folder that has the name of its entry: what once was a fault.

#include "entry.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Runs the input of a file; false when its folder names no entry.
bool replay(const fs::path& path) {
    const auto entries = kestrel::fuzz::entries();
    const std::string name = path.parent_path().filename().string();
    const auto entry = std::ranges::find(entries, name, &kestrel::fuzz::Entry::name);
    if (entry == entries.end()) {
        std::fprintf(stderr, "%s: there is no entry %s\n", path.c_str(), name.c_str());
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    entry->run(input);
    return true;
}

} // namespace

int main(int count, char** values) {
    int inputs = 0;
    bool all_known = count > 1;
    // An entry may leave another folder as the current one.
    std::vector<fs::path> folders;
    for (int i = 1; i < count; ++i)
        folders.push_back(fs::absolute(values[i]));
    for (const fs::path& folder : folders) {
        std::error_code failure;
        if (fs::directory_iterator(folder, failure); failure) {
            std::fprintf(stderr, "%s: %s\n", folder.c_str(), failure.message().c_str());
            return 2;
        }
        for (const fs::directory_entry& found : fs::recursive_directory_iterator(folder)) {
            if (!found.is_regular_file()) continue;
            all_known = replay(found.path()) && all_known;
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return all_known && inputs > 0 ? 0 : 1;
}
