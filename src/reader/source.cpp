#include "reader/source.hpp"

#include "base/text.hpp"
#include "reader/context.hpp"
#include "reader/items.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <stdexcept>

namespace kestrel {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Reads a whole file from the disk; null when it cannot be opened or read. A folder or a pipe is no source file.
SourceText readFile(const std::string& path) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) return nullptr;
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    if (!file) return nullptr;
    constexpr std::size_t kPiece = 65536;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    auto text = std::make_shared<std::string>();
    std::size_t used = 0;
    // One byte more than the size, so that the end of the file is met without growing the text.
    text->resize(failure ? kPiece : static_cast<std::size_t>(size) + 1);
    while (const std::size_t got = std::fread(text->data() + used, 1, text->size() - used, file.get())) {
        used += got;
        if (used == text->size()) text->resize(used + std::max(used, kPiece));
    }
    if (std::ferror(file.get()) != 0) return nullptr;
    text->resize(used);
    return text;
}

SourceText loadText(Context& context, const std::string& path) {
    SourceStore& store = context.sources;
    if (const auto given = store.texts.find(path); given != store.texts.end()) return given->second;
    if (store.last && store.last_path == path) return store.last;
    SourceText text = readFile(path);
    // What could not be read under one spelling of its name leaves the file read before where it is.
    if (text) {
        store.last = text;
        store.last_path = path;
    }
    return text;
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

/// Loads a source under its path as it is, in lower case or in upper case; the directory follows the spelling that was
/// found.
bool loadInAnyCase(Context& context, Source& source) {
    using Convert = void (*)(std::string&);
    constexpr std::array<Convert, 3> kSpellings{[](std::string&) {}, lowerCase, upperCase};
    for (const Convert convert : kSpellings) {
        std::string path = source.path;
        convert(path);
        source.text = loadText(context, path);
        if (!source.text) continue;
        source.path = path;
        convert(context.parse.directory);
        return true;
    }
    return false;
}

void reportNoMemory(Diagnostics& diagnostics, const std::string& path) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    constexpr std::uintmax_t kMost = std::numeric_limits<std::uint32_t>::max();
    error(diagnostics, 1906, static_cast<std::uint32_t>(std::min(size, kMost)));
}

constexpr bool isIllegal(char c) {
    return static_cast<unsigned char>(c) >= 0x80 || (static_cast<unsigned char>(c) < 0x20 && c != '\t');
}

/// True when none of eight characters is a control character, TAB included, or beyond ASCII.
bool arePrintable(const char* eight) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    std::uint64_t word = 0;
    std::memcpy(&word, eight, sizeof word);
    // A character below the blank borrows from its highest bit; one beyond ASCII has it set from the start.
    return (((word - kOnes * ' ') | word) & (kOnes * 0x80)) == 0;
}

/// Looks at eight characters at a time.
bool isClean(std::string_view line) {
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    std::size_t at = 0;
    for (; at + kStep <= line.size(); at += kStep) {
        if (!arePrintable(line.data() + at) && std::ranges::any_of(line.substr(at, kStep), isIllegal)) return false;
    }
    return std::ranges::none_of(line.substr(at), isIllegal);
}

std::string_view kindOfIllegal(char c) {
    if (c == '\0') return "NUL";
    return static_cast<unsigned char>(c) >= 0x80 ? "non-7-bit ASCII" : "control";
}

/// Copies the line with a blank for each illegal character, reporting them; of an overlong line the rest is reported,
/// too.
std::string_view policeLine(Context& context, LineReader& reader, std::string_view line, std::size_t capacity) {
    reader.replaced.clear();
    for (const char c : line) {
        const bool room = reader.replaced.size() + 1 < capacity;
        if (isIllegal(c)) {
            errorAtLine(context.diagnostics, 1917, kindOfIllegal(c),
                        static_cast<unsigned>(static_cast<unsigned char>(c)),
                        std::string_view(room ? "  Converting to space." : ""));
        }
        if (room) reader.replaced.push_back(isIllegal(c) ? ' ' : c);
    }
    return reader.replaced;
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
        assertionFailed(context.out, here());
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
    try {
        if (loadInAnyCase(context, source)) return source;
        if (absent == WhenAbsent::report) error(context.diagnostics, 1905, directory, source.bare_name);
    } catch (const std::bad_alloc&) {
        reportNoMemory(context.diagnostics, source.path);
    } catch (const std::length_error&) {
        reportNoMemory(context.diagnostics, source.path);
    }
    return std::nullopt;
}

std::optional<std::string_view> readLine(Context& context, LineReader& reader, std::size_t capacity) {
    const std::string_view text = *reader.text;
    if (reader.next >= text.size()) return std::nullopt;
    const std::size_t feed = text.find('\n', reader.next);
    std::string_view line = text.substr(reader.next, feed == std::string_view::npos ? feed : feed - reader.next);
    reader.next += line.size() + 1;
    // A carriage return ahead of the line feed belongs to the line's end, a Ctrl-Z as last byte to the file's.
    const char closing = feed == std::string_view::npos ? '\x1a' : '\r';
    if (!line.empty() && line.back() == closing) line.remove_suffix(1);
    if (reader.police && !isClean(line)) return policeLine(context, reader, line, capacity);
    return line.substr(0, capacity - 1);
}

std::optional<std::string_view> readLongLine(Context& context, LineReader& reader) {
    return readLine(context, reader, std::numeric_limits<std::size_t>::max());
}

IbisVersion scanVersion(Context& context, std::string_view name, FileKind kind, std::uint32_t& lines) {
    const std::optional<Source> source = openSource(context, name.substr(0, kMaxPath), kind);
    if (!source) return IbisVersion::none;
    LineReader reader{.text = source->text};
    while (const std::optional<std::string_view> text = readLine(context, reader, kScanCapacity)) {
        ++lines;
        const std::string_view line = skipWhiteSpace(context, *text);
        if (!line.starts_with('[')) continue;
        if (!prefixEqualsNoCase(line, "[IBIS Ver]", 10) && !prefixEqualsNoCase(line, "[IBIS_Ver]", 10)) break;
        const std::string_view value = skipWhiteSpace(context, line.substr(line.find(']') + 1));
        if (value.empty() || value.front() < '1' || value.front() > '5') break;
        return static_cast<IbisVersion>(value.front() - '0');
    }
    return IbisVersion::none;
}

} // namespace kestrel
