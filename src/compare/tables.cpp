#include "compare/tables.hpp"

#include "quality/number_text.hpp"
#include "quality/waveforms.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <utility>

namespace kestrel {

namespace {

/// Of currents, differences up to so many amperes are none: tables are made to no more. In small tables it is less.
constexpr double kNoCurrent = 1e-5;

/// Of a change that is no mere shift the rest is reported beside the shift when it is at most this part of the whole.
constexpr double kMostRest = 0.4;
/// A shift is only seen where the waveforms still have this part of the old one in common.
constexpr double kLeastOverlap = 0.5;

struct Axes {
    Unit along; ///< volts or seconds
    Unit value;
};

CurveTolerance toleranceOf(const Comparison& comparison, const Axes& axes) {
    const bool exact = comparison.settings.tolerance == 0.0;
    return {.share = comparison.share(),
            .nothing = axes.value == Unit::amperes && !exact ? kNoCurrent : 0.0,
            .between_rows = !exact,
            .of_whole = axes.along == Unit::seconds};
}

using TableRows = Rows<TableRow>;

bool isSame(const TableRows& a, const TableRows& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(TableRow)) == 0);
}

double lengthOf(Curve curve) { return curve.back().x - curve.front().x; }

/// What is different in a corner of a table that both files have.
struct CornerChange {
    std::optional<CurveDifference> difference; ///< of the form, at the best shift
    GivenValue shift;                          ///< in seconds
    GivenValue level;                          ///< by how much all of it is higher
    double scale = 0.0;                        ///< the largest magnitude of the old one, for a level
    double length = 0.0;                       ///< of the old one

    [[nodiscard]] bool isShiftAlone() const { return shift.has_value() && !difference; }
};

/// What is said of a table by corners.
struct TableChanges {
    PerCorner<CornerChange> corners{};
    ChangeDetails extents{};
};

/// The part of the tolerance by which a shift may fit worse with fewer digits.
constexpr double kRoundingPart = 0.1;

bool overlapsEnough(Curve was, Curve is, double shift) {
    constexpr double kSlack = 1e-9;
    const double low = std::max(was.front().x, is.front().x - shift);
    const double high = std::min(was.back().x, is.back().x - shift);
    return high - low >= (kLeastOverlap - kSlack) * lengthOf(was);
}

double sizeOf(const CurveDifference& difference) { return std::abs(difference.is - difference.was); }

/// A shift and what of a difference is left with it.
struct FoundShift {
    double seconds;
    std::optional<CurveDifference> rest;
};

/// Looks for a shift that makes all or most of a difference.
std::optional<FoundShift> findShift(Curve was, Curve is, const CurveTolerance& tolerance,
                                    const CurveDifference& difference) {
    const double most_rest = kMostRest * sizeOf(difference);
    if (levelDifference(was, is) > std::max(most_rest, tolerance.share * difference.scale)) return std::nullopt;
    const std::optional<double> best = shiftOf(was, is);
    if (!best || *best == 0.0 || !overlapsEnough(was, is, *best)) return std::nullopt;
    const std::optional<CurveDifference> rest_of_best = differenceOf(was, is, tolerance, *best);
    if (rest_of_best && sizeOf(*rest_of_best) > most_rest) return std::nullopt;
    const double shift = roundedShift(was, is, *best, kRoundingPart * tolerance.share);
    const std::optional<CurveDifference> rest = differenceOf(was, is, tolerance, shift);
    return rest && !rest_of_best ? FoundShift{*best, rest_of_best} : FoundShift{shift, rest};
}

/// The same of waveforms that go from and to other levels: one that fits when both go through the same ones.
std::optional<FoundShift> findShiftAmongLevels(Comparison& comparison, Curve was, Curve is,
                                               const CurveTolerance& tolerance, const CurveDifference& difference) {
    const Curve levelled = atLevelsOf(was, is, comparison.levelled);
    if (levelled.empty()) return std::nullopt;
    const std::optional<CurveDifference> of_form = differenceOf(was, levelled, tolerance);
    if (!of_form) return std::nullopt;
    std::optional<FoundShift> shift = findShift(was, levelled, tolerance, *of_form);
    if (!shift) return std::nullopt;
    shift->rest = differenceOf(was, is, tolerance, shift->seconds);
    return !shift->rest || sizeOf(*shift->rest) < sizeOf(difference) ? shift : std::nullopt;
}

/// Finds the shift of a corner, at first the likely one; what it leaves of the difference remains.
void takeShift(Comparison& comparison, Curve was, Curve is, const CurveTolerance& tolerance, GivenValue likely,
               CornerChange& change) {
    if (likely && overlapsEnough(was, is, *likely) && !differenceOf(was, is, tolerance, *likely)) {
        change.difference.reset();
        change.shift = likely;
        return;
    }
    std::optional<FoundShift> found = findShift(was, is, tolerance, *change.difference);
    if (!found) found = findShiftAmongLevels(comparison, was, is, tolerance, *change.difference);
    if (!found) return;
    change.difference = found->rest;
    change.shift = found->seconds;
}

/// Replaces the shift of a corner by that of others, where what is left is not much more for it.
void takeCommonShift(Curve was, Curve is, const CurveTolerance& tolerance, double common, CornerChange& change) {
    constexpr double kMostMore = 1.2;
    if (!overlapsEnough(was, is, common)) return;
    const std::optional<CurveDifference> rest = differenceOf(was, is, tolerance, common);
    if (rest && sizeOf(*rest) > kMostMore * sizeOf(*change.difference)) return;
    change.difference = rest;
    change.shift = common;
}

/// Reports a table that begins or ends elsewhere, but for a shift of all of it.
void compareExtent(const Comparison& comparison, TableChanges& changes, Corner corner, Curve was, Curve is,
                   double shift) {
    const double length = lengthOf(was);
    const double allowed = std::max(comparison.share(), 1e-9) * length;
    const double low = is.front().x - was.front().x;
    const double high = is.back().x - was.back().x;
    const auto stays = [&](double end) { return std::abs(end) <= allowed || std::abs(end - shift) <= allowed; };
    if (stays(low) && stays(high)) return;
    ChangeDetail detail;
    detail.corners = {corner};
    detail.was = Extent{was.front().x, was.back().x};
    detail.is = Extent{is.front().x, is.back().x};
    detail.percent = percentOf(std::max(std::abs(low), std::abs(high)), length);
    addDetail(changes.extents, detail);
}

std::string rowCount(std::size_t rows) { return std::to_string(rows) + (rows == 1 ? " row" : " rows"); }

/// The shift that several corners may have: one that is all that changed, else the first.
GivenValue commonShift(const TableChanges& changes) {
    GivenValue common;
    for (const CornerChange& change : changes.corners) {
        if (change.isShiftAlone()) return change.shift;
        if (!common) common = change.shift;
    }
    return common;
}

void compareCorner(Comparison& comparison, TableChanges& changes, const Axes& axes, Corner corner, Curve was,
                   Curve is) {
    if (was.empty() && is.empty()) return;
    if (was.empty() || is.empty()) {
        ChangeDetail detail;
        detail.corners = {corner};
        (was.empty() ? detail.is : detail.was) = comparison.changes.keep(rowCount(std::max(was.size(), is.size())));
        addDetail(changes.extents, detail);
        return;
    }
    const CurveTolerance tolerance = toleranceOf(comparison, axes);
    CornerChange& change = changes.corners[corner];
    change.length = lengthOf(was);
    change.difference = differenceOf(was, is, tolerance);
    if (change.difference && axes.along == Unit::seconds) {
        if (const std::optional<double> level = levelOffsetOf(was, is, tolerance)) {
            change.level = *level;
            change.scale = change.difference->scale;
            change.difference.reset();
        } else {
            takeShift(comparison, was, is, tolerance, commonShift(changes), change);
        }
    }
    compareExtent(comparison, changes, corner, was, is, change.shift.value_or(0.0));
}

/// The points of a corner of both tables.
std::pair<Curve, Curve> curvesOf(Comparison& comparison, Corner corner, const TableRows& was, const TableRows& is) {
    comparison.points[0].empty(was.size());
    comparison.points[1].empty(is.size());
    return {orderedPoints(was, corner, EqualRows::keepLast, comparison.points[0]),
            orderedPoints(is, corner, EqualRows::keepLast, comparison.points[1])};
}

/// Gives corners whose forms changed as well the shift of others, where that fits.
void agreeOnShift(Comparison& comparison, TableChanges& changes, const Axes& axes, const TableRows& was,
                  const TableRows& is) {
    const GivenValue common = commonShift(changes);
    if (!common) return;
    for (const Corner corner : kCorners) {
        CornerChange& change = changes.corners[corner];
        if (!change.shift || !change.difference || *change.shift == *common) continue;
        const auto [before, now] = curvesOf(comparison, corner, was, is);
        takeCommonShift(before, now, toleranceOf(comparison, axes), *common, change);
    }
}

/// A curve that comes later, or is higher, by the same all along.
ChangeDetail offsetDetail(Corner corner, double offset, double scale) {
    ChangeDetail detail;
    detail.corners = {corner};
    detail.shift = offset;
    detail.percent = percentOf(offset, scale);
    return detail;
}

ChangeDetail formDetail(Corner corner, const CornerChange& change) {
    const CurveDifference& difference = *change.difference;
    ChangeDetail detail;
    detail.corners = {corner};
    detail.was = difference.was;
    detail.is = difference.is;
    detail.at = difference.x;
    detail.shift = change.shift;
    detail.percent = percentOf(difference.is - difference.was, difference.scale);
    return detail;
}

void addTableChange(Comparison& comparison, ChangeKind kind, const FieldName& field, const Axes& axes,
                    const ChangeDetails& details) {
    if (details.empty()) return;
    const bool is_extent = kind == ChangeKind::extent;
    const Unit unit = is_extent || kind == ChangeKind::shift ? axes.along : axes.value;
    comparison.add({.kind = kind, .field = field, .unit = unit, .axis = axes.along, .details = details});
}

/// The largest difference of a column of two tables that have rows at the same places.
struct ColumnDifference {
    CurveDifference largest{}; ///< with the largest magnitude of the old one
    double size = 0.0;
    double new_scale = 0.0;

    void add(double x, double was, double is) {
        largest.scale = std::max(largest.scale, std::abs(was));
        new_scale = std::max(new_scale, std::abs(is));
        const double here = std::abs(is - was);
        if (!(here > size)) return;
        size = here;
        largest.x = x;
        largest.was = was;
        largest.is = is;
    }
};

/// The differences of tables whose rows rise, are at the same places and have the same corners, as those of two
/// editions mostly are; nothing for others.
std::optional<PerCorner<ColumnDifference>> differencesOfRows(const TableRows& was, const TableRows& is) {
    if (was.size() != is.size()) return std::nullopt;
    PerCorner<ColumnDifference> differences;
    double last = -HUGE_VAL;
    for (std::size_t i = 0; i < was.size(); ++i) {
        const TableRow& before = was[i];
        const TableRow& now = is[i];
        const double x = before[kFirst].value();
        if (!before[kFirst].isNumber() || !(before[kFirst] == now[kFirst]) || !(x > last)) return std::nullopt;
        last = x;
        for (const Corner corner : kCorners) {
            const Cell& a = before[columnOf(corner)];
            const Cell& b = now[columnOf(corner)];
            if (a.isNumber() != b.isNumber()) return std::nullopt;
            if (a.isNumber()) differences[corner].add(x, a.value(), b.value());
        }
    }
    const auto is_finite = [](const ColumnDifference& column) {
        return std::isfinite(column.size + column.largest.scale + column.new_scale);
    };
    if (!std::isfinite(last) || !std::ranges::all_of(differences, is_finite)) return std::nullopt;
    return differences;
}

/// Adds what changed in the forms and the places of the corners. A shift that several have is told once, ahead of what
/// is left of some.
void addCornerChanges(Comparison& comparison, const FieldName& field, const Axes& axes, const TableChanges& changes) {
    const GivenValue common = commonShift(changes);
    const auto has_common = [&common](const CornerChange& change) {
        return common && change.shift && *change.shift == *common;
    };
    const auto is_told_first = [&has_common](const CornerChange& change) {
        return has_common(change) && change.difference.has_value();
    };
    const bool is_joined =
        std::ranges::any_of(changes.corners, is_told_first) && std::ranges::count_if(changes.corners, has_common) > 1;
    ChangeDetails forms;
    ChangeDetails shifts;
    ChangeDetails levels;
    if (is_joined) {
        for (const Corner corner : kCorners) {
            const CornerChange& change = changes.corners[corner];
            if (has_common(change)) addDetail(forms, offsetDetail(corner, *change.shift, change.length));
        }
    }
    for (const Corner corner : kCorners) {
        const CornerChange& change = changes.corners[corner];
        if (change.difference) addDetail(forms, formDetail(corner, change));
        if (change.isShiftAlone() && !(is_joined && has_common(change)))
            addDetail(shifts, offsetDetail(corner, *change.shift, change.length));
        if (change.level) addDetail(levels, offsetDetail(corner, *change.level, change.scale));
    }
    addTableChange(comparison, ChangeKind::table, field, axes, forms);
    addTableChange(comparison, ChangeKind::shift, field, axes, shifts);
    addTableChange(comparison, ChangeKind::level, field, axes, levels);
}

void compareRows(Comparison& comparison, const FieldName& field, const Axes& axes, const TableRows& was,
                 const TableRows& is) {
    if (isSame(was, is)) return;
    TableChanges changes;
    const CurveTolerance tolerance = toleranceOf(comparison, axes);
    const std::optional<PerCorner<ColumnDifference>> of_rows = differencesOfRows(was, is);
    for (const Corner corner : kCorners) {
        if (of_rows) {
            const ColumnDifference& column = (*of_rows)[corner];
            if (!isBeyond(tolerance, column.size, column.largest.scale, column.new_scale)) continue;
            if (axes.along != Unit::seconds) {
                changes.corners[corner].difference = column.largest;
                continue;
            }
        }
        const auto [before, now] = curvesOf(comparison, corner, was, is);
        compareCorner(comparison, changes, axes, corner, before, now);
    }
    agreeOnShift(comparison, changes, axes, was, is);
    addCornerChanges(comparison, field, axes, changes);
    addTableChange(comparison, ChangeKind::extent, field, axes, changes.extents);
}

using Fixture = FieldRow<Wvfrm, GivenValue>;
constexpr Fixture kFixture[] = {
    {"R_fixture", Unit::ohms, &Wvfrm::r_fixture},
    {"V_fixture", Unit::volts, &Wvfrm::v_fixture},
    {"V_fixture_min", Unit::volts, &Wvfrm::v_fixture_min},
    {"V_fixture_max", Unit::volts, &Wvfrm::v_fixture_max},
    {"C_fixture", Unit::farads, &Wvfrm::c_fixture},
    {"L_fixture", Unit::henries, &Wvfrm::l_fixture},
    {"R_dut", Unit::ohms, &Wvfrm::r_dut},
    {"L_dut", Unit::henries, &Wvfrm::l_dut},
    {"C_dut", Unit::farads, &Wvfrm::c_dut},
};
constexpr std::size_t kFixtureFields = std::size(kFixture);

/// The fixture in a form that has an order; what is not given comes first.
using FixtureKey = std::array<std::pair<bool, double>, kFixtureFields>;
FixtureKey keyOf(const Wvfrm& waveform) {
    FixtureKey key;
    for (std::size_t i = 0; i < kFixtureFields; ++i) {
        const GivenValue value = waveform.*kFixture[i].field;
        key[i] = {value.has_value(), value.value_or(0.0)};
    }
    return key;
}

/// In the order of their fixtures, equal ones as they come.
std::vector<std::pair<FixtureKey, const Wvfrm*>> sortedByFixture(const Rows<Wvfrm>& waveforms) {
    std::vector<std::pair<FixtureKey, const Wvfrm*>> sorted;
    sorted.reserve(waveforms.size());
    for (const Wvfrm& waveform : waveforms)
        sorted.emplace_back(keyOf(waveform), &waveform);
    std::ranges::stable_sort(sorted, {}, &std::pair<FixtureKey, const Wvfrm*>::first);
    return sorted;
}

/// How many fields of two fixtures differ; the voltages of the corners count with the typical one.
std::size_t differingFields(const FixtureKey& a, const FixtureKey& b) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < kFixtureFields; ++i) {
        const bool is_voltage = kFixture[i].unit == Unit::volts;
        if (a[i] != b[i] && (!is_voltage || i == 1 || a[1] == b[1])) ++count;
    }
    return count;
}

/// How far the typical voltages are apart at most.
double distanceOf(std::array<PointRoom, 2>& points, const Wvfrm& was, const Wvfrm& is) {
    constexpr CurveTolerance kNone{.share = 0.0, .nothing = 0.0, .between_rows = false, .of_whole = true};
    if (isSame(was.rows, is.rows)) return 0.0;
    points[0].empty(was.rows.size());
    points[1].empty(is.rows.size());
    const std::optional<CurveDifference> difference =
        differenceOf(orderedPoints(was.rows, Corner::typ, EqualRows::keepLast, points[0]),
                     orderedPoints(is.rows, Corner::typ, EqualRows::keepLast, points[1]), kNone);
    return difference ? std::abs(difference->is - difference->was) : 0.0;
}

/// A waveform of OLD and one of NEW, by their places among those that are left, and how much they differ.
struct WaveformPairing {
    std::size_t fields;
    double distance;
    std::size_t was;
    std::size_t is;

    auto operator<=>(const WaveformPairing& other) const = default;
};

/// Pairs what is most alike, by the fixtures first, until nothing is left of one side.
void matchByLikeness(std::array<PointRoom, 2>& points, WaveformPairs& matched, std::vector<const Wvfrm*>& gone,
                     std::vector<const Wvfrm*>& fresh) {
    constexpr std::size_t kMost = 4096; // pairings to be tried
    if (gone.empty() || fresh.empty()) return;
    std::vector<WaveformPairing> pairings;
    const bool tries_all = gone.size() * fresh.size() <= kMost;
    const bool is_clear = gone.size() == 1 && fresh.size() == 1;
    for (std::size_t i = 0; i < gone.size(); ++i) {
        for (std::size_t j = tries_all ? 0 : i; j < (tries_all ? fresh.size() : std::min(i + 1, fresh.size())); ++j) {
            const double distance = is_clear || !tries_all ? 0.0 : distanceOf(points, *gone[i], *fresh[j]);
            pairings.push_back({differingFields(keyOf(*gone[i]), keyOf(*fresh[j])), distance, i, j});
        }
    }
    std::ranges::sort(pairings);
    for (const WaveformPairing& pairing : pairings) {
        if (gone[pairing.was] == nullptr || fresh[pairing.is] == nullptr) continue;
        matched.pairs.emplace_back(std::exchange(gone[pairing.was], nullptr),
                                   std::exchange(fresh[pairing.is], nullptr));
    }
    std::erase(gone, nullptr);
    std::erase(fresh, nullptr);
}

bool isSame(const Wvfrm& a, const Wvfrm& b) {
    return isSame(a.rows, b.rows) && isSame(a.composite_current->rows, b.composite_current->rows);
}

/// What a rate of a ramp is made of, and what it comes to.
struct RateRanges {
    Rng step;
    Rng time;
    Rng slew;
};
RateRanges rangesOf(const std::optional<RampRate>& rate) {
    RateRanges ranges;
    if (!rate) return ranges;
    for (const Corner corner : kCorners) {
        const RampCorner& of = (*rate)[corner];
        if (!of.dv.isNumber() || of.dt == 0.0) continue;
        ranges.step[corner] = of.dv;
        ranges.time[corner] = Cell(of.dt);
        ranges.slew[corner] = Cell(of.dv.value() / of.dt);
    }
    return ranges;
}

/// The slew tells of a change of the step or of the time; where both change, they are told as well.
void compareRate(Comparison& comparison, std::string_view name, const std::optional<RampRate>& was,
                 const std::optional<RampRate>& is) {
    RateRanges before = rangesOf(was);
    RateRanges now = rangesOf(is);
    compareRange(comparison, {"[Ramp]", name}, Unit::voltsPerSecond, before.slew, now.slew);
    const auto changes = [&](const Cell& a, const Cell& b) {
        return a.isNumber() && b.isNumber() && changeOf(a.value(), b.value(), comparison.share()).has_value();
    };
    for (const Corner corner : kCorners) {
        const int changed = (changes(before.step[corner], now.step[corner]) ? 1 : 0) +
                            (changes(before.time[corner], now.time[corner]) ? 1 : 0);
        const bool is_told = changed < 2 && changes(before.slew[corner], now.slew[corner]);
        if (before.slew[corner].isNumber() && now.slew[corner].isNumber() && !is_told) continue;
        now.step[corner] = before.step[corner];
        now.time[corner] = before.time[corner];
    }
    compareRange(comparison, {"[Ramp]", name, "dV"}, Unit::volts, before.step, now.step);
    compareRange(comparison, {"[Ramp]", name, "dt"}, Unit::seconds, before.time, now.time);
}

} // namespace

void compareCurve(Comparison& comparison, const FieldName& field, const Crv& was, const Crv& is) {
    if (!was.given && !is.given) return;
    if (comparePresence(comparison, field, was.given, is.given))
        compareRows(comparison, field, {Unit::volts, Unit::amperes}, was.rows, is.rows);
}

void compareTimes(Comparison& comparison, const FieldName& field, Unit unit, const TableRows& was,
                  const TableRows& is) {
    compareRows(comparison, field, {Unit::seconds, unit}, was, is);
}

void compareWaveform(Comparison& comparison, std::string_view keyword, const Wvfrm& was, const Wvfrm& is) {
    if (keyOf(was) == keyOf(is) && isSame(was, is)) return;
    const std::string name = waveformField(keyword, was);
    compareFields(comparison, name, kFixture, was, is);
    compareTimes(comparison, name, Unit::volts, was.rows, is.rows);
    const FieldName current(name, "[Composite Current]");
    if (comparePresence(comparison, current, bool(was.composite_current), bool(is.composite_current)))
        compareTimes(comparison, current, Unit::amperes, was.composite_current->rows, is.composite_current->rows);
}

WaveformPairs matchWaveforms(std::array<PointRoom, 2>& points, const Rows<Wvfrm>& was, const Rows<Wvfrm>& is) {
    WaveformPairs matched;
    const auto before = sortedByFixture(was);
    const auto now = sortedByFixture(is);
    auto left = before.begin();
    auto right = now.begin();
    while (left != before.end() || right != now.end()) {
        const FixtureKey key =
            right == now.end() || (left != before.end() && left->first < right->first) ? left->first : right->first;
        std::vector<const Wvfrm*> gone;
        std::vector<const Wvfrm*> fresh;
        for (; left != before.end() && left->first == key; ++left)
            gone.push_back(left->second);
        for (; right != now.end() && right->first == key; ++right)
            fresh.push_back(right->second);
        matchByLikeness(points, matched, gone, fresh);
        matched.gone.insert(matched.gone.end(), gone.begin(), gone.end());
        matched.fresh.insert(matched.fresh.end(), fresh.begin(), fresh.end());
    }
    // As they come in the files.
    std::ranges::sort(matched.gone, std::less<>());
    std::ranges::sort(matched.fresh, std::less<>());
    matchByLikeness(points, matched, matched.gone, matched.fresh);
    std::ranges::sort(matched.pairs, std::less<>(), &std::pair<const Wvfrm*, const Wvfrm*>::second);
    return matched;
}

std::string waveformField(std::string_view keyword, const Wvfrm& waveform) {
    std::string name(keyword);
    if (waveform.r_fixture || waveform.v_fixture) name.append(" with ").append(fixtureText(waveform));
    for (const GivenValue capacity : {waveform.c_fixture, waveform.c_dut})
        if (capacity && *capacity != 0.0) name.append(" and ").append(farads(*capacity));
    return name;
}

void compareWaveforms(Comparison& comparison, std::string_view keyword, const Rows<Wvfrm>& was, const Rows<Wvfrm>& is) {
    if (std::ranges::equal(was, is,
                           [](const Wvfrm& a, const Wvfrm& b) { return keyOf(a) == keyOf(b) && isSame(a, b); }))
        return;
    const WaveformPairs matched = matchWaveforms(comparison.points, was, is);
    for (const auto& [before, now] : matched.pairs)
        compareWaveform(comparison, keyword, *before, *now);
    for (const Wvfrm* const waveform : matched.fresh)
        comparePresence(comparison, waveformField(keyword, *waveform), false, true);
    for (const Wvfrm* const waveform : matched.gone)
        comparePresence(comparison, waveformField(keyword, *waveform), true, false);
}

void compareOnlyWaveform(Comparison& comparison, std::string_view keyword, const OnDemand<Wvfrm>& was,
                         const OnDemand<Wvfrm>& is) {
    if (comparePresence(comparison, keyword, bool(was), bool(is))) compareWaveform(comparison, keyword, *was, *is);
}

void compareRamp(Comparison& comparison, const OnDemand<Ramp>& was, const OnDemand<Ramp>& is) {
    if (!was && !is) return;
    if (!comparePresence(comparison, "[Ramp]", bool(was), bool(is))) return;
    compareRate(comparison, "dV/dt_r", was->dv_dt_r, is->dv_dt_r);
    compareRate(comparison, "dV/dt_f", was->dv_dt_f, is->dv_dt_f);
    constexpr double kLoad = 50.0; // ohms, where none is given
    if (was->r_load.value_or(kLoad) != is->r_load.value_or(kLoad))
        compareValue(comparison, {"[Ramp]", "R_load"}, Unit::ohms, was->r_load, is->r_load);
}

void compareTables(Comparison& comparison, const Tables& was, const Tables& is) {
    compareCurve(comparison, "[Pulldown]", was.pulldown, is.pulldown);
    compareCurve(comparison, "[Pullup]", was.pullup, is.pullup);
    compareCurve(comparison, "[GND Clamp]", was.gnd_clamp, is.gnd_clamp);
    compareCurve(comparison, "[POWER Clamp]", was.power_clamp, is.power_clamp);
    compareRamp(comparison, was.ramp, is.ramp);
    compareWaveforms(comparison, "[Rising Waveform]", was.rising_waveforms, is.rising_waveforms);
    compareWaveforms(comparison, "[Falling Waveform]", was.falling_waveforms, is.falling_waveforms);
}

} // namespace kestrel
