#pragma once

#include "base/output.hpp"

#include <cstdio>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

namespace kestrel {

/// The temporary files of a program, for whoever has to end it at once.
class Temporaries {
public:
    /// Makes a file; `name` ends in "XXXXXX", which is replaced. The descriptor is returned, -1 when there is no file.
    [[nodiscard]] int make(std::string& name);
    /// Puts one in the place of another file; false when that failed.
    [[nodiscard]] bool rename(const std::string& name, const std::string& target);
    void remove(const std::string& name);
    /// Removes all of them. No other is made or renamed from then on.
    void removeAll();

private:
    std::mutex mutex_;
    std::set<std::string> names_;
    bool ended_ = false;
};

/// A file that is written whole or not at all: into a temporary file beside it, which takes its place when all is
/// written and is removed otherwise. What is no file, such as a device, is written as it is.
class OutputFile {
public:
    explicit OutputFile(Temporaries& temporaries) : temporaries_(temporaries) {}
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Begins to write; what is wrong is returned, nothing when all is well.
    [[nodiscard]] std::string open(const std::string& path);

    /// Where to write, once it is open.
    [[nodiscard]] Output& out() { return *out_; }

    /// Puts the file in its place; what is wrong is returned.
    [[nodiscard]] std::string commit();

private:
    Temporaries& temporaries_;
    std::string target_;
    std::string temporary_; ///< empty when there is none
    std::FILE* stream_ = nullptr;
    std::unique_ptr<Output> out_;
};

} // namespace kestrel
