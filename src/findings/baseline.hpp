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

/// A finding in a baseline: "path, code, message" on one line, without the line number. Control characters and
/// backslashes are escaped, a path with a comma or a quotation mark is quoted; "-" is the code of a text without
/// number.
[[nodiscard]] std::string baselineLine(const Finding& finding);

/// What is wrong with a baseline, and where.
struct BaselineFault {
    std::uint32_t line = 0;
    std::string text;
};

/// Findings that are known. Equal ones are counted: each line of the file stands for one.
class Baseline {
public:
    /// Reads the text of a baseline file; the fault when it is damaged.
    [[nodiscard]] std::optional<BaselineFault> read(std::string_view text);

    /// Takes a finding off what is known; false when it is new.
    [[nodiscard]] bool take(const Finding& finding);

    /// No advice is given: lines of advice need not occur.
    void leaveAdviceOut() { advice_left_out_ = true; }

    /// A file was checked: its lines have to occur.
    void checked(std::string_view path);

    [[nodiscard]] std::int64_t taken() const { return taken_; }

    /// Calls `tell` with the number and text of every line of a checked file that did not occur, by number.
    void eachGone(const std::function<void(std::uint32_t, std::string_view)>& tell) const;

private:
    struct Entry {
        std::vector<std::uint32_t> lines; ///< where it is in the file
        std::size_t used = 0;             ///< how many of them have occurred
        bool* is_checked = nullptr;       ///< whether its file was
        bool is_advice = false;
    };

    TextMap<Entry> entries_;
    TextMap<bool> files_; ///< by path as it is in the lines
    std::int64_t taken_ = 0;
    bool advice_left_out_ = false;
};

/// Collects a baseline to be written.
class BaselineWriter {
public:
    void add(const Finding& finding) { ++lines_[baselineLine(finding)]; }
    void write(Output& out) const;

private:
    std::map<std::string, std::int64_t, std::less<>> lines_;
};

} // namespace kestrel
