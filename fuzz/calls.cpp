// Command lines of both programs, in a folder on the disk.

#include "base/output.hpp"
#include "entry.hpp"
#include "input.hpp"
#include "main/driver.hpp"
#include "main/verimark.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace kestrel::fuzz {

namespace {

namespace fs = std::filesystem;

/// The only folder in the one that calls work in, which has another in it: paths through anything else could lead out.
constexpr std::string_view kFolder = "lib";

/// True for a text whose paths stay in the folder.
bool staysInside(std::string_view text) {
    if (text.find("..") != std::string_view::npos) return false;
    for (std::size_t at = text.find('/'); at != std::string_view::npos; at = text.find('/', at + 1))
        if (!text.substr(0, at).ends_with(kFolder)) return false;
    return true;
}

/// True for a text with so many blanks in a row that kestrel ends by a signal.
bool hasLongGap(std::string_view text) {
    constexpr std::size_t kLongest = 120;
    std::size_t gap = 0;
    for (const char c : text) {
        const bool is_visible = c > ' ' && c < '\x7f';
        gap = is_visible || c == '\n' ? 0 : gap + 1;
        if (gap > kLongest) return true;
    }
    return false;
}

/// The folder that calls work in. It goes with the process.
class WorkFolder {
public:
    WorkFolder() {
        std::string pattern = (fs::temp_directory_path() / "kestrel_calls_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) fault("there is no room for a folder", pattern);
        path_ = pattern;
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder() {
        std::error_code failure;
        fs::current_path("/", failure);
        fs::remove_all(path_, failure);
    }

    /// Empties the folder but for the folders in it, and goes there.
    void enter() const {
        fs::current_path(path_);
        for (const fs::directory_entry& entry : fs::directory_iterator(path_))
            fs::remove_all(entry.path());
        fs::create_directories(fs::path(kFolder) / kFolder);
    }

private:
    fs::path path_;
};

/// The words of a call, a line each, which end at a NUL as those of any call do.
std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        words.push_back(line.substr(0, line.find('\0')));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return words;
}

using FileHandle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

} // namespace

/// The first lines are the program and its arguments; files follow, of which "-" is the standard input.
void tryCalls(std::string_view input) {
    const std::vector<NamedText> files = cutIntoFiles(input);
    const std::vector<std::string_view> words = wordsOf(files.front().text);
    if (words.empty() || !staysInside(files.front().text)) return;
    static const WorkFolder kWorkFolder;
    kWorkFolder.enter();
    std::string names;
    bool long_gap = hasLongGap(files.front().text);
    for (std::size_t i = 1; i < files.size(); ++i) {
        const NamedText& file = files[i];
        if (file.name == "-" && staysInside(file.text)) {
            names = file.text;
        } else if (staysInside(file.name) && !fs::is_directory(file.name)) {
            std::ofstream(file.name, std::ios::binary) << file.text;
            long_gap = long_gap || hasLongGap(file.text);
        }
    }
    const std::vector<std::string_view> arguments(words.begin() + 1, words.end());
    Output out;
    Output errors;
    if (words.front() == "kestrel") {
        if (!long_gap) static_cast<void>(runKestrel(out, errors, arguments));
        return;
    }
    const FileHandle in(names.empty() ? std::fopen("/dev/null", "rb") : fmemopen(names.data(), names.size(), "rb"),
                        std::fclose);
    const int status = runVerimark(out, errors, arguments, in.get());
    if (status == kTrouble && errors.text().empty() && out.text().empty()) fault("trouble without a word", input);
}

} // namespace kestrel::fuzz
