#include "text_writer.hpp"

#include <array>
#include <charconv>

namespace kestrel::bench {

namespace {

std::string formatted(double value, std::chars_format format, int digits, std::size_t width, std::string_view unit) {
    std::array<char, 64> room{};
    const auto end = std::to_chars(room.data(), room.data() + room.size(), value, format, digits);
    const std::string_view number(room.data(), static_cast<std::size_t>(end.ptr - room.data()));
    const std::size_t length = number.size() + unit.size();
    std::string text(length < width ? width - length : 0, ' ');
    return text.append(number).append(unit);
}

} // namespace

void writeLine(TextWriter& writer, std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces)
        writer.text.append(piece);
    writer.text.push_back('\n');
}

double fraction(TextWriter& writer) {
    // The distributions of the standard library differ between implementations, so the bits are used as they come.
    constexpr double kSteps = 9007199254740992.0; // 2 to the 53rd
    return static_cast<double>(writer.random() >> 11U) / kSteps;
}

std::string numbered(std::string_view prefix, std::size_t number, std::size_t digits) {
    const std::string shown = std::to_string(number);
    std::string name(prefix);
    name.append(shown.size() < digits ? digits - shown.size() : 0, '0');
    return name.append(shown);
}

std::string shortName(std::size_t number) {
    constexpr std::string_view kDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::string name("P0000");
    for (std::size_t at = name.size() - 1; at > 0; --at) {
        name[at] = kDigits[number % kDigits.size()];
        number /= kDigits.size();
    }
    return name;
}

std::string fixed(double value, int digits, std::size_t width, std::string_view unit) {
    return formatted(value, std::chars_format::fixed, digits, width, unit);
}

std::string scientific(double value, int digits, std::size_t width) {
    return formatted(value, std::chars_format::scientific, digits, width, {});
}

} // namespace kestrel::bench
