#include "findings/kept_text.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace kestrel {

namespace {

/// True for a byte of a UTF-8 character that is not its first one.
bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U; }

} // namespace

void KeptText::add(std::string_view text) {
    if (error_ != 0) return;
    // The room is there before the first text, so that one that finds no memory is missing as a whole.
    if (text_.capacity() < kMostInMemory) text_.reserve(kMostInMemory);
    if (text.size() > kMostInMemory - text_.size()) {
        writeToFile(text_);
        text_.clear();
    }
    if (text.size() > kMostInMemory) {
        writeToFile(text);
    } else if (error_ == 0) {
        text_.append(text);
    }
}

std::string KeptText::takeOut(const std::function<void(std::string_view)>& use) {
    if (file_ != nullptr) {
        std::rewind(file_.get());
        std::array<char, 4096> piece;
        std::size_t size = 0;
        while (in_file_ != 0) {
            const std::size_t room = std::min(piece.size() - size, in_file_);
            const std::size_t more = std::fread(piece.data() + size, 1, room, file_.get());
            if (more == 0) break;
            in_file_ -= more;
            size += more;
            // The last character may not be whole yet.
            std::size_t last = size - 1;
            while (last > 0 && isContinuation(piece[last]))
                --last;
            if (last == 0) last = size;
            use({piece.data(), last});
            std::copy(piece.data() + last, piece.data() + size, piece.data());
            size -= last;
        }
        use({piece.data(), size});
        if (in_file_ != 0 && error_ == 0) error_ = EIO;
        in_file_ = 0;
        file_.reset();
    }
    use(text_);
    text_.clear();
    const int error = std::exchange(error_, 0);
    return error != 0 ? std::error_code(error, std::generic_category()).message() : std::string();
}

void KeptText::writeToFile(std::string_view text) {
    if (error_ != 0) return;
    errno = 0;
    if (file_ == nullptr) open();
    const bool written = file_ != nullptr && std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size();
    if (written) {
        in_file_ += text.size();
    } else {
        error_ = errno != 0 ? errno : EIO;
    }
}

void KeptText::open() {
    const char* const folder = std::getenv("TMPDIR");
    std::string name(folder != nullptr && *folder != '\0' ? folder : "/tmp");
    name.append("/verimark-XXXXXX");
    const int file = mkstemp(name.data());
    if (file == -1) return;
    unlink(name.c_str()); // it goes with its last user
    file_.reset(fdopen(file, "w+b"));
    if (file_ == nullptr) {
        close(file);
    } else {
        std::setvbuf(file_.get(), nullptr, _IONBF, 0); // so that what cannot be written is known at once
    }
}

} // namespace kestrel
