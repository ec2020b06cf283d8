#include "reader/source.hpp"

#include "base/text.hpp"
#include "reader/context.hpp"
#include "reader/items.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

namespace kestrel {

namespace {

/// Opens the text that a caller gave under this path, or the file.
std::optional<ByteSource> openBytes(const Context& context, const std::string& path) {
    const std::optional<SourceText> given = context.sources.find(path);
    if (!given) return ByteSource::open(path);
    return *given == nullptr ? std::nullopt : std::optional(ByteSource(*given));
}

void reportExtension(Diagnostics& diagnostics, FileKind kind) {
    switch (kind) {
    case FileKind::ibs: error(diagnostics, 1900); break;
    case FileKind::pkg: error(diagnostics, 1903); break;
    case FileKind::ebd: error(diagnostics, 1902); break;
    case FileKind::ami: error(diagnostics, 1924); break;
    }
}

/// Splits a name into the directory, which replaces the one kept when the name has any, and the bare name.
std::string takeDirectory(std::string& directory, std::string_view name) {
    const std::size_t separator = name.find_last_of("/\\");
    if (separator == std::string_view::npos) return std::string(name.substr(0, kMaxPath));
    directory = name.substr(0, separator + 1);
    return std::string(name.substr(separator + 1, kMaxPath));
}

/// Adds the extension that a bare name lacks, or checks the one that it has.
bool completeName(Diagnostics& diagnostics, std::string& bare_name, FileKind kind) {
    const std::string_view extension = extensionOf(kind);
    const std::size_t period = bare_name.rfind('.');
    if (period != std::string::npos) {
        if (equalsNoCase(std::string_view(bare_name).substr(period), extension)) return true;
        reportExtension(diagnostics, kind);
        return false;
    }
    if (bare_name.size() + extension.size() > kMaxPath) {
        error(diagnostics, 1901);
        return false;
    }
    bare_name.append(extension);
    return true;
}

/// Opens a source under its path as it is, in lower case or in upper case; the directory follows the spelling that was
/// found.
bool openInAnyCase(Context& context, Source& source) {
    using Convert = void (*)(std::string&);
    constexpr std::array<Convert, 3> kSpellings{[](std::string&) {}, lowerCase, upperCase};
    for (const Convert convert : kSpellings) {
        std::string path = source.path;
        convert(path);
        std::optional<ByteSource> bytes = openBytes(context, path);
        if (!bytes) continue;
        source.bytes = std::move(*bytes);
        source.path = path;
        convert(context.parse.directory);
        return true;
    }
    return false;
}

constexpr bool isIllegal(char c) {
    return static_cast<unsigned char>(c) >= 0x80 || (static_cast<unsigned char>(c) < 0x20 && c != '\t');
}

std::string_view kindOfIllegal(char c) {
    if (c == '\0') return "NUL";
    return static_cast<unsigned char>(c) >= 0x80 ? "non-7-bit ASCII" : "control";
}

/// Copies the line with a blank for each illegal character, reporting them; of an overlong line the rest is reported,
/// too.
void policeLine(Context& context, std::string& replaced, std::string_view line, std::size_t capacity) {
    replaced.clear();
    for (const char c : line) {
        const bool room = replaced.size() + 1 < capacity;
        if (isIllegal(c)) {
            errorAtLine(context.diagnostics, 1917, kindOfIllegal(c),
                        static_cast<unsigned>(static_cast<unsigned char>(c)),
                        std::string_view(room ? "  Converting to space." : ""));
        }
        if (room) replaced.push_back(isIllegal(c) ? ' ' : c);
    }
}

/// A line that is not what was looked at.
SourceLine lookAgain(std::string_view text, char comment) {
    const std::size_t place = text.find(comment);
    return {text, place == std::string_view::npos ? LineScan::kNone : place, text.find('\t') != std::string_view::npos};
}

} // namespace

std::string_view extensionOf(FileKind kind) {
    constexpr std::array<std::string_view, 4> kExtensions{".ibs", ".pkg", ".ebd", ".ami"};
    return kExtensions[static_cast<std::size_t>(kind) - 1];
}

std::optional<FileKind> kindOfName(std::string_view name) {
    const std::string_view bare_name = name.substr(name.find_last_of("/\\") + 1);
    const std::size_t period = bare_name.rfind('.');
    if (period == std::string_view::npos) return std::nullopt;
    for (const FileKind kind : {FileKind::ibs, FileKind::pkg, FileKind::ebd, FileKind::ami}) {
        if (equalsNoCase(bare_name.substr(period), extensionOf(kind))) return kind;
    }
    return std::nullopt;
}

std::optional<Source> openSource(Context& context, std::string_view name, FileKind kind, WhenAbsent absent) {
    if ((kind == FileKind::pkg || kind == FileKind::ami) && name.size() >= kMaxPath) {
        assertionFailed(context.diagnostics, here(), "The name of the file is too long.");
    }
    const std::string& directory = context.parse.directory;
    Source source;
    source.bare_name = takeDirectory(context.parse.directory, name);
    if (!completeName(context.diagnostics, source.bare_name, kind)) return std::nullopt;
    if (directory.size() + source.bare_name.size() > kMaxPath) {
        error(context.diagnostics, 1904);
        return std::nullopt;
    }
    source.path = directory + source.bare_name;
    if (openInAnyCase(context, source)) return source;
    if (absent == WhenAbsent::report) reportNotOpened(context, source);
    return std::nullopt;
}

void reportNotOpened(Context& context, const Source& source) {
    error(context.diagnostics, 1905, context.parse.directory, source.bare_name);
}

ByteSource::ByteSource(SourceText text) : text_(std::move(text)), size_(text_->size()) {}

std::optional<ByteSource> ByteSource::open(const std::string& path) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) return std::nullopt;
    ByteSource source;
    source.file_.reset(std::fopen(path.c_str(), "rb"));
    if (!source.file_) return std::nullopt;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (!failure) source.size_ = size;
    return source;
}

std::size_t ByteSource::read(char* to, std::size_t room) {
    if (file_) return std::fread(to, 1, room, file_.get());
    if (!text_) return 0;
    const std::size_t size = text_->copy(to, room, next_);
    next_ += size;
    return size;
}

bool ByteSource::failed() const { return file_ && std::ferror(file_.get()) != 0; }

/// Reads more behind what is left in the window; false when there is no more.
bool LineReader::fill() {
    constexpr std::size_t kWindow = std::size_t{128} << 10;
    if (at_end_) return false;
    const std::size_t left = end_ - begin_;
    if (left == room_) {
        // The window is new, or a line is longer than it. A small file needs but a small one.
        const auto most = static_cast<std::size_t>(std::min<std::uintmax_t>(bytes_.size() + 1, kWindow));
        const std::size_t room = room_ == 0 ? most : std::max(2 * room_, kWindow);
        auto window = std::make_unique_for_overwrite<char[]>(room + kScanPadding);
        std::copy_n(window_.get() + begin_, left, window.get());
        window_ = std::move(window);
        room_ = room;
    } else {
        std::memmove(window_.get(), window_.get() + begin_, left);
    }
    begin_ = 0;
    end_ = left;
    while (end_ < room_ && !at_end_) {
        const std::size_t size = bytes_.read(window_.get() + end_, room_ - end_);
        end_ += size;
        at_end_ = size == 0;
    }
    // Looking for the end of a line stops here.
    std::memset(window_.get() + end_, '\n', kScanPadding);
    return true;
}

std::optional<SourceLine> LineReader::next(Context& context, std::size_t capacity) {
    const char comment = context.parse.comment;
    LineScan scan;
    do {
        const auto scan_line = context.short_paths ? scanLine : scanLineByWords;
        scan = begin_ == end_ ? LineScan{} : scan_line(window_.get() + begin_, comment);
        // A line that reaches to the end of the window may be but the beginning of one.
    } while (begin_ + scan.length == end_ && fill());
    if (begin_ == end_) return std::nullopt;
    ++line_;
    std::string_view line(window_.get() + begin_, scan.length);
    const bool has_feed = begin_ + scan.length < end_;
    begin_ += scan.length + (has_feed ? 1 : 0);
    // A carriage return ahead of the line feed belongs to the line's end, a Ctrl-Z as last byte to the file's.
    if (!line.empty() && line.back() == (has_feed ? '\r' : '\x1a')) line.remove_suffix(1);
    if (scan.odd < line.size() && police_ == Police::on) {
        const InLine in_line(context.diagnostics, line_);
        policeLine(context, replaced_, line, capacity);
        return lookAgain(replaced_, comment);
    }
    if (line.size() >= capacity) return lookAgain(line.substr(0, capacity - 1), comment);
    return SourceLine{line, scan.comment, scan.has_tab};
}

IbisVersion scanVersion(Context& context, std::string_view name, FileKind kind, std::uint32_t& lines) {
    constexpr char kComment = '|'; // "[Comment Char]" cannot come before
    std::optional<Source> source = openSource(context, name.substr(0, kMaxPath), kind);
    if (!source) return IbisVersion::none;
    LineReader reader(std::move(source->bytes));
    // What it comes upon is in this file, whichever record or file leads to it.
    const OtherFile other(context.diagnostics);
    nameFile(context.diagnostics, source->path);
    const About about(context.diagnostics, nullptr);
    while (const std::optional<SourceLine> read = reader.next(context, kScanCapacity)) {
        const InLine in_line(context.diagnostics, ++lines);
        const std::string_view line = skipWhiteSpace(context, read->text);
        if (!line.starts_with('[')) continue;
        if (!prefixEqualsNoCase(line, "[IBIS Ver]", 10) && !prefixEqualsNoCase(line, "[IBIS_Ver]", 10)) break;
        const std::string_view value = skipWhiteSpace(context, line.substr(line.find(']') + 1));
        if (context.parse.takes_later && isLaterVersion(stripTrailing(value.substr(0, value.find(kComment))))) {
            return IbisVersion::later;
        }
        if (value.empty() || value.front() < '1' || value.front() > '5') break;
        return static_cast<IbisVersion>(value.front() - '0');
    }
    return IbisVersion::none;
}

void noteLaterVersion(Diagnostics& diagnostics, std::string_view version) {
    noteTextAtLine(diagnostics, "Version %s is read by the rules of 5.1", version);
}

} // namespace kestrel
