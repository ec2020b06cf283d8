#pragma once

#include "base/text_hash.hpp"
#include "reader/parse_state.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

struct Context;

/// Longest file name and longest joined path, in characters.
inline constexpr std::size_t kMaxPath = 1024;
/// Room for a line in the parse and in the pre-scan, terminator included.
inline constexpr std::size_t kLineCapacity = 1024;
inline constexpr std::size_t kScanCapacity = 121;

/// The bytes of a source file; shared by whoever reads it, never changed.
using SourceText = std::shared_ptr<const std::string>;

/// Source texts in memory, so that the pre-scans and the parse of a file read the disk once.
struct SourceStore {
    TextMap<SourceText> texts; ///< put in by a caller, by path; found like files
    std::string last_path;     ///< the file read last from the disk
    SourceText last;
};

/// An opened source file.
struct Source {
    SourceText text;
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

/// Reads the lines of a source one by one.
struct LineReader {
    SourceText text;
    std::size_t next = 0;   ///< first byte not read yet
    bool police = true;     ///< reports and blanks illegal characters
    std::string replaced{}; ///< holds a line that is not in the text as it is read
};

/// The next line without its line feed, cut to the capacity (terminator included, so one character less is kept);
/// nothing at the end of the file. Reports each illegal character, still under the count of the line before. The
/// view holds until the next call.
[[nodiscard]] std::optional<std::string_view> readLine(Context& context, LineReader& reader, std::size_t capacity);

/// The same for .ami files, without a capacity.
[[nodiscard]] std::optional<std::string_view> readLongLine(Context& context, LineReader& reader);

/// Finds the "[IBIS Ver]" line that must be the file's first keyword line and returns the version class of its first
/// digit, `none` without one. `lines` grows by the lines looked at; it stays untouched when the file cannot be opened.
[[nodiscard]] IbisVersion scanVersion(Context& context, std::string_view name, FileKind kind, std::uint32_t& lines);

} // namespace kestrel
