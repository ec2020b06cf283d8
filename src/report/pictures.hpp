#pragma once

#include "model/tables.hpp"
#include "quality/physics.hpp"
#include "report/plot.hpp"
#include "report/sections.hpp"

#include <optional>

/// The pictures of tables.
namespace kestrel {

/// What goes ahead of a value in the texts of findings.
inline constexpr std::string_view kAt = " at ";
inline constexpr std::string_view kFrom = " from ";
inline constexpr std::string_view kAtPinVoltage = " at the pin voltage ";

/// Marks findings of one record in the pictures of its tables.
class FindingMarks {
public:
    FindingMarks(const PartContext& part, const Subject& record);
    /// A table of the record begins at this line.
    void enterTable(std::uint32_t line) { begins_.push_back(line); }
    void ready() { std::ranges::sort(begins_); }

    /// Adds marks to the picture of a table that began at `line`: at the row of the finding's own line, or at the
    /// voltage or time that a finding about the table names.
    void mark(Plot& plot, std::uint32_t line, std::string_view label) const;
    /// Adds marks for findings whose text has these words and names a value of the x axis behind `lead`.
    void markByWords(Plot& plot, std::string_view words, std::string_view lead = kAt) const;

private:
    /// By its line; one ahead of all tables is about that which it names.
    [[nodiscard]] bool isAboutTable(const ShownFinding& finding, std::uint32_t line, std::string_view label) const;
    /// Where in the table that began at `line` the finding is.
    [[nodiscard]] TablePlaces placesOf(const ShownFinding& finding, std::uint32_t line, std::string_view unit) const;
    [[nodiscard]] std::optional<double> firstCellOf(const ShownFinding& finding) const;

    std::vector<const ShownFinding*> findings_;
    const SourceLines& lines_;
    std::vector<std::uint32_t> begins_;
};

/// The value with this unit that a text names behind "at" or other words, as in "at 860 mV"; nothing where it names
/// none.
[[nodiscard]] std::optional<double> valueBehind(std::string_view lead, std::string_view text, std::string_view unit);

/// The points of the corners that can be drawn, by the first column.
[[nodiscard]] PerCorner<std::vector<Point>> pointsOf(const Rows<TableRow>& rows);

/// A picture with the lines of a table's corners.
[[nodiscard]] Plot plotOf(const Rows<TableRow>& rows, std::string title, std::string_view owner, Axis x, Axis y);

/// Against what a line over time is flat when it keeps within a hundredth of it.
enum class Flat : std::uint8_t {
    ofSwing, ///< from its first value to its last
    ofRange  ///< from its lowest value to its highest: of what comes back
};
/// The time in seconds from which on all lines of a picture are flat and nothing is marked.
[[nodiscard]] double settledTime(const Plot& plot, Flat flat);
/// Has the picture end soon behind that time where most of it lies there, and says what is not shown.
void endBehind(Plot& plot, double settled);

/// What an I-V table is called in its picture, and how its voltage counts.
struct TableTitle {
    TableKind kind;
    std::string_view title;
    std::string_view note;
};
inline constexpr std::array<TableTitle, kTableKinds> kTableTitles{{
    {TableKind::pulldown, "Pulldown", "from the pulldown's rail up"},
    {TableKind::pullup, "Pullup", "from the pullup's rail down"},
    {TableKind::gndClamp, "GND Clamp", "from the clamp's rail up"},
    {TableKind::powerClamp, "POWER Clamp", "from the clamp's rail down"},
}};
/// The title of a table under "[Series MOSFET]", with its Vds.
[[nodiscard]] std::string mosfetTitle(std::string_view label, const SMos& mosfet);

/// The line of a rail at a voltage of the picture, with a word and the pin's voltage there.
[[nodiscard]] Rule railAt(double at, std::string_view word, double voltage);
/// Where the typical rails are in a table's own voltage.
[[nodiscard]] std::vector<Rule> railsOfTable(const ModelPhysics& physics, TableKind kind);

/// The title of a waveform by its fixture, such as "Rising, 50 ohm to 3.3 V", and what is beside it.
[[nodiscard]] std::string waveformTitle(std::string_view word, const Wvfrm& waveform);
[[nodiscard]] std::string fixtureNote(const Wvfrm& waveform);

/// Writes the key of pictures in which these were drawn.
void writeLegend(Html& html, Signs signs);
/// The same of pictures with lines of one or both of two files that are compared.
void writeComparedLegend(Html& html, bool has_new, bool has_old, bool has_rails);

} // namespace kestrel
