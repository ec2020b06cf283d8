#include "main/file_list.hpp"

#include "reader/source.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace kestrel {

namespace {

namespace fs = std::filesystem;

/// Collects the files and remembers whether all went well.
class Lister {
public:
    Lister(FileList& files, std::FILE* in, const Complaint& complain) : files_(files), in_(in), complain_(complain) {}

    void addArgument(std::string_view argument) {
        if (argument == "-") {
            addLines();
        } else {
            addName(argument);
        }
    }

    [[nodiscard]] bool allWell() const { return all_well_; }

private:
    struct Entry {
        std::string name;
        bool is_folder;
    };

    void complain(std::string_view subject, std::string_view what, std::error_code failure) {
        complain_(subject, std::string(what).append(failure.message()));
        all_well_ = false;
    }

    void addName(std::string_view name) {
        std::error_code failure;
        if (!fs::is_directory(name, failure)) {
            files_.add(name);
            return;
        }
        const std::size_t before = files_.size();
        const bool well_before = all_well_;
        walk(std::string(name));
        if (files_.size() != before || well_before != all_well_) return;
        complain_(name, ": there is no .ibs, .pkg, .ebd or .ami file in the folder");
        all_well_ = false;
    }

    void walk(const std::string& folder) {
        std::vector<Entry> entries;
        std::error_code failure;
        for (fs::directory_iterator at(folder, failure); !failure && at != fs::directory_iterator();) {
            addEntry(entries, *at);
            at.increment(failure);
        }
        if (failure) complain(folder, ": the folder cannot be listed: ", failure);
        std::ranges::sort(entries, {}, &Entry::name);
        for (const Entry& entry : entries) {
            std::string path = folder;
            if (!path.ends_with('/')) path.push_back('/');
            path.append(entry.name);
            if (entry.is_folder) {
                walk(path);
            } else {
                files_.add(path);
            }
        }
    }

    static void addEntry(std::vector<Entry>& entries, const fs::directory_entry& found) {
        std::error_code failure;
        std::string name = found.path().filename().string();
        const bool is_folder = found.is_directory(failure) && !found.is_symlink(failure);
        if (is_folder || (kindOfName(name) && found.is_regular_file(failure)))
            entries.push_back({std::move(name), is_folder});
    }

    /// Takes the name that is on a line; none of an empty one.
    void addLine(std::string& line) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.size() > kLongestLine || line.find('\0') != std::string::npos) {
            complain_("-", ": a line is no name of a file; there is to be one name on each line");
            all_well_ = false;
        } else if (!line.empty()) {
            addName(line);
        }
        line.clear();
    }

    /// Takes the names that are on the lines of the input. A line may have no end, as that of a device.
    void addLines() {
        std::string line;
        std::array<char, 65536> piece;
        while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), in_)) {
            std::string_view text(piece.data(), size);
            for (std::size_t feed = text.find('\n'); feed != std::string_view::npos; feed = text.find('\n')) {
                line.append(text.substr(0, feed));
                addLine(line);
                text.remove_prefix(feed + 1);
            }
            line.append(text);
            if (line.size() > kLongestLine) break;
        }
        addLine(line);
        if (std::ferror(in_) != 0) complain("-", ": cannot be read: ", {errno, std::generic_category()});
    }

    static constexpr std::size_t kLongestLine = 65536; // longer than any path
    FileList& files_;
    std::FILE* in_;
    const Complaint& complain_;
    bool all_well_ = true;
};

} // namespace

bool listFiles(FileList& files, std::span<const std::string_view> arguments, std::FILE* in, const Complaint& complain) {
    Lister lister(files, in, complain);
    for (const std::string_view argument : arguments)
        lister.addArgument(argument);
    return lister.allWell();
}

} // namespace kestrel
