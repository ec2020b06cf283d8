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

/// Currents that differ by less are the same: tables are made to no more.
constexpr double kNoCurrent = 1e-5;

/// Of a change that is no mere shift the rest is reported beside the shift when it is at most this part of the whole.
constexpr double kMostRest = 0.4;
/// A shift is only seen where the waveforms still have this part of the old one in common.
constexpr double kLeastOverlap = 0.5;

struct Axes {
    Unit along; ///< volts or seconds
    Unit value;
};

CurveTolerance toleranceOf(const Comparison& comparison, Unit unit) {
    const bool exact = comparison.settings.tolerance == 0.0;
    return {.share = comparison.share(),
            .nothing = unit == Unit::amperes && !exact ? kNoCurrent : 0.0,
            .between_rows = !exact};
}

using TableRows = Rows<TableRow>;

bool isSame(const TableRows& a, const TableRows& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(TableRow)) == 0);
}

double lengthOf(Curve curve) { return curve.back().x - curve.front().x; }

/// What is said of a table by corners.
struct TableChanges {
    std::vector<ChangeDetail> forms;
    std::vector<ChangeDetail> shifts;
    std::vector<ChangeDetail> extents;
};

ChangeDetail formDetail(Corner corner, const CurveDifference& difference) {
    ChangeDetail detail;
    detail.corners = {corner};
    detail.was = difference.was;
    detail.is = difference.is;
    detail.at = difference.x;
    detail.percent = percentOf(difference.is - difference.was, difference.scale);
    return detail;
}

/// Looks for a shift in time that makes all or most of a difference.
std::optional<double> findShift(Curve was, Curve is, const CurveTolerance& tolerance,
                                std::optional<CurveDifference>& difference) {
    const auto sizeOf = [](const CurveDifference& of) { return std::abs(of.is - of.was); };
    const double most_rest = kMostRest * sizeOf(*difference);
    if (levelDifference(was, is) > std::max(most_rest, tolerance.share * difference->scale)) return std::nullopt;
    const std::optional<double> shift = shiftOf(was, is);
    if (!shift || *shift == 0.0) return std::nullopt;
    const double low = std::max(was.front().x, is.front().x - *shift);
    const double high = std::min(was.back().x, is.back().x - *shift);
    if (!(high - low >= kLeastOverlap * lengthOf(was))) return std::nullopt;
    const std::optional<CurveDifference> rest = differenceOf(was, is, tolerance, *shift);
    if (rest && sizeOf(*rest) > most_rest) return std::nullopt;
    difference = rest;
    return shift;
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
    addDetail(changes.extents, std::move(detail));
}

std::string rowCount(std::size_t rows) { return std::to_string(rows) + (rows == 1 ? " row" : " rows"); }

void compareCorner(const Comparison& comparison, TableChanges& changes, const Axes& axes, Corner corner, Curve was,
                   Curve is) {
    if (was.empty() && is.empty()) return;
    if (was.empty() || is.empty()) {
        ChangeDetail detail;
        detail.corners = {corner};
        if (!was.empty()) detail.was = rowCount(was.size());
        if (!is.empty()) detail.is = rowCount(is.size());
        addDetail(changes.extents, std::move(detail));
        return;
    }
    const CurveTolerance tolerance = toleranceOf(comparison, axes.value);
    std::optional<CurveDifference> difference = differenceOf(was, is, tolerance);
    std::optional<double> shift;
    if (difference && axes.along == Unit::seconds) shift = findShift(was, is, tolerance, difference);
    if (difference) {
        ChangeDetail detail = formDetail(corner, *difference);
        detail.shift = shift;
        addDetail(changes.forms, std::move(detail));
    } else if (shift) {
        ChangeDetail detail;
        detail.corners = {corner};
        detail.shift = shift;
        detail.percent = percentOf(*shift, lengthOf(was));
        addDetail(changes.shifts, std::move(detail));
    }
    compareExtent(comparison, changes, corner, was, is, shift.value_or(0.0));
}

void addTableChange(Comparison& comparison, ChangeKind kind, const FieldName& field, const Axes& axes,
                    std::vector<ChangeDetail> details) {
    if (details.empty()) return;
    const bool is_extent = kind == ChangeKind::extent;
    const Unit unit = is_extent || kind == ChangeKind::shift ? axes.along : axes.value;
    comparison.add(
        {.kind = kind, .field = field.text(), .unit = unit, .axis = axes.along, .details = std::move(details)});
}

void compareRows(Comparison& comparison, const FieldName& field, const Axes& axes, const TableRows& was,
                 const TableRows& is) {
    if (isSame(was, is)) return;
    TableChanges changes;
    for (const Corner corner : kCorners) {
        comparison.points[0].empty(was.size());
        comparison.points[1].empty(is.size());
        compareCorner(comparison, changes, axes, corner,
                      orderedPoints(was, corner, EqualRows::keepLast, comparison.points[0]),
                      orderedPoints(is, corner, EqualRows::keepLast, comparison.points[1]));
    }
    addTableChange(comparison, ChangeKind::table, field, axes, std::move(changes.forms));
    addTableChange(comparison, ChangeKind::shift, field, axes, std::move(changes.shifts));
    addTableChange(comparison, ChangeKind::extent, field, axes, std::move(changes.extents));
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

/// How a waveform is called: by its keyword and its fixture.
std::string nameOf(std::string_view keyword, const Wvfrm& waveform) {
    std::string name(keyword);
    if (waveform.r_fixture || waveform.v_fixture) name.append(" with ").append(fixtureText(waveform));
    for (const GivenValue capacity : {waveform.c_fixture, waveform.c_dut})
        if (capacity && *capacity != 0.0) name.append(" and ").append(farads(*capacity));
    return name;
}

/// Waveforms of both files that belong together, and those that are left.
struct WaveformPairs {
    std::vector<std::pair<const Wvfrm*, const Wvfrm*>> pairs;
    std::vector<const Wvfrm*> gone;
    std::vector<const Wvfrm*> fresh;
};

/// In the order of their fixtures; of equal ones the first belongs to the first.
std::vector<std::pair<FixtureKey, const Wvfrm*>> sortedByFixture(const Rows<Wvfrm>& waveforms) {
    std::vector<std::pair<FixtureKey, const Wvfrm*>> sorted;
    sorted.reserve(waveforms.size());
    for (const Wvfrm& waveform : waveforms)
        sorted.emplace_back(keyOf(waveform), &waveform);
    std::ranges::stable_sort(sorted, {}, &std::pair<FixtureKey, const Wvfrm*>::first);
    return sorted;
}

WaveformPairs matchByFixture(const Rows<Wvfrm>& was, const Rows<Wvfrm>& is) {
    WaveformPairs matched;
    const auto before = sortedByFixture(was);
    const auto now = sortedByFixture(is);
    auto left = before.begin();
    auto right = now.begin();
    while (left != before.end() || right != now.end()) {
        if (right == now.end() || (left != before.end() && left->first < right->first)) {
            matched.gone.push_back((left++)->second);
        } else if (left == before.end() || right->first < left->first) {
            matched.fresh.push_back((right++)->second);
        } else {
            matched.pairs.emplace_back((left++)->second, (right++)->second);
        }
    }
    // As they come in the files.
    std::ranges::sort(matched.gone, std::less<>());
    std::ranges::sort(matched.fresh, std::less<>());
    std::ranges::sort(matched.pairs, std::less<>(), &std::pair<const Wvfrm*, const Wvfrm*>::second);
    return matched;
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

/// Of the waveforms that are left, those whose fixtures differ in one field belong together.
void matchByLikeness(WaveformPairs& matched) {
    constexpr std::size_t kMost = 64; // so many, and pairing them all is no work
    if (matched.gone.size() > kMost || matched.fresh.size() > kMost) return;
    for (const Wvfrm*& old : matched.gone) {
        const auto alike = std::ranges::find_if(matched.fresh, [&](const Wvfrm* waveform) {
            return waveform != nullptr && differingFields(keyOf(*old), keyOf(*waveform)) == 1;
        });
        if (alike == matched.fresh.end()) continue;
        matched.pairs.emplace_back(std::exchange(old, nullptr), std::exchange(*alike, nullptr));
    }
    std::erase(matched.gone, nullptr);
    std::erase(matched.fresh, nullptr);
}

bool isSame(const Wvfrm& a, const Wvfrm& b) {
    return isSame(a.rows, b.rows) && isSame(a.composite_current->rows, b.composite_current->rows);
}

void compareRate(Comparison& comparison, std::string_view name, const std::optional<RampRate>& was,
                 const std::optional<RampRate>& is) {
    const auto slewsOf = [](const std::optional<RampRate>& rate) {
        Rng slews;
        if (!rate) return slews;
        for (const Corner corner : kCorners) {
            const RampCorner& of = (*rate)[corner];
            if (of.dv.isNumber() && of.dt != 0.0) slews[corner] = Cell(of.dv.value() / of.dt);
        }
        return slews;
    };
    compareRange(comparison, {"[Ramp]", name}, Unit::voltsPerSecond, slewsOf(was), slewsOf(is));
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
    const std::string name = nameOf(keyword, was);
    compareFields(comparison, name, kFixture, was, is);
    compareTimes(comparison, name, Unit::volts, was.rows, is.rows);
    const FieldName current(name, "[Composite Current]");
    if (comparePresence(comparison, current, bool(was.composite_current), bool(is.composite_current)))
        compareTimes(comparison, current, Unit::amperes, was.composite_current->rows, is.composite_current->rows);
}

void compareWaveforms(Comparison& comparison, std::string_view keyword, const Rows<Wvfrm>& was, const Rows<Wvfrm>& is) {
    const auto has_key_of = [](const Wvfrm& a, const Wvfrm& b) { return keyOf(a) == keyOf(b); };
    if (std::ranges::equal(was, is, has_key_of)) {
        for (std::size_t i = 0; i < was.size(); ++i)
            compareWaveform(comparison, keyword, was[i], is[i]);
        return;
    }
    WaveformPairs matched = matchByFixture(was, is);
    matchByLikeness(matched);
    for (const auto& [before, now] : matched.pairs)
        compareWaveform(comparison, keyword, *before, *now);
    for (const Wvfrm* const waveform : matched.fresh)
        comparePresence(comparison, nameOf(keyword, *waveform), false, true);
    for (const Wvfrm* const waveform : matched.gone)
        comparePresence(comparison, nameOf(keyword, *waveform), true, false);
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
