#pragma once

#include "findings/finding_log.hpp"
#include "report/anchors.hpp"
#include "report/quantity.hpp"
#include "report/source_lines.hpp"

#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// A finding as the page shows it.
struct ShownFinding {
    Level level;
    std::optional<FindingCode> code;
    std::uint32_t line;
    bool exact;        ///< it names the line itself
    std::string file;  ///< empty for the file that is reported
    std::string about; ///< such as "model dq_io"; empty when it is about no record
    std::string text;
    std::optional<Anchor> place; ///< of what it is about
    Anchor anchor;               ///< of itself
    TablePlaces at{};            ///< the voltages or times of its table, where its text has none

    /// The text as pages have it. Only the numbers of advice are not those of a file.
    [[nodiscard]] std::string shownText() const { return level == Level::advice ? withMinusSigns(text) : text; }
};

/// The findings of a file, and the lines around them.
struct ShownFindings {
    std::vector<ShownFinding> list;
    std::size_t left_out = 0; ///< of those that are beyond what is shown
    SourceLines lines;        ///< of the file itself

    /// Those about one record, in their order.
    [[nodiscard]] std::vector<const ShownFinding*> about(const Anchor* place) const;

private:
    friend ShownFindings collectFindings(const FindingLog& log, std::size_t left_out, const std::string& path,
                                         std::filesystem::file_time_type since, const Anchors& anchors);
    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> by_place_;
};

/// Most findings of a file that the page shows.
inline constexpr std::size_t kMostFindings = 10000;

/// The findings of the file, with their places in the page.
[[nodiscard]] ShownFindings collectFindings(const FindingLog& log, std::size_t left_out, const std::string& path,
                                            std::filesystem::file_time_type since, const Anchors& anchors);

/// Writes the findings, of which there are some, as a table that unfolds, with the lines around each.
void writeFindings(Html& html, const ShownFindings& findings);

/// The class by which findings of a level are styled, and the word for it.
[[nodiscard]] Literal classOf(Level level);

} // namespace kestrel
