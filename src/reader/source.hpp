#pragma once

#include "base/text_hash.hpp"
#include "reader/line_scan.hpp"
#include "reader/parse_state.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

struct Context;

/// Longest file name and longest joined path, in characters.
inline constexpr std::size_t kMaxPath = 1024;
/// Room for a line in the parse and in the pre-scan, terminator included.
inline constexpr std::size_t kLineCapacity = 1024;
inline constexpr std::size_t kScanCapacity = 121;
/// Of lines that are as long as they are.
inline constexpr std::size_t kNoCapacity = static_cast<std::size_t>(-1);

/// The bytes of a source file that a caller has in memory; shared by whoever reads it, never changed.
using SourceText = std::shared_ptr<const std::string>;

/// Where source files are found, by path: texts in memory that a caller has put in, then whatever is in place of the
/// disk.
struct SourceStore {
    TextMap<SourceText> texts;
    /// Gives the text under a path, null for none; without a value the disk is asked. It is called as often as somebody
    /// looks.
    std::function<std::optional<SourceText>(const std::string& path)> give;
    /// Lists the bare names of the files in a folder in place of the disk; the prefix ends with its separator.
    std::function<std::vector<std::string>(const std::string& prefix)> list;

    /// Nothing where the disk is to be asked, null where there is no such text.
    [[nodiscard]] std::optional<SourceText> find(const std::string& path) const {
        if (const auto given = texts.find(path); given != texts.end()) return given->second;
        return give ? give(path) : std::nullopt;
    }
};

/// The bytes of an opened source, from the disk or from memory, handed out once from the first to the last.
class ByteSource {
public:
    ByteSource() = default;
    explicit ByteSource(SourceText text);
    /// Opens a file; nothing when there is none that can be read. A folder or a pipe is no source file.
    [[nodiscard]] static std::optional<ByteSource> open(const std::string& path);

    /// Bytes that there are in all, as far as that was known when it was opened.
    [[nodiscard]] std::uintmax_t size() const { return size_; }
    /// The next bytes, at most `room`; none at the end, or when the disk fails.
    [[nodiscard]] std::size_t read(char* to, std::size_t room);
    /// True when it ended because the disk failed.
    [[nodiscard]] bool failed() const;

private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, FileCloser> file_;
    SourceText text_; ///< in place of a file
    std::size_t next_ = 0;
    std::uintmax_t size_ = 0;
};

/// An opened source file.
struct Source {
    ByteSource bytes;
    std::string path;      ///< as opened
    std::string bare_name; ///< without directory, extension completed
};

/// The extension of a kind, with its period.
[[nodiscard]] std::string_view extensionOf(FileKind kind);

/// The kind whose extension `name` has, in any case; nothing for a name with another extension or none.
[[nodiscard]] std::optional<FileKind> kindOfName(std::string_view name);

/// Whether a file that is not there is reported.
enum class WhenAbsent : bool { report, leave };

/// Completes, validates and opens `name`: adds a missing extension, tries the path as it is, then in lower, then in
/// upper case. Keeps the directory part for companion files. What fails is reported without line and gives
/// nothing.
[[nodiscard]] std::optional<Source> openSource(Context& context, std::string_view name, FileKind kind,
                                               WhenAbsent absent = WhenAbsent::report);

/// Reports that a source cannot be opened, or not be read to its end.
void reportNotOpened(Context& context, const Source& source);

/// A line of a source as it is read.
struct SourceLine {
    std::string_view text;                 ///< without its line feed
    std::size_t comment = LineScan::kNone; ///< where the first comment character is
    bool has_tab = false;
};

/// Reads the lines of a source one by one, through a window that moves over it.
class LineReader {
public:
    enum class Police : bool { off, on };

    explicit LineReader(ByteSource bytes, Police police = Police::on) : bytes_(std::move(bytes)), police_(police) {}

    /// The next line, cut to the capacity (terminator included, so one character less is kept); nothing at the end of
    /// the file. Reports each illegal character, shown under the count of the line before, and has a blank for it. The
    /// line holds until the next call.
    [[nodiscard]] std::optional<SourceLine> next(Context& context, std::size_t capacity);
    /// Offers the line behind those that next() has handed out to `read`, which gets the place where it begins and
    /// returns that of its line feed, or null to leave the line to next(). A line feed and kScanPadding bytes behind it
    /// are there in any case; false when the line was left, or may go on behind the window.
    template <class Read> [[nodiscard]] bool take(const Read& read) {
        const char* const feed = read(window_.get() + begin_);
        if (feed == nullptr || feed >= window_.get() + end_) return false;
        begin_ = static_cast<std::size_t>(feed - window_.get()) + 1;
        ++line_;
        return true;
    }
    /// True when the file ended because the disk failed.
    [[nodiscard]] bool failed() const { return bytes_.failed(); }

private:
    bool fill();

    ByteSource bytes_;
    Police police_;
    bool at_end_ = false; ///< all bytes have been read into the window
    std::unique_ptr<char[]> window_;
    std::size_t room_ = 0;   ///< size of the window, without the padding behind it
    std::size_t begin_ = 0;  ///< first byte in the window that was not handed out
    std::size_t end_ = 0;    ///< behind the last byte in the window
    std::uint32_t line_ = 0; ///< lines handed out
    std::string replaced_;   ///< holds a line that is not in the source as it is read
};

/// Finds the "[IBIS Ver]" line that must be the file's first keyword line and returns the version class of its first
/// digit, or `later` where the run takes such versions; `none` without one. `lines` grows by the lines looked at; it
/// stays untouched when the file cannot be opened.
[[nodiscard]] IbisVersion scanVersion(Context& context, std::string_view name, FileKind kind, std::uint32_t& lines);

/// Notes at the line that a later version is read by the rules of 5.1.
void noteLaterVersion(Diagnostics& diagnostics, std::string_view version);

} // namespace kestrel
