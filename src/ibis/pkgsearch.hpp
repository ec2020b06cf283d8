#pragma once

#include "base/text_hash.hpp"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;
struct SourceStore;

/// A package model named in a .pkg file.
struct PkgName {
    std::string name;    ///< what follows "[Define Package Model]", comment included
    std::size_t scanned; ///< how much of it is in the room of a scanned line, behind which versions up to 5 do not look
    std::uint32_t file;  ///< place in PkgDirectory::files
};

/// The .pkg files beside a source file.
struct PkgDirectory {
    std::vector<std::string> files; ///< bare names, in byte order
    std::vector<PkgName> names;     ///< in byte order
};

/// The .pkg files found so far, by directory prefix. Each directory is listed and each file scanned once, however many
/// components ask; runs in several threads may share one as long as they read the same files. Of the directories only
/// those asked for last are kept.
class PkgSearch {
public:
    PkgSearch() = default;
    PkgSearch(const PkgSearch&) = delete;
    PkgSearch& operator=(const PkgSearch&) = delete;
    ~PkgSearch() = default;

    /// The .pkg files of a directory, on the disk or among the texts in memory.
    [[nodiscard]] std::shared_ptr<const PkgDirectory> directory(const SourceStore& sources, const std::string& prefix);

private:
    struct Place {
        std::mutex mutex; ///< held while the directory is searched
        std::shared_ptr<const PkgDirectory> found;
        std::uint64_t asked = 0; ///< when, in the count of questions
    };

    [[nodiscard]] std::shared_ptr<Place> placeOf(const std::string& prefix);

    std::mutex mutex_; ///< of what follows
    TextMap<std::shared_ptr<Place>> places_;
    std::uint64_t questions_ = 0;
};

/// Looks up the package model that a component names: among those of the current root, then in the .pkg files of the
/// directory of the file being checked. Every file with a name that begins with the wanted one is read into the root,
/// also when an earlier look-up has read it. The reader's state is put back. False when it was reported as not found;
/// true does not promise that the root holds the name: a matching file may have been refused.
bool findPackageModel(Run& run, std::string_view name, std::string_view component);

} // namespace kestrel
