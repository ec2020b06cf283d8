#include "reader/names.hpp"

#include "base/text.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <utility>

namespace kestrel {

namespace {

/// Most characters that a text kept whole may have.
constexpr std::size_t kMaxWholeText = 1024;

/// Largest limit that the messages about overlong texts admit to.
constexpr std::uint32_t kMaxPrintedLimit = 2176;

constexpr std::array<std::string_view, 5> kReservedWords{"GND", "NC", "POWER", "CIRCUITCALL", "NA"};

using TextTooLong = CheckedMessage<ArgKind::text, ArgKind::text, ArgKind::unsignedInteger>;

/// Judges a text that may be given once; false when the record has one already.
bool checkOnce(Diagnostics& diagnostics, std::string_view present, std::string_view text, int limit,
               std::string_view keyword, TextTooLong too_long) {
    if (!present.empty()) {
        errorAtLine(diagnostics, 1911, keyword);
        return false;
    }
    if (text.empty()) errorAtLine(diagnostics, 1913, keyword);
    if (std::cmp_greater(text.size(), limit)) {
        errorAtLine(diagnostics, too_long, keyword, text,
                    std::min(static_cast<std::uint32_t>(limit), kMaxPrintedLimit));
    }
    return true;
}

/// Reports a name over its limit (false).
bool checkLength(Diagnostics& diagnostics, std::string_view text, int limit, NameTooLong too_long) {
    if (std::cmp_less_equal(text.size(), limit)) return true;
    const std::array<Arg, 2> args{Arg(text), Arg(limit)};
    const std::size_t first = too_long.shows_name ? 0 : 1;
    const std::size_t end = too_long.shows_limit ? 2 : 1;
    reportRow(diagnostics, Severity::errorAtLine, too_long.row, std::span(args).subspan(first, end - first));
    return false;
}

} // namespace

bool storeName(Diagnostics& diagnostics, std::string& name, std::string_view text, int limit, NameTooLong too_long) {
    name = cutName(text, limit);
    return checkLength(diagnostics, text, limit, too_long);
}

bool storeName(Context& context, StoredText& name, std::string_view text, int limit, NameTooLong too_long) {
    name = context.texts.add(cutName(text, limit));
    return checkLength(context.diagnostics, text, limit, too_long);
}

bool storeName(Context& context, Name& name, std::string_view text, int limit, NameTooLong too_long) {
    name = context.names.enter(cutName(text, limit));
    return checkLength(context.diagnostics, text, limit, too_long);
}

bool setTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, int limit,
                 std::string_view keyword) {
    if (!checkOnce(diagnostics, destination, text, limit, keyword, 1912)) return false;
    destination = cutName(text, limit);
    return true;
}

bool setTextOnce(Context& context, Name& destination, std::string_view text, int limit, std::string_view keyword) {
    if (!checkOnce(context.diagnostics, destination, text, limit, keyword, 1912)) return false;
    destination = context.names.enter(cutName(text, limit));
    return true;
}

bool setWholeTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, int limit,
                      std::string_view keyword) {
    if (!checkOnce(diagnostics, destination, text, limit, keyword, 1914)) return false;
    destination = text.substr(0, kMaxWholeText);
    return true;
}

void requiredKeywordMissing(Context& context, std::string_view keyword) {
    error(context.diagnostics, 1915, keyword, context.parse.file_name);
}

bool isFileNameCharacter(char c) {
    constexpr std::string_view kMarks = "_^$~!#%&-{}()@'`.";
    return isAlpha(c) || isDigit(c) || kMarks.find(c) != std::string_view::npos;
}

bool isReservedWord(std::string_view text) {
    return std::ranges::any_of(kReservedWords, [text](std::string_view word) { return equalsNoCase(text, word); });
}

bool checkNotReserved(Diagnostics& diagnostics, std::string_view text) {
    if (!isReservedWord(text)) return true;
    errorAtLine(diagnostics, 1916, text);
    return false;
}

} // namespace kestrel
