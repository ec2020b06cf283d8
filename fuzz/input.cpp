#include "input.hpp"

#include <memory>
#include <utility>

namespace kestrel::fuzz {

namespace {

constexpr std::string_view kSeparator = "--- ";
constexpr std::size_t kLongestName = 200;

/// The name on a line that begins a file; empty on any other.
std::string_view nameOn(std::string_view line) {
    if (!line.starts_with(kSeparator)) return {};
    line.remove_prefix(kSeparator.size());
    return line.size() <= kLongestName && line.find('\0') == std::string_view::npos ? line : std::string_view();
}

} // namespace

std::vector<NamedText> cutIntoFiles(std::string_view input) {
    std::vector<NamedText> files(1);
    while (!input.empty()) {
        const std::size_t feed = input.find('\n');
        const std::size_t size = feed == std::string_view::npos ? input.size() : feed + 1;
        const std::string_view name = nameOn(input.substr(0, feed));
        if (!name.empty()) {
            files.push_back({std::string(name), {}});
        } else {
            files.back().text.append(input, 0, size);
        }
        input.remove_prefix(size);
    }
    if (files.size() > 1 && files.front().text.empty()) files.erase(files.begin());
    return files;
}

FileInMemory fileOfKind(std::string_view input, FileKind kind) {
    const std::string folder = "memory/";
    FileInMemory result;
    for (NamedText& file : cutIntoFiles(input)) {
        if (result.path.empty()) {
            if (kindOfName(file.name) != kind || file.name.find('/') != std::string::npos)
                file.name = std::string("file").append(extensionOf(kind));
            result.path = folder + file.name;
        }
        result.sources.texts.try_emplace(folder + file.name, std::make_shared<const std::string>(std::move(file.text)));
    }
    return result;
}

} // namespace kestrel::fuzz
