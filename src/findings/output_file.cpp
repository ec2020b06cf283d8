#include "findings/output_file.hpp"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace kestrel {

namespace {

namespace fs = std::filesystem;

std::string problemOf(int error) {
    return "cannot be written: " + std::error_code(error, std::generic_category()).message();
}

/// The rights of a new file: those of the one that it replaces, else what the user's mask leaves.
mode_t rightsOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) return status.st_mode & 0777U;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

} // namespace

int Temporaries::make(std::string& name) {
    const std::lock_guard lock(mutex_);
    if (ended_) return -1;
    const int file = mkstemp(name.data());
    if (file != -1) names_.insert(name);
    return file;
}

bool Temporaries::rename(const std::string& name, const std::string& target) {
    const std::lock_guard lock(mutex_);
    const bool renamed = !ended_ && std::rename(name.c_str(), target.c_str()) == 0;
    if (renamed) names_.erase(name);
    return renamed;
}

void Temporaries::remove(const std::string& name) {
    const std::lock_guard lock(mutex_);
    if (names_.erase(name) != 0) unlink(name.c_str());
}

void Temporaries::removeAll() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    for (const std::string& name : names_)
        unlink(name.c_str());
    names_.clear();
}

OutputFile::~OutputFile() {
    out_.reset();
    if (stream_ != nullptr) std::fclose(stream_);
    if (!temporary_.empty()) temporaries_.remove(temporary_);
}

std::string OutputFile::open(const std::string& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (fs::is_directory(status)) return "is a folder";
    // The file that a link leads to is replaced, not the link.
    const fs::path real = fs::exists(status) ? fs::canonical(path, failure) : fs::path(path);
    target_ = failure || real.empty() ? path : real.string();
    if (!fs::exists(status) || fs::is_regular_file(status)) {
        std::string name = (fs::path(target_).parent_path() / ".verimark-XXXXXX").string();
        const int file = temporaries_.make(name);
        if (file == -1) return problemOf(errno);
        temporary_ = name;
        stream_ = fdopen(file, "wb");
        if (stream_ == nullptr) close(file);
    } else {
        stream_ = std::fopen(target_.c_str(), "wb");
    }
    if (stream_ == nullptr) return problemOf(errno);
    out_ = std::make_unique<Output>(stream_);
    return {};
}

std::string OutputFile::commit() {
    out_->flush();
    int error = out_->error();
    out_.reset();
    if (std::fclose(stream_) != 0 && error == 0) error = errno;
    stream_ = nullptr;
    if (error == 0 && !temporary_.empty()) {
        const bool in_place =
            chmod(temporary_.c_str(), rightsOf(target_)) == 0 && temporaries_.rename(temporary_, target_);
        if (!in_place) return problemOf(errno);
        temporary_.clear();
    }
    return error == 0 ? std::string() : problemOf(error);
}

} // namespace kestrel
