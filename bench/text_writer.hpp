#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>

namespace kestrel::bench {

/// What a generated text holds, to compare with what the checker made of it.
struct Contents {
    std::size_t components = 0;
    std::size_t pins = 0;
    std::size_t models = 0;
    std::size_t submodels = 0;
    std::size_t table_rows = 0; ///< of I-V and V-t tables
    std::size_t selector_entries = 0;
    std::size_t schedule_entries = 0;
    std::size_t package_pins = 0;
    std::size_t matrix_values = 0;

    bool operator==(const Contents&) const = default;
};

/// A text being generated. The generator of random numbers starts alike every time, so texts can be compared between
/// builds.
struct TextWriter {
    std::string text;
    Contents contents;
    std::mt19937_64 random{20240229};
};

/// Appends the pieces and a line feed.
void writeLine(TextWriter& writer, std::initializer_list<std::string_view> pieces);

/// A number from 0 to 1.
[[nodiscard]] double fraction(TextWriter& writer);

/// `prefix` and the number with leading zeros ("drv_00012").
[[nodiscard]] std::string numbered(std::string_view prefix, std::size_t number, std::size_t digits);

/// A distinct name of five characters, the first a letter, for each number below 36 to the fourth.
[[nodiscard]] std::string shortName(std::size_t number);

/// The value with `digits` decimals and its unit, right-aligned in `width` columns.
[[nodiscard]] std::string fixed(double value, int digits, std::size_t width = 0, std::string_view unit = {});

/// The value with an exponent ("-1.2346e-02"), right-aligned in `width` columns.
[[nodiscard]] std::string scientific(double value, int digits, std::size_t width = 0);

} // namespace kestrel::bench
