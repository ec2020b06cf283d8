#include "quality/date_text.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace kestrel {

namespace {

/// A run of digits or of letters, and what is ahead of it.
struct Part {
    std::string_view separator; ///< neither a digit nor a letter; empty where digits and letters meet
    std::string_view text;
    bool is_number = false;
};

std::vector<Part> partsOf(std::string_view text) {
    std::vector<Part> parts;
    const auto take = [&text](auto belongs) {
        const auto end = std::ranges::find_if_not(text, belongs);
        const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
        text.remove_prefix(taken.size());
        return taken;
    };
    for (;;) {
        const std::string_view separator = take([](char c) { return !isDigit(c) && !isAlpha(c); });
        if (text.empty()) return parts;
        const bool is_number = isDigit(text.front());
        const std::string_view run = is_number ? take(isDigit) : take(isAlpha);
        parts.push_back({separator, run, is_number});
    }
}

/// True for a name of which the word has three letters at least, from the first on.
bool isNamed(std::span<const std::string_view> names, std::string_view word) {
    constexpr std::size_t kShortest = 3;
    return word.size() >= kShortest && std::ranges::any_of(names, [word](std::string_view name) {
               return equalsNoCase(name.substr(0, word.size()), word);
           });
}

bool isMonthName(std::string_view word) {
    constexpr std::array<std::string_view, 12> kNames{"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
    return isNamed(kNames, word);
}

/// Words within a date that say nothing of its year and month: ends of ordinal numbers.
bool isOrdinalEnd(const Part& part) {
    constexpr std::array<std::string_view, 4> kEnds{"st", "nd", "rd", "th"};
    return part.separator.empty() &&
           std::ranges::any_of(kEnds, [&part](std::string_view end) { return equalsNoCase(end, part.text); });
}

/// Takes times of the day and what belongs to them out, and the ends of ordinal numbers.
void takeOutTimes(std::vector<Part>& parts) {
    std::vector<Part> kept;
    const auto joins = [](const Part& part) { return part.is_number && part.separator == ":"; };
    for (std::size_t i = 0; i < parts.size();) {
        std::size_t end = i + 1;
        while (parts[i].is_number && end < parts.size() && joins(parts[end]))
            ++end;
        const auto is_short = [](const Part& part) { return part.text.size() <= 2; };
        const bool is_time = end > i + 1 && std::all_of(parts.begin() + static_cast<std::ptrdiff_t>(i),
                                                        parts.begin() + static_cast<std::ptrdiff_t>(end), is_short);
        if (is_time) {
            // An offset from universal time, such as "+0200".
            const bool has_offset = end < parts.size() && parts[end].is_number && parts[end].text.size() == 4 &&
                                    (parts[end].separator.ends_with('+') || parts[end].separator.ends_with('-'));
            i = has_offset ? end + 1 : end;
            continue;
        }
        if (!isOrdinalEnd(parts[i]) || kept.empty()) kept.push_back(parts[i]);
        ++i;
    }
    parts = std::move(kept);
}

/// Looks for the years that a text may mean.
class Years {
public:
    Years(int first, int last) : first_(first), last_(last) {}

    /// Notes the year that is given by two or four digits, beside a month and perhaps a day.
    void note(std::string_view digits) {
        constexpr int kCentury = 100;
        constexpr int kFirstOf1900s = 80;
        int year = valueOf(digits);
        if (digits.size() == 2) {
            year += year >= kFirstOf1900s ? 19 * kCentury : 20 * kCentury;
        } else if (digits.size() != 4) {
            return;
        }
        const bool wanted = first_ <= year && year <= last_;
        if (!found_ || (wanted && !(first_ <= *found_ && *found_ <= last_))) found_ = year;
    }

    /// The same where the month, and the day if there is one, are numbers.
    void noteWith(std::string_view year, std::string_view month, std::string_view day = "1") {
        if (isFrom1To(month, 12) && isFrom1To(day, 31)) note(year);
    }

    [[nodiscard]] std::optional<int> found() const { return found_; }

    /// True for one or two digits that give a number from 1 to `last`.
    static bool isFrom1To(std::string_view digits, int last) {
        return digits.size() <= 2 && 1 <= valueOf(digits) && valueOf(digits) <= last;
    }

private:
    /// Of at most four digits; others are no part of a date.
    static int valueOf(std::string_view digits) {
        constexpr int kBase = 10;
        int value = 0;
        for (const char digit : digits.substr(0, 4))
            value = value * kBase + (digit - '0');
        return value;
    }

    int first_;
    int last_;
    std::optional<int> found_;
};

/// "12-May-2003", "May 2003": the year is a number beside the name of the month.
void readNamedMonth(const std::vector<Part>& parts, Years& years) {
    std::vector<std::string_view> numbers;
    for (const Part& part : parts)
        if (part.is_number) numbers.push_back(part.text);
    const bool has_long = std::ranges::any_of(numbers, [](std::string_view number) { return number.size() == 4; });
    for (const std::string_view number : numbers) {
        if (number.size() == 4 || (number.size() == 2 && !has_long)) years.note(number);
    }
}

/// "20040312", "260821", "200403": no marks between year, month and day.
void readJoined(std::string_view digits, Years& years) {
    constexpr std::size_t kDate = 8;
    constexpr std::size_t kDateAndMinutes = 12;
    constexpr std::size_t kDateAndSeconds = 14;
    if (digits.size() == kDateAndMinutes || digits.size() == kDateAndSeconds) digits = digits.substr(0, kDate);
    if (digits.size() == kDate) {
        years.noteWith(digits.substr(0, 4), digits.substr(4, 2), digits.substr(6));
        years.noteWith(digits.substr(4), digits.substr(2, 2), digits.substr(0, 2));
        years.noteWith(digits.substr(4), digits.substr(0, 2), digits.substr(2, 2));
    } else if (digits.size() == 6) {
        years.noteWith(digits.substr(0, 2), digits.substr(2, 2), digits.substr(4));
        years.noteWith(digits.substr(4), digits.substr(2, 2), digits.substr(0, 2));
        years.noteWith(digits.substr(4), digits.substr(0, 2), digits.substr(2, 2));
        const auto of_our_time = [](std::string_view year) { return year.starts_with("19") || year.starts_with("20"); };
        if (of_our_time(digits)) years.noteWith(digits.substr(0, 4), digits.substr(4));
        if (of_our_time(digits.substr(2))) years.noteWith(digits.substr(2), digits.substr(0, 2));
    }
}

/// "2003-05-12", "05/12/97", "12.5.2003": a run of numbers without words between them; of two, "05/2003", one is a year
/// of four digits.
void readRun(std::span<const Part> run, Years& years) {
    for (const Part& part : run)
        readJoined(part.text, years);
    for (std::size_t i = 0; i + 2 < run.size(); ++i) {
        const std::string_view first = run[i].text;
        const std::string_view second = run[i + 1].text;
        const std::string_view third = run[i + 2].text;
        years.noteWith(first, second, third);
        years.noteWith(third, first, second);
        years.noteWith(third, second, first);
    }
    // "3, 2004" is what follows a name that is none of a month.
    if (run.size() != 2 || run[1].separator.find(',') != std::string_view::npos) return;
    if (run[0].text.size() == 4) years.noteWith(run[0].text, run[1].text);
    if (run[1].text.size() == 4) years.noteWith(run[1].text, run[0].text);
}

void readNumbers(std::span<const Part> parts, Years& years) {
    for (auto begin = parts.begin(); begin != parts.end();) {
        const auto end = std::find_if(begin, parts.end(), [](const Part& part) { return !part.is_number; });
        readRun({begin, end}, years);
        begin = end == parts.end() ? end : end + 1;
    }
}

} // namespace

std::optional<int> yearOfDate(std::string_view text, int first, int last) {
    std::vector<Part> parts = partsOf(text);
    takeOutTimes(parts);
    Years years(first, last);
    const bool named =
        std::ranges::any_of(parts, [](const Part& part) { return !part.is_number && isMonthName(part.text); });
    named ? readNamedMonth(parts, years) : readNumbers(parts, years);
    return years.found();
}

} // namespace kestrel
