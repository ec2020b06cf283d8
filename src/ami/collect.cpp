#include "ami/check.hpp"
#include "base/large_memory.hpp"
#include "base/make_room.hpp"
#include "reader/context.hpp"

#include <new>
#include <utility>

namespace kestrel {

namespace {

/// A parameter file being collected.
struct Collector {
    char comment;
    std::string text{};
    bool in_string = false;        ///< a quoted string may run over many lines and hides the comment character
    std::uint32_t string_line = 0; ///< where it began
};

/// The line up to its comment. Most lines have neither comment nor string.
std::string_view cutComment(Collector& collector, std::string_view line, std::uint32_t number) {
    std::size_t comment = line.find(collector.comment);
    for (std::size_t quote = line.find('"'); quote < line.size(); quote = line.find('"', quote + 1)) {
        if (!collector.in_string) {
            if (comment < quote) break;
            collector.string_line = number;
        } else if (comment < quote) { // it is in the string
            comment = line.find(collector.comment, quote);
        }
        collector.in_string = !collector.in_string;
    }
    return collector.in_string ? line : line.substr(0, comment);
}

/// Adds a line; one for which there is no memory is reported and left out.
void addLine(Context& context, std::string& text, std::string_view line) {
    const std::size_t size = text.size();
    try {
        text.append(line).push_back('\n');
    } catch (const std::bad_alloc&) {
        text.resize(size);
        errorHere(context.diagnostics, 922);
    }
}

} // namespace

std::string collectAmi(Context& context, Source& source) {
    ParseState& parse = context.parse;
    const bool long_lines = std::exchange(parse.long_lines, true);
    parse.kind = FileKind::ami;
    parse.line = 0;
    parse.comment = '|';
    Collector collector{.comment = parse.comment};
    makeRoom(collector.text, static_cast<std::size_t>(source.bytes.size()) + 1);
    preferLargePages(collector.text.data(), collector.text.capacity());
    LineReader reader(std::move(source.bytes));
    while (const std::optional<SourceLine> line = reader.next(context, kNoCapacity)) {
        ++parse.line;
        addLine(context, collector.text, cutComment(collector, line->text, parse.line));
    }
    if (reader.failed()) reportNotOpened(context, source);
    if (collector.in_string) {
        const InLine in_line(context.diagnostics, collector.string_line);
        error(context.diagnostics, 924, static_cast<std::int64_t>(collector.string_line));
    }
    parse.long_lines = long_lines;
    return std::move(collector.text);
}

} // namespace kestrel
