#pragma once

#include "base/output.hpp"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace kestrel {

/// A file that is written whole or not at all: into a temporary file beside it, which takes its place when all is
/// written and is removed otherwise. What is no file, such as a device, is written as it is.
class OutputFile {
public:
    OutputFile() = default;
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
    std::string target_;
    std::string temporary_; ///< empty when there is none
    std::FILE* stream_ = nullptr;
    std::unique_ptr<Output> out_;
};

} // namespace kestrel
