#include "reader/cmn.hpp"

#include "ibis/run.hpp"

#include <charconv>
#include <limits>
#include <system_error>

namespace kestrel {

namespace {

/// Most white space that may stand between two items.
constexpr std::ptrdiff_t kMaxSkip = 120;

/// Most characters that a text kept whole may have.
constexpr std::size_t kMaxWholeText = 1024;

/// Largest limit that the messages about overlong texts admit to.
constexpr std::uint32_t kMaxPrintedLimit = 2176;

constexpr std::array<std::string_view, 5> kReservedWords{"GND", "NC", "POWER", "CIRCUITCALL", "NA"};

/// The first character from `at` on that is no white space. Too much of that is an assertion failure outside long-line
/// mode.
const char* skipSpaces(const Run& run, const char* at, const char* end) {
    const char* const begin = at;
    while (at != end && isSpace(*at)) {
        ++at;
    }
    if (at - begin > kMaxSkip && !run.parse.long_lines) {
        assertionFailed(run.out, here());
    }
    return at;
}

/// Where the item that begins at `at`, which is not the end, ends. The split character is an item of length 1.
const char* itemEnd(const char* at, const char* end, char split) {
    const char* const begin = at;
    while (at != end && *at != ' ' && *at != '\t' && *at != split) {
        ++at;
    }
    return at == begin ? at + 1 : at;
}

/// Without a split character the blank stands in for it: it ends an item anyway and never begins one.
constexpr char stopFor(char split) { return split == '\0' ? ' ' : split; }

/// How a number was read off the front of a text.
struct Scan {
    std::size_t length = 0; ///< characters that belong to the number, 0 when there is none
    bool out_of_range = false;
};

/// Length of a leading "+" that a digit follows; from_chars takes none.
std::size_t plusLength(std::string_view text) { return text.size() > 1 && text[0] == '+' && isDigit(text[1]) ? 1 : 0; }

/// Reads base-10 digits; what the type cannot hold becomes its nearest end.
template <class Integer> Scan scanInteger(std::string_view text, Integer& value) {
    const std::size_t plus = plusLength(text);
    const auto [end, code] = std::from_chars(text.data() + plus, text.data() + text.size(), value);
    if (code == std::errc::invalid_argument) {
        return {};
    }
    const bool out_of_range = code == std::errc::result_out_of_range;
    if (out_of_range) {
        value = text.front() == '-' ? std::numeric_limits<Integer>::lowest() : std::numeric_limits<Integer>::max();
    }
    return {static_cast<std::size_t>(end - text.data()), out_of_range};
}

/// True when a decimal number without sign, known to be outside the range of a double and so not 0, is too large rather
/// than too small.
bool isHuge(std::string_view number) {
    const std::string_view digits = number.substr(0, number.find_first_of("eE"));
    const auto first = static_cast<std::int64_t>(digits.find_first_of("123456789"));
    const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
    std::int64_t exponent = 0;
    if (digits.size() < number.size()) {
        scanInteger(number.substr(digits.size() + 1), exponent);
    }
    return exponent >= first - point;
}

/// Reads a decimal number with an optional exponent; an incomplete exponent is no part of it.
Scan scanDecimal(std::string_view text, double& value) {
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    // from_chars takes words such as "inf" for numbers.
    if (text.size() == sign || (!isDigit(text[sign]) && text[sign] != '.')) {
        return {};
    }
    const std::size_t plus = text[0] == '+' ? 1 : 0;
    const auto [end, code] = std::from_chars(text.data() + plus, text.data() + text.size(), value);
    if (code == std::errc::invalid_argument) {
        return {};
    }
    const auto length = static_cast<std::size_t>(end - text.data());
    if (code == std::errc{}) {
        return {length, false};
    }
    const double magnitude = isHuge(text.substr(sign, length - sign)) ? std::numeric_limits<double>::infinity() : 0.0;
    value = text[0] == '-' ? -magnitude : magnitude;
    return {length, true};
}

ReadResult resultOf(Scan scan, std::string_view text) {
    if (scan.length == 0) {
        return ReadResult::noNumber;
    }
    return scan.length == text.size() ? ReadResult::number : ReadResult::numberAndText;
}

/// What a letter behind a number multiplies it with: 1 for a letter that is a unit.
double scaleFactor(char letter) {
    switch (letter) {
    case 'T': return 1e12;
    case 'G': return 1e9;
    case 'M': return 1e6;
    case 'k': return 1e3;
    case 'm': return 1e-3;
    case 'u': return 1e-6;
    case 'n': return 1e-9;
    case 'p': return 1e-12;
    case 'f': return 1e-15;
    default: return 1.0;
    }
}

/// What becomes of a text that is longer than its limit.
enum class Overlong : bool { cut, keep };

bool storeOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, std::uint32_t limit,
               std::string_view keyword, Overlong overlong) {
    if (!destination.empty()) {
        errorAtLine(diagnostics, 1911, keyword);
        return false;
    }
    if (text.empty()) {
        errorAtLine(diagnostics, 1913, keyword);
    }
    const std::uint32_t printed_limit = std::min(limit, kMaxPrintedLimit);
    if (overlong == Overlong::cut) {
        if (text.size() > limit) {
            errorAtLine(diagnostics, 1912, keyword, text, printed_limit);
        }
        destination = text.substr(0, limit);
    } else {
        if (text.size() > limit) {
            errorAtLine(diagnostics, 1914, keyword, text, printed_limit);
        }
        destination = text.substr(0, kMaxWholeText);
    }
    return true;
}

} // namespace

std::string_view skipWhiteSpace(const Run& run, std::string_view text) {
    const char* const end = text.data() + text.size();
    return {skipSpaces(run, text.data(), end), end};
}

std::string_view stripTrailing(std::string_view text) {
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view trim(std::string_view text) {
    text = stripTrailing(text);
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

bool equalsNoCase(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, {}, toLower, toLower); }

bool prefixEqualsNoCase(std::string_view a, std::string_view b, std::size_t count) {
    return equalsNoCase(a.substr(0, count), b.substr(0, count));
}

void lowerCase(std::string& text) { std::ranges::transform(text, text.begin(), toLower); }

void upperCase(std::string& text) { std::ranges::transform(text, text.begin(), toUpper); }

ItemList splitItems(const Run& run, std::string_view text, int max, char split) {
    const char stop = stopFor(split);
    const char* const end = text.data() + text.size();
    ItemList list;
    for (const char* at = skipSpaces(run, text.data(), end); at != end; at = skipSpaces(run, at, end)) {
        const char* const item = at;
        at = itemEnd(item, end, stop);
        if (list.kept < max) {
            list.items[static_cast<std::size_t>(list.kept++)] = std::string_view(item, at);
        }
        ++list.count;
    }
    return list;
}

std::string_view takeItem(const Run& run, std::string_view& text, char split) {
    text = skipWhiteSpace(run, text);
    if (text.empty()) {
        return text;
    }
    const char* const end = text.data() + text.size();
    const std::string_view item(text.data(), itemEnd(text.data(), end, stopFor(split)));
    text.remove_prefix(item.size());
    return item;
}

ReadResult readUnsigned(std::string_view text, std::uint32_t& value) {
    return resultOf(scanInteger(text, value), text);
}

ReadResult readSigned(std::string_view text, std::int32_t& value) {
    const Scan scan = scanInteger(text, value);
    const ReadResult result = resultOf(scan, text);
    return result == ReadResult::number && scan.out_of_range ? ReadResult::noNumber : result;
}

ReadResult readDouble(std::string_view text, double& value) { return resultOf(scanDecimal(text, value), text); }

ReadResult readScaled(std::string_view text, double& value) {
    double number = 0.0;
    const Scan scan = scanDecimal(text, number);
    if (scan.length != 0 && scan.length == text.size()) {
        value = number;
        return ReadResult::number;
    }
    const std::string_view scale = text.substr(scan.length);
    if (scan.length == 0 || !isAlpha(scale.front())) {
        return ReadResult::noNumber;
    }
    value = number * scaleFactor(scale.front());
    return std::ranges::any_of(scale, isDigit) ? ReadResult::numberAndText : ReadResult::number;
}

ReadResult readValueOrNa(std::string_view text, double& value, bool& na) {
    na = equalsNoCase(text, "NA");
    if (!na) {
        return readScaled(text, value);
    }
    value = 0.0;
    return ReadResult::number;
}

bool readCell(Diagnostics& diagnostics, std::string_view text, bool present, std::string_view quantity,
              std::string_view label, Cell& cell) {
    cell = {};
    if (!present) {
        return true;
    }
    bool na = false;
    const ReadResult result = readValueOrNa(text, cell.value, na);
    if (result == ReadResult::noNumber) {
        errorAtLine(diagnostics, 1909, label, text);
        return false;
    }
    if (result == ReadResult::numberAndText) {
        warningAtLine(diagnostics, 1910, label, quantity, text);
    }
    cell.state = na ? CellState::na : CellState::number;
    return true;
}

bool setTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, std::uint32_t limit,
                 std::string_view keyword) {
    return storeOnce(diagnostics, destination, text, limit, keyword, Overlong::cut);
}

bool setWholeTextOnce(Diagnostics& diagnostics, std::string& destination, std::string_view text, std::uint32_t limit,
                      std::string_view keyword) {
    return storeOnce(diagnostics, destination, text, limit, keyword, Overlong::keep);
}

void requiredKeywordMissing(Run& run, std::string_view keyword) {
    error(run.diagnostics, 1915, keyword, run.parse.file_name);
}

bool isReservedWord(std::string_view text) {
    return std::ranges::any_of(kReservedWords, [text](std::string_view word) { return equalsNoCase(text, word); });
}

bool checkNotReserved(Diagnostics& diagnostics, std::string_view text) {
    if (!isReservedWord(text)) {
        return true;
    }
    errorAtLine(diagnostics, 1916, text);
    return false;
}

} // namespace kestrel
