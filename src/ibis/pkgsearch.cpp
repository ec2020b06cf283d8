#include "ibis/pkgsearch.hpp"

#include "base/text.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <utility>

namespace kestrel {

namespace {

bool isPkgFile(std::string_view file) {
    constexpr std::string_view kExtension = ".pkg";
    return file.size() > kExtension.size() && equalsNoCase(file.substr(file.size() - kExtension.size()), kExtension) &&
           file.find_first_of("/\\") == std::string_view::npos;
}

/// The bare names of the .pkg files in a directory, on the disk or among the texts in memory, in byte order. A folder
/// or pipe of such a name is none.
std::vector<std::string> listPkgFiles(const SourceStore& sources, const std::string& directory) {
    std::vector<std::string> files;
    std::error_code failure;
    std::filesystem::directory_iterator entry;
    if (sources.list) {
        for (std::string& file : sources.list(directory))
            if (isPkgFile(file)) files.push_back(std::move(file));
    } else {
        entry = std::filesystem::directory_iterator(directory.empty() ? "." : directory, failure);
    }
    while (!failure && entry != std::filesystem::directory_iterator()) {
        std::string file = entry->path().filename().string();
        std::error_code unknown;
        if (isPkgFile(file) && entry->is_regular_file(unknown)) files.push_back(std::move(file));
        entry.increment(failure);
    }
    for (const auto& [path, text] : sources.texts) {
        if (!path.starts_with(directory)) continue;
        std::string file = path.substr(directory.size());
        if (isPkgFile(file)) files.push_back(std::move(file));
    }
    std::ranges::sort(files);
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

/// What follows "[Define Package Model]" on a line, or nothing when the line is another.
std::optional<std::string_view> definedName(std::string_view line) {
    constexpr std::string_view kKeyword = "[DEFINE_PACKAGE_MODEL]";
    constexpr auto kFold = [](char c) { return c == ' ' ? '_' : toUpper(c); };
    line = trim(line);
    if (!std::ranges::equal(line.substr(0, kKeyword.size()), kKeyword, {}, kFold)) return std::nullopt;
    return trim(line.substr(kKeyword.size()));
}

/// Collects the package models that a text names. The text comes in pieces, so that a file of any size can be scanned.
class NameScan {
public:
    void take(std::string_view piece) {
        for (;;) {
            const std::size_t feed = piece.find('\n');
            addToLine(piece.substr(0, feed));
            if (feed == std::string_view::npos) return;
            endLine();
            piece.remove_prefix(feed + 1);
        }
    }

    /// Ends the text.
    std::vector<PkgName> finish() {
        endLine();
        return std::move(names_);
    }

private:
    /// A line is kept beyond the room of a scanned line only when it is one that is looked for.
    void addToLine(std::string_view text) {
        const std::string_view in_room = text.substr(0, kRoom - std::min(kRoom, line_.size()));
        line_.append(in_room);
        text.remove_prefix(in_room.size());
        if (!text.empty() && definedName(std::string_view(line_).substr(0, kRoom))) line_.append(text);
    }

    void endLine() {
        const std::string_view line = line_;
        if (const std::optional<std::string_view> scanned = definedName(line.substr(0, kRoom))) {
            names_.push_back({.name = std::string(*definedName(line)), .scanned = scanned->size(), .file = 0});
        }
        line_.clear();
    }

    static constexpr std::size_t kRoom = kScanCapacity - 1;
    std::string line_; // what was read of the line
    std::vector<PkgName> names_;
};

/// The package models that a file names; none of one that cannot be read to its end, which is none of the user's
/// concern: no component may want it.
std::vector<PkgName> scanFile(const SourceStore& sources, const std::string& path) {
    NameScan scan;
    if (path.size() > kMaxPath) return {};
    if (const std::optional<SourceText> given = sources.find(path)) {
        if (*given != nullptr) scan.take(**given);
        return scan.finish();
    }
    std::error_code failure;
    std::uintmax_t left = std::filesystem::file_size(path, failure);
    if (failure) return {};
    std::ifstream file(path, std::ios::binary);
    std::array<char, 65536> piece;
    while (left > 0) {
        const std::size_t size = std::min<std::uintmax_t>(left, piece.size());
        if (!file.read(piece.data(), static_cast<std::streamsize>(size))) return {};
        scan.take({piece.data(), size});
        left -= size;
    }
    return scan.finish();
}

PkgDirectory searchDirectory(const SourceStore& sources, const std::string& prefix) {
    PkgDirectory directory;
    directory.files = listPkgFiles(sources, prefix);
    for (std::uint32_t place = 0; place < directory.files.size(); ++place) {
        for (PkgName& name : scanFile(sources, prefix + directory.files[place])) {
            name.file = place;
            directory.names.push_back(std::move(name));
        }
    }
    std::ranges::sort(directory.names, {}, &PkgName::name);
    return directory;
}

/// Reads the files in which some name begins with the wanted one, in byte order of the files' names; true when there
/// are any.
bool readMatchingFiles(Run& run, std::string_view wanted) {
    const std::shared_ptr<const PkgDirectory> directory = run.pkgsearch->directory(run.sources, run.parse.directory);
    const std::vector<PkgName>& names = directory->names;
    std::set<std::uint32_t> matching; // several names of a file may match
    const bool is_later = run.parse.version == IbisVersion::later;
    for (auto at = std::ranges::lower_bound(names, wanted, {}, &PkgName::name);
         at != names.end() && at->name.starts_with(wanted); ++at) {
        if (is_later || wanted.size() <= at->scanned) matching.insert(at->file);
    }
    for (const std::uint32_t file : matching) {
        const KeptParse kept(run.parse);
        const OtherFile other(run.diagnostics);
        parseFile(run, directory->files[file], FileKind::pkg);
    }
    return !matching.empty();
}

} // namespace

std::shared_ptr<PkgSearch::Place> PkgSearch::placeOf(const std::string& prefix) {
    constexpr std::size_t kMostPlaces = 64;
    const std::lock_guard lock(mutex_);
    const auto [at, is_new] = places_.try_emplace(prefix);
    if (is_new) {
        at->second = std::make_shared<Place>();
        if (places_.size() > kMostPlaces) {
            const auto oldest = std::ranges::min_element(places_, {}, [&at = at](const auto& entry) {
                return &entry == &*at ? UINT64_MAX : entry.second->asked;
            });
            places_.erase(oldest);
        }
    }
    at->second->asked = ++questions_;
    return at->second;
}

std::shared_ptr<const PkgDirectory> PkgSearch::directory(const SourceStore& sources, const std::string& prefix) {
    const std::shared_ptr<Place> place = placeOf(prefix);
    const std::lock_guard lock(place->mutex);
    if (place->found == nullptr) place->found = std::make_shared<const PkgDirectory>(searchDirectory(sources, prefix));
    return place->found;
}

bool findPackageModel(Run& run, std::string_view name, std::string_view component) {
    const ObjectList<PkgMdl>& models = currentRoot(run).package_models;
    if (models.find(name) != nullptr) return true;
    if (readMatchingFiles(run, name) && (models.empty() || models.find(name) != nullptr)) return true;
    error(run.diagnostics, 516, name, component);
    return false;
}

} // namespace kestrel
