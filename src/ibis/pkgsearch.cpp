#include "ibis/pkgsearch.hpp"

#include "base/text.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace kestrel {

namespace {

bool isPkgFile(std::string_view file) {
    constexpr std::string_view kExtension = ".pkg";
    return file.size() > kExtension.size() && equalsNoCase(file.substr(file.size() - kExtension.size()), kExtension);
}

/// The bare names of the .pkg files in a directory, on the disk or among the texts in memory, in byte order. A folder
/// or pipe of such a name is none.
std::vector<std::string> listPkgFiles(const Run& run, const std::string& directory) {
    std::vector<std::string> files;
    std::error_code failure;
    std::filesystem::directory_iterator entry(directory.empty() ? "." : directory, failure);
    while (!failure && entry != std::filesystem::directory_iterator()) {
        std::string file = entry->path().filename().string();
        std::error_code unknown;
        if (isPkgFile(file) && entry->is_regular_file(unknown)) {
            files.push_back(std::move(file));
        }
        entry.increment(failure);
    }
    for (const auto& [path, text] : run.sources.texts) {
        if (!path.starts_with(directory)) {
            continue;
        }
        std::string file = path.substr(directory.size());
        if (isPkgFile(file) && file.find_first_of("/\\") == std::string::npos) {
            files.push_back(std::move(file));
        }
    }
    std::ranges::sort(files);
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

/// Opens a file of the directory for the scan. One that cannot be opened is none of the user's concern: no component
/// may want it.
std::optional<Source> openQuietly(Run& run, const std::string& directory, const std::string& file) {
    run.parse.directory = directory;
    const Silence silence(run.diagnostics);
    std::optional<Source> source = openSource(run, file, FileKind::pkg);
    // Another spelling of the name stands in the list by itself.
    if (source && source->path != directory + file) {
        return std::nullopt;
    }
    return source;
}

/// What follows "[Define Package Model]" on a line, or nothing when the line is another.
std::optional<std::string_view> definedName(std::string_view line) {
    constexpr std::string_view kKeyword = "[DEFINE_PACKAGE_MODEL]";
    constexpr auto kFold = [](char c) { return c == ' ' ? '_' : toUpper(c); };
    line = trim(line);
    if (!std::ranges::equal(line.substr(0, kKeyword.size()), kKeyword, {}, kFold)) {
        return std::nullopt;
    }
    return trim(line.substr(kKeyword.size()));
}

/// Lists and scans the directory of the file being checked, unless that was done before.
const PkgDirectory& searchedDirectory(Run& run) {
    const std::string prefix = run.parse.directory;
    const auto [at, is_new] = run.pkgsearch.directories.try_emplace(prefix);
    PkgDirectory& directory = at->second;
    if (!is_new) {
        return directory;
    }
    const KeptParse kept(run.parse);
    for (std::string& file : listPkgFiles(run, prefix)) {
        if (const std::optional<Source> source = openQuietly(run, prefix, file)) {
            LineReader reader{.text = source->text, .police = false};
            const auto place = static_cast<std::uint32_t>(run.pkgsearch.files.size());
            while (const std::optional<std::string_view> line = readLine(run, reader, kScanCapacity)) {
                if (const std::optional<std::string_view> name = definedName(*line)) {
                    directory.names.push_back({.name = std::string(*name), .file = place});
                }
            }
        }
        run.pkgsearch.files.push_back(std::move(file));
    }
    std::ranges::sort(directory.names, {}, &PkgName::name);
    return directory;
}

bool isRead(const Ibis& root, std::uint32_t file) {
    return file < root.package_files.size() && root.package_files[file];
}

void markRead(Ibis& root, std::uint32_t file) {
    if (root.package_files.size() <= file) {
        root.package_files.resize(std::size_t{file} + 1);
    }
    root.package_files[file] = true;
}

/// Reads the files in which some name begins with the wanted one, in byte order of the files' names; true when there
/// are any. What the root has read for another component is not read again: that would only define its package models
/// twice, and a name that was looked for before has nothing left to read.
bool readMatchingFiles(Run& run, Ibis& root, std::string_view wanted) {
    if (const auto known = root.package_names_searched.find(wanted); known != root.package_names_searched.end()) {
        return known->second;
    }
    const std::vector<PkgName>& names = searchedDirectory(run).names;
    std::vector<std::uint32_t> unread;
    bool matched = false;
    for (auto at = std::ranges::lower_bound(names, wanted, {}, &PkgName::name);
         at != names.end() && at->name.starts_with(wanted); ++at) {
        matched = true;
        if (!isRead(root, at->file)) {
            unread.push_back(at->file);
        }
    }
    std::ranges::sort(unread);
    for (const std::uint32_t file : unread) {
        if (!isRead(root, file)) { // several of its names may match
            markRead(root, file);
            const KeptParse kept(run.parse);
            parseFile(run, run.pkgsearch.files[file], FileKind::pkg);
        }
    }
    root.package_names_searched.emplace(wanted, matched);
    return matched;
}

} // namespace

bool findPackageModel(Run& run, std::string_view name, std::string_view component) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBug(run.diagnostics, 515, mark.file, mark.line);
        return false;
    }
    const ObjectList<PkgMdl>& models = root->package_models;
    if (models.find(name) != nullptr) {
        return true;
    }
    if (readMatchingFiles(run, *root, name) && (models.empty() || models.find(name) != nullptr)) {
        return true;
    }
    error(run.diagnostics, 516, name, component);
    return false;
}

} // namespace kestrel
