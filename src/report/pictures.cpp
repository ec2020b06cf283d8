#include "report/pictures.hpp"

#include "reader/values.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace kestrel {

namespace {

/// The value of a line of the picture at a place, between its points.
std::optional<double> valueAt(const std::vector<Point>& points, double x) {
    if (points.empty()) return std::nullopt;
    const auto above = std::ranges::lower_bound(points, x, {}, &Point::x);
    if (above == points.begin()) return above->y;
    if (above == points.end()) return points.back().y;
    const Point& below = *std::prev(above);
    const double length = above->x - below.x;
    return length > 0 ? below.y + (above->y - below.y) * ((x - below.x) / length) : above->y;
}

/// The corner that a text is about; the typical one where it names none.
Corner cornerOf(std::string_view text) {
    constexpr std::array<std::string_view, kCornerCount> kInBrackets{"(typ)", "(min)", "(max)"};
    for (const Corner corner : {Corner::min, Corner::max})
        if (text.find(kCornerWords[placeOf(corner)]) != std::string_view::npos ||
            text.find(kInBrackets[placeOf(corner)]) != std::string_view::npos)
            return corner;
    return Corner::typ;
}

/// Adds a mark on the line of the corner that the finding is about, else on the last one that is there.
void addMark(Plot& plot, const ShownFinding& finding, double x) {
    if (!canBeDrawn(x)) return;
    const Corner corner = cornerOf(finding.text);
    std::optional<double> y;
    for (const PlotLine& line : plot.lines) {
        if (line.thin) continue;
        const std::optional<double> found = valueAt(line.points, x);
        if (found) y = found;
        if (found && line.corner == corner) break;
    }
    if (y) plot.marks.push_back({{x, *y}, finding.anchor, finding.shownText()});
}

/// From where on the values stay within a hundredth of a size.
double settledTime(const std::vector<Point>& points, double size) {
    constexpr double kFlat = 0.01;
    double low = points.back().y;
    double high = low;
    for (std::size_t i = points.size() - 1; i-- > 0;) {
        low = std::min(low, points[i].y);
        high = std::max(high, points[i].y);
        if (high - low > kFlat * size) return points[i + 1].x;
    }
    return points.front().x;
}

/// A length that is not below `length`, of two digits that are easy to read.
double roundedUp(double length) {
    const double step = std::pow(10.0, std::floor(std::log10(length))) / 5.0;
    return std::ceil(length / step * (1 - 1e-9)) * step;
}

/// Findings about a table name it so, or in brackets.
bool names(std::string_view text, std::string_view label) {
    if (text.starts_with(label)) return true;
    const std::size_t bracket = text.find('[');
    const std::string_view rest = bracket == std::string_view::npos ? std::string_view() : text.substr(bracket + 1);
    return rest.starts_with(label) && rest.substr(label.size()).starts_with(']');
}

} // namespace

std::optional<double> valueBehind(std::string_view lead, std::string_view text, std::string_view unit) {
    for (std::size_t at = text.find(lead); at != std::string_view::npos; at = text.find(lead, at + 1)) {
        const std::string_view rest = text.substr(at + lead.size());
        double value = 0.0;
        const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), value);
        if (read.ec != std::errc{}) continue;
        std::string_view behind = rest.substr(static_cast<std::size_t>(read.ptr - rest.data()));
        if (!behind.starts_with(' ')) continue;
        behind.remove_prefix(1);
        double factor = 1.0;
        if (!behind.starts_with(unit)) {
            constexpr std::string_view kLetters = "fpnumkMGT";
            constexpr std::array kFactors{1e-15, 1e-12, 1e-9, 1e-6, 1e-3, 1e3, 1e6, 1e9, 1e12};
            const std::size_t letter = behind.empty() ? std::string_view::npos : kLetters.find(behind.front());
            if (letter == std::string_view::npos || !behind.substr(1).starts_with(unit)) continue;
            factor = kFactors[letter];
            behind.remove_prefix(1);
        }
        behind.remove_prefix(unit.size());
        const bool word_ends = behind.empty() || !(behind.front() >= 'A' && behind.front() <= 'z');
        if (word_ends && !behind.starts_with('/')) return value * factor;
    }
    return std::nullopt;
}

FindingMarks::FindingMarks(const PartContext& part, const Subject& record)
    : findings_(part.findings.about(part.anchors.find(&record))), lines_(part.findings.lines) {
    std::erase_if(findings_, [](const ShownFinding* finding) { return !finding->file.empty(); });
}

std::optional<double> FindingMarks::firstCellOf(const ShownFinding& finding) const {
    const auto at = lines_.find(finding.line);
    if (at == lines_.end()) return std::nullopt;
    std::string_view line = at->second;
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    double value = 0.0;
    if (line.empty() || line.front() == '[') return std::nullopt;
    const std::string_view item = line.substr(0, line.find_first_of(" \t"));
    return readScaled(item, value) == ReadResult::noNumber ? std::nullopt : std::optional(value);
}

bool FindingMarks::isAboutTable(const ShownFinding& finding, std::uint32_t line, std::string_view label) const {
    const auto next = std::ranges::upper_bound(begins_, finding.line);
    return next == begins_.begin() ? names(finding.text, label) : *std::prev(next) == line;
}

TablePlaces FindingMarks::placesOf(const ShownFinding& finding, std::uint32_t line, std::string_view unit) const {
    TablePlaces places = finding.at;
    std::optional<double>& first = places.front();
    if (first || places.back()) return places;
    if (finding.exact && finding.line > line) first = firstCellOf(finding);
    if (!first) first = valueBehind(kAt, finding.text, unit);
    if (!first) first = valueBehind(kFrom, finding.text, unit);
    return places;
}

void FindingMarks::mark(Plot& plot, std::uint32_t line, std::string_view label) const {
    constexpr std::size_t kMost = 20;
    for (const ShownFinding* const finding : findings_) {
        if (plot.marks.size() >= kMost) return;
        if (!isAboutTable(*finding, line, label)) continue;
        for (const std::optional<double>& x : placesOf(*finding, line, plot.x.unit))
            if (x) addMark(plot, *finding, *x);
    }
}

void FindingMarks::markByWords(Plot& plot, std::string_view words, std::string_view lead) const {
    for (const ShownFinding* const finding : findings_) {
        if (finding->text.find(words) == std::string::npos) continue;
        if (const std::optional<double> x = valueBehind(lead, finding->text, plot.x.unit)) addMark(plot, *finding, *x);
    }
}

PerCorner<std::vector<Point>> pointsOf(const Rows<TableRow>& rows) {
    PerCorner<std::vector<Point>> points;
    for (const Corner corner : kCorners)
        points[corner].reserve(rows.size());
    bool in_order = true;
    double before = std::numeric_limits<double>::lowest();
    for (const TableRow& row : rows) {
        if (!row[kFirst].isNumber()) continue;
        const double x = row[kFirst].value();
        if (!canBeDrawn(x)) continue;
        in_order = in_order && before <= x;
        before = x;
        for (const Corner corner : kCorners) {
            const Cell& cell = row[columnOf(corner)];
            if (cell.isNumber() && canBeDrawn(cell.value())) points[corner].push_back({x, cell.value()});
        }
    }
    for (std::vector<Point>& line : points.values)
        if (!in_order) std::ranges::stable_sort(line, {}, &Point::x);
    return points;
}

Plot plotOf(const Rows<TableRow>& rows, std::string title, std::string_view owner, Axis x, Axis y) {
    Plot plot;
    plot.title = std::move(title);
    plot.owner = owner;
    plot.x = x;
    plot.y = y;
    plot.lines.reserve(kCornerCount);
    PerCorner<std::vector<Point>> points = pointsOf(rows);
    // The typical line is drawn last, above the others.
    for (const Corner corner : {Corner::max, Corner::min, Corner::typ})
        if (!points[corner].empty()) plot.lines.push_back({corner, std::move(points[corner])});
    return plot;
}

double settledTime(const Plot& plot, Flat flat) {
    double settled = std::numeric_limits<double>::lowest();
    for (const PlotLine& line : plot.lines) {
        if (line.thin) continue;
        double size = std::abs(line.points.back().y - line.points.front().y);
        if (flat == Flat::ofRange) {
            const auto [low, high] = std::ranges::minmax(line.points, {}, &Point::y);
            size = high.y - low.y;
        }
        settled = std::max(settled, settledTime(line.points, size));
    }
    for (const PlotMark& mark : plot.marks)
        settled = std::max(settled, mark.at.x);
    return settled;
}

void endBehind(Plot& plot, double settled) {
    constexpr double kRoom = 1.25;
    constexpr double kMostShown = 0.5;
    Span time;
    for (const PlotLine& line : plot.lines) {
        if (line.thin) continue;
        time.include(line.points.front().x);
        time.include(line.points.back().x);
    }
    if (!(settled > time.low) || !(settled < time.high)) return;
    const double shown = roundedUp(kRoom * (settled - time.low));
    if (shown > kMostShown * time.length()) return;
    plot.shown_x = {time.low, time.low + shown, true};
    appendQuantity(plot.note.append(plot.note.empty() ? "flat from " : "; flat from "), plot.shown_x.high, "s", 4);
    appendQuantity(plot.note.append(" to "), time.high, "s", 4);
    plot.note.append(", not shown");
}

std::string mosfetTitle(std::string_view label, const SMos& mosfet) {
    std::string title("Series MOSFET ");
    title.append(label);
    if (mosfet.vds) appendQuantity(title.append(", Vds "), *mosfet.vds, "V");
    return title;
}

Rule railAt(double at, std::string_view word, double voltage) {
    std::string label(word);
    appendQuantity(label, voltage, "V", 4);
    return {.kind = Rule::Kind::rail, .upright = true, .at = at, .label = std::move(label)};
}

std::vector<Rule> railsOfTable(const ModelPhysics& physics, TableKind kind) {
    std::vector<Rule> rails;
    const std::optional<TableAtPin> table = physics.atPin(kind, Corner::typ);
    const References& given = physics.references();
    if (!table) return rails;
    for (const GivenValue rail : {given.pulldown, given.pullup})
        if (rail) rails.push_back(railAt(table->tableVoltage(*rail), "pin ", *rail));
    return rails;
}

std::string waveformTitle(std::string_view word, const Wvfrm& waveform) {
    std::string title(word);
    if (waveform.r_fixture) appendQuantity(title.append(", "), *waveform.r_fixture, kOhm);
    if (waveform.v_fixture) appendQuantity(title.append(" to "), *waveform.v_fixture, "V");
    return title;
}

std::string fixtureNote(const Wvfrm& waveform) {
    struct Part {
        std::string_view word;
        GivenValue value;
        std::string_view unit;
    };
    std::string text;
    for (const Part& part : {Part{"min ", waveform.v_fixture_min, "V"}, Part{"max ", waveform.v_fixture_max, "V"},
                             Part{"C_fixture ", waveform.c_fixture, "F"}, Part{"L_fixture ", waveform.l_fixture, "H"},
                             Part{"R_dut ", waveform.r_dut, kOhm}, Part{"L_dut ", waveform.l_dut, "H"},
                             Part{"C_dut ", waveform.c_dut, "F"}}) {
        // A part of 0 is none, unlike a voltage.
        const GivenValue usual = part.unit == "V" ? waveform.v_fixture : GivenValue(0.0);
        if (!part.value || (usual && *part.value == *usual)) continue;
        appendQuantity(text.append(text.empty() ? "" : ", ").append(part.word), *part.value, part.unit);
    }
    return text;
}

void writeLegend(Html& html, Signs signs) {
    struct Row {
        Sign sign;
        Markup text;
    };
    constexpr std::array kRows{
        Row{Sign::typ, "<b class=\"t\">typ</b> "},
        Row{Sign::min, "<b class=\"n\">min</b> "},
        Row{Sign::max, "<b class=\"x\">max</b> "},
        Row{Sign::rail, "<b class=\"r\">typical rail</b> "},
        Row{Sign::dots, "<b class=\"o-t\">20\u00a0% and 80\u00a0%</b> "},
        Row{Sign::ramp, "<b class=\"s-t\">ramp</b> "},
        Row{Sign::level, "<b class=\"e-t\">DC level of the tables</b> "},
        Row{Sign::threshold, "<b class=\"h\">threshold</b> "},
        Row{Sign::mark, "<b class=\"mark\">finding</b>"},
    };
    html << "<p class=\"legend\">";
    for (const Row& row : kRows)
        if (signs.has(row.sign)) html << row.text;
    html << "</p>\n";
}

void writeComparedLegend(Html& html, bool has_new, bool has_old, bool has_rails) {
    html << "<p class=\"legend\">";
    if (has_new) html << "New: <b class=\"t\">typ</b> <b class=\"n\">min</b> <b class=\"x\">max</b> ";
    if (has_old)
        html << "<span>Old, in grey:</span> <b class=\"w-t\">typ</b> <b class=\"w-n\">min</b> "
                "<b class=\"w-x\">max</b> ";
    if (has_rails) html << "<b class=\"r\">typical rail</b>";
    html << "</p>\n";
}

} // namespace kestrel
