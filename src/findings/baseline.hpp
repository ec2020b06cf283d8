#pragma once

#include "base/output.hpp"
#include "base/text_hash.hpp"
#include "diagnostics/diagnostics.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// A finding in a baseline: "path, code, message" on one line, without numbers of lines. Control characters and
/// backslashes are escaped, a path with a comma or a quotation mark is quoted; "-" is the code of a text without
/// number.
[[nodiscard]] std::string baselineLine(const Finding& finding);

/// What is wrong with a baseline, and where.
struct BaselineFault {
    std::uint32_t line = 0;
    std::string text;
};

/// Findings that are known. Equal ones are counted for each checked file: each line of the baseline stands for one. A
/// finding in a file that several lead to is the same for all of them.
class Baseline {
public:
    /// What a baseline begins with.
    static constexpr std::string_view kHead = "# verimark baseline 1: path, code, message";

    /// Reads the text of a baseline file; the fault when it is damaged.
    [[nodiscard]] std::optional<BaselineFault> read(std::string_view text);

    /// Takes a finding off what is known; false when it is new.
    [[nodiscard]] bool take(const Finding& finding);
    /// The same for one that is left out anyway.
    void pass(const Finding& finding) { static_cast<void>(occurs(finding)); }
    /// What comes next is found when another file is checked.
    void nextFile() { ++file_; }

    /// No advice is given: lines of advice need not occur.
    void leaveAdviceOut() { advice_left_out_ = true; }

    /// A file was checked: its lines have to occur.
    void checked(std::string_view path);

    [[nodiscard]] std::int64_t taken() const { return taken_; }

    /// Calls `tell` with the number and text of every line of a checked file that did not occur, by number.
    void eachGone(const std::function<void(std::uint32_t, std::string_view)>& tell) const;

private:
    struct Entry {
        std::uint32_t lines = 0;    ///< how many of the baseline are equal to it
        std::uint32_t times = 0;    ///< how often it occurred in the checked file in which it occurred last
        std::uint32_t most = 0;     ///< in any file
        std::size_t file = 0;       ///< the one in which it occurred last
        bool* is_checked = nullptr; ///< whether the file that it is in was read
        bool is_advice = false;
    };
    using Entries = TextMap<Entry>;

    /// A line of the baseline.
    struct Line {
        std::uint32_t number;
        std::uint32_t earlier; ///< how many equal ones are ahead of it
        const Entries::value_type* entry;
    };

    [[nodiscard]] bool occurs(const Finding& finding);

    Entries entries_;
    std::vector<Line> lines_; ///< by number
    TextMap<bool> files_;     ///< by path as it is in the lines
    std::int64_t taken_ = 0;
    std::size_t file_ = 1; ///< the number of the checked file
    bool advice_left_out_ = false;
};

/// Collects a baseline to be written.
class BaselineWriter {
public:
    void add(const Finding& finding);
    void nextFile() { ++file_; }
    void write(Output& out) const;

private:
    struct Count {
        std::size_t file = 0;   ///< the checked file in which it came last
        std::int64_t times = 0; ///< how often in that file
        std::int64_t most = 0;  ///< in any file
    };

    std::map<std::string, Count, std::less<>> lines_;
    std::size_t file_ = 1;
};

} // namespace kestrel
