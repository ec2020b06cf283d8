#pragma once

#include <cstddef>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kestrel {

/// A text in UTF-8 that is collected to be written later, of any size: what goes beyond some kilobytes waits in a
/// temporary file without a name.
class KeptText {
public:
    /// Adds to the text, unless there was trouble with the file.
    void add(std::string_view text);

    [[nodiscard]] bool empty() const { return text_.empty() && file_ == nullptr; }

    /// Calls `use` with the pieces of the text, in order, which end between characters, and begins a new text. What
    /// went wrong with the temporary file is returned, and nothing when the pieces are all that was added.
    [[nodiscard]] std::string takeOut(const std::function<void(std::string_view)>& use);

private:
    struct FileCloser {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    void writeToFile(std::string_view text);
    void open();

    static constexpr std::size_t kMostInMemory = std::size_t{64} << 10;
    std::string text_; ///< what comes behind the text in the file
    std::unique_ptr<std::FILE, FileCloser> file_;
    std::size_t in_file_ = 0; ///< bytes that are whole there; a piece that did not fit may be behind them
    int error_ = 0;           ///< the system's number of what went wrong first
};

} // namespace kestrel
