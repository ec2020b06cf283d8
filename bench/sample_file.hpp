#pragma once

#include "generate.hpp"

#include <cstddef>
#include <filesystem>
#include <string>

namespace kestrel::bench {

/// A folder of our own among the temporary files, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// A generated file on the disk.
struct SampleFile {
    std::string path;
    std::size_t bytes = 0;
    Contents contents;
};

/// Makes sure that the floor leaves out nothing in files of this kind; throws when it does.
void requireWholeFloor(const SampleKind& kind);

/// Writes a sample into a file, which gets its name from the path; throws when that fails.
[[nodiscard]] SampleFile writeSample(const SampleKind& kind, std::size_t count, const std::filesystem::path& path);

} // namespace kestrel::bench
