#pragma once

#include "compare/change.hpp"
#include "compare/settings.hpp"
#include "findings/json.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The forms in which comparisons are written.
namespace kestrel {

class Output;

/// One of two files that are compared.
struct ComparedPath {
    std::string_view path;
    std::optional<std::string> version{}; ///< as the file gives it
    std::int64_t errors = 0;
    bool read = false; ///< false when it was refused or could not be read
};

/// What became of two files.
struct ComparedPair {
    ComparedPath was;
    ComparedPath is;
    const FileChanges* changes = nullptr; ///< null when they were not compared
    /// Keywords of later versions that one of them has, such as "Repeater_pin": what is under them is not compared.
    std::vector<std::string_view> passed_over{};
    bool same_errors = false; ///< the check finds as many of each kind in both: what was dropped is likely the same
    bool same_bytes = false;  ///< known to be one text; only asked for where nothing else shows that they are the same
};

/// What is to be said of two files.
enum class CompareVerdict : std::uint8_t {
    same,
    different,
    notWhole,   ///< no difference in what could be compared, but what could not be may have some
    notCompared ///< at all
};
[[nodiscard]] CompareVerdict verdictOf(const ComparedPair& pair);

/// True when all that both files hold was compared.
[[nodiscard]] bool isWhole(const ComparedPair& pair);

/// How many pairs of files there were.
struct CompareTotals {
    std::int64_t pairs = 0;
    std::int64_t different = 0;
    std::int64_t not_whole = 0; ///< no difference in what could be compared
    std::int64_t not_compared = 0;
    std::int64_t only_old = 0;
    std::int64_t only_new = 0;
};

/// What a form has to know of the call.
struct CompareFormatSettings {
    std::string_view tool = "verimark";
    std::string_view version;
    CompareSettings settings;
    bool quiet = false;    ///< nothing of what is the same
    bool together = false; ///< a second thread may help
};

/// Writes what is different, pair by pair.
class CompareFormat {
public:
    CompareFormat() = default;
    CompareFormat(const CompareFormat&) = delete;
    CompareFormat& operator=(const CompareFormat&) = delete;
    virtual ~CompareFormat() = default;

    virtual void pair(const ComparedPair& pair) = 0;
    /// A file that only one of two folders has.
    virtual void lonely(std::string_view path, bool is_new) = 0;
    /// Once, at the end.
    virtual void ends(const CompareTotals& totals) = 0;
};

[[nodiscard]] std::unique_ptr<CompareFormat> makeCompareText(Output& out, const CompareFormatSettings& settings);
[[nodiscard]] std::unique_ptr<CompareFormat> makeCompareJson(Output& out, const CompareFormatSettings& settings);

/// Appends a change as one line: "Model dq_34: [Pulldown] typ: up to 6.2 % more current (at 0.9 V: 21.4 mA, was
/// 20.1 mA)". No more than `most_names` records are named; the others are counted.
void appendLine(std::string& text, const ChangeGroup& group, std::size_t most_names);
[[nodiscard]] std::string lineOf(const ChangeGroup& group, std::size_t most_names);
/// Whom a change is about: "Models a, b and 3 more".
void appendRecords(std::string& text, const ChangeGroup& group, std::size_t most_names);
/// The same without the records: "[Pulldown] typ: up to 6.2 % more current (at 0.9 V: 21.4 mA, was 20.1 mA)".
void appendBody(std::string& text, const ChangeGroup& group);

/// What all changes come to: "12 models changed, 2 added, 1 removed; largest change 6.2 % in dq_34 [Pulldown]".
[[nodiscard]] std::string summaryOf(const FileChanges& changes);
/// The same of a pair, which may not have been compared, or not as a whole.
[[nodiscard]] std::string summaryOf(const ComparedPair& pair);

} // namespace kestrel
