#include "reader/values.hpp"

#include "base/text.hpp"
#include "reader/decimal.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace kestrel {

namespace {

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
    if (code == std::errc::invalid_argument) return {};
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
    if (digits.size() < number.size()) scanInteger(number.substr(digits.size() + 1), exponent);
    return exponent >= first - point;
}

/// Reads a decimal number with an optional exponent; an incomplete exponent is no part of it.
Scan scanDecimal(std::string_view text, double& value) {
    if (const char* const end = readShortDecimal(text.data(), text.data() + text.size(), value)) {
        return {static_cast<std::size_t>(end - text.data()), false};
    }
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    // from_chars takes words such as "inf" for numbers.
    if (text.size() == sign || (!isDigit(text[sign]) && text[sign] != '.')) return {};
    const std::size_t plus = text[0] == '+' ? 1 : 0;
    const auto [end, code] = std::from_chars(text.data() + plus, text.data() + text.size(), value);
    if (code == std::errc::invalid_argument) return {};
    const auto length = static_cast<std::size_t>(end - text.data());
    if (code == std::errc{}) return {length, false};
    const double magnitude = isHuge(text.substr(sign, length - sign)) ? std::numeric_limits<double>::infinity() : 0.0;
    value = text[0] == '-' ? -magnitude : magnitude;
    return {length, true};
}

ReadResult resultOf(Scan scan, std::string_view text) {
    if (scan.length == 0) return ReadResult::noNumber;
    return scan.length == text.size() ? ReadResult::number : ReadResult::numberAndText;
}

} // namespace

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
    const char* const end = text.data() + text.size();
    if (readPlainNumber(text.data(), end, number) == end && !text.empty()) {
        value = number;
        return ReadResult::number;
    }
    const Scan scan = scanDecimal(text, number);
    if (scan.length != 0 && scan.length == text.size()) {
        value = number;
        return ReadResult::number;
    }
    const std::string_view scale = text.substr(scan.length);
    if (scan.length == 0 || !isAlpha(scale.front())) return ReadResult::noNumber;
    value = number * scaleFactor(scale.front());
    return std::ranges::any_of(scale, isDigit) ? ReadResult::numberAndText : ReadResult::number;
}

ReadResult readCellText(std::string_view text, Cell& cell) {
    const char* const end = text.data() + text.size();
    if (readPlainCell(text.data(), end, cell) == end && !text.empty()) return ReadResult::number;
    cell = {};
    double value = 0.0;
    const ReadResult result = readScaled(text, value);
    if (result != ReadResult::noNumber) cell = Cell(value);
    return result;
}

bool readCell(Diagnostics& diagnostics, std::string_view text, bool present, std::string_view quantity,
              std::string_view label, Cell& cell) {
    cell = {};
    if (!present) return true;
    const ReadResult result = readCellText(text, cell);
    if (result == ReadResult::noNumber) errorAtLine(diagnostics, 1909, label, text);
    if (result == ReadResult::numberAndText) warningAtLine(diagnostics, 1910, label, quantity, text);
    return result != ReadResult::noNumber;
}

} // namespace kestrel
