#include "quality/iv_tables.hpp"

#include "base/text.hpp"
#include "quality/advised.hpp"
#include "quality/edges.hpp"
#include "quality/number_text.hpp"
#include "quality/worst.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrel {

namespace {

constexpr std::array<TableKind, 2> kDriverTables{TableKind::pulldown, TableKind::pullup};

/// The state in which a table carries its current.
DriveState stateOf(TableKind kind) {
    switch (kind) {
    case TableKind::pulldown: return DriveState::low;
    case TableKind::pullup: return DriveState::high;
    case TableKind::gndClamp:
    case TableKind::powerClamp: break;
    }
    return DriveState::off;
}

AdvicePlace placeOfTable(const AdvisedModel& advised, TableKind kind) {
    return adviceAt(advised.model, tableOf(advised.model, kind).line);
}

/// Calls `check` with each driver table of a driver that carries something, and with Vcc.
template <class Check> void eachCarryingTable(const AdvisedModel& advised, Check check) {
    if (!advised.drives()) return;
    for (const TableKind kind : kDriverTables)
        if (advised.physics.carriesSomething(kind)) check(kind, advised.physics.table(kind), *advised.physics.vcc());
}

/// The span of the currents between two voltages.
double spanBetween(const IvTable& table, double low, double high) {
    double least = table.at(low);
    double most = least;
    table.between(low, high, [&](double /*voltage*/, double current) {
        if (current < least) least = current;
        if (current > most) most = current;
    });
    return most - least;
}

/// What the table of a kind should reach, as table voltages.
struct Reach {
    double low;
    double high;
};

Reach reachOf(TableKind kind, const IvTable& table, double vcc) {
    const bool ends_open = std::fabs(table.points().back().y) < kNoCurrent;
    switch (kind) {
    case TableKind::gndClamp: return {-vcc, ends_open ? 0.0 : vcc};
    case TableKind::powerClamp: return {-vcc, 0.0};
    case TableKind::pulldown:
    case TableKind::pullup: break;
    }
    return {-vcc, 2.0 * vcc};
}

/// True when the total current where a table ends stops a reflection ahead of the limit: it reaches a line of 50 ohm.
/// Without a total nothing can be said.
bool holdsLine(const StateCurrent* total, const TableAtPin& table, double end, double limit) {
    constexpr double kLine = 50.0;
    if (total == nullptr) return true;
    const double pin = table.pinVoltage(end);
    const double wanted = (table.pinVoltage(limit) - pin) / kLine;
    const double current = total->at(pin);
    return !(wanted > 0.0 ? current < wanted : current > wanted);
}

/// The largest fall of a current as the voltage rises.
struct Fall {
    DriveState state;
    Corner corner;
    Point from;
    Point to;

    [[nodiscard]] double drop() const { return from.y - to.y; }
};

/// The fall of a state's current over the voltages of reflections, with its share of the largest current there; nothing
/// where it is no more than a slip of rounding.
std::optional<std::pair<Fall, double>> findFall(const ModelPhysics& physics, DriveState state, Corner corner) {
    constexpr double kShare = 0.01;
    constexpr double kRounding = 1e-9;
    const StateCurrent* const total = physics.current(state, corner);
    const References& references = physics.references(corner);
    if (total == nullptr || !references.vcc || total->neverFalls()) return std::nullopt;
    const double low = *references.pulldown - *references.vcc;
    const double high = *references.pulldown + 2.0 * *references.vcc;
    Point highest{low, total->at(low)};
    Fall fall{state, corner, highest, highest};
    double largest = 0.0;
    total->sweep(low, high, [&](double voltage, double current) {
        const double size = std::fabs(current);
        if (size > largest) largest = size;
        // A current that stays the same is not parted by rounding.
        if (current >= highest.y - kRounding * largest) {
            highest = {voltage, std::fmax(current, highest.y)};
        } else if (highest.y - current > fall.drop()) {
            fall.from = highest;
            fall.to = {voltage, current};
        }
    });
    if (!(fall.drop() > kShare * largest) || !(fall.drop() > kNoCurrent)) return std::nullopt;
    return std::pair(fall, fall.drop() / largest);
}

/// The way a driver table's current goes as its voltage rises.
double signOf(TableKind driver) { return driver == TableKind::pulldown ? 1.0 : -1.0; }

/// True for names that speak of a termination on the die.
bool namesTermination(std::string_view name) {
    constexpr std::array<std::string_view, 4> kWords{"odt", "dci", "rtt", "term"};
    std::string lower(name);
    lowerCase(lower);
    return std::ranges::any_of(kWords,
                               [&lower](std::string_view word) { return lower.find(word) != std::string::npos; });
}

/// The voltage beyond a rail at which clamps are compared.
double voltageBeyondRail(double vcc) {
    constexpr double kShare = 0.8;
    constexpr double kUsualSupply = 3.3;
    return kShare * std::fmin(vcc, kUsualSupply);
}

constexpr double kClampCurrent = 1e-3;

/// Two tables that carry the same current at a voltage.
struct SameCurrent {
    TableKind at;    ///< the table of the finding
    TableKind clamp; ///< the other
    bool in_driver;  ///< a driver table has it
    double voltage;  ///< of the driver table, or of the pin
    double current;  ///< amperes
    double of_clamp; ///< amperes
};

/// A driver table whose slope beyond its rail is steeper than ahead of it by that of a clamp.
std::optional<SameCurrent> clampInDriver(const ModelPhysics& physics, TableKind driver, TableKind clamp) {
    constexpr double kSteeper = 1.8;
    constexpr double kOfClamp = 0.4;
    constexpr double kAhead = 0.1; // of Vcc
    const IvTable& own = physics.table(driver);
    const IvTable& other = physics.table(clamp);
    if (!physics.vcc() || !own.hasData() || !other.hasData()) return std::nullopt;
    const double v = voltageBeyondRail(*physics.vcc());
    const double current = own.at(-v);
    const double of_clamp = other.at(-v);
    if (!(std::fabs(of_clamp) > kClampCurrent) || !(current * of_clamp > 0.0)) return std::nullopt;
    const auto slope = [driver](const IvTable& table, double from, double to) {
        return signOf(driver) * (table.at(to) - table.at(from)) / (to - from);
    };
    const double ahead = slope(own, -kAhead * *physics.vcc(), 0.0);
    const double beyond = slope(own, -v, -v / 2.0);
    const bool steeper = beyond > kSteeper * ahead && beyond - ahead >= kOfClamp * slope(other, -v, -v / 2.0);
    if (!steeper) return std::nullopt;
    return SameCurrent{driver, clamp, true, -v, current, of_clamp};
}

/// A clamp that carries the current of the other one beyond that one's rail.
std::optional<SameCurrent> clampInClamp(const ModelPhysics& physics, TableKind clamp, TableKind other) {
    constexpr double kLeast = 0.8;
    constexpr double kMost = 1.25;
    const std::optional<TableAtPin> own_at_pin = physics.atPin(clamp, Corner::typ);
    const std::optional<TableAtPin> other_at_pin = physics.atPin(other, Corner::typ);
    if (!physics.vcc() || !own_at_pin || !other_at_pin) return std::nullopt;
    // The other's rail as a voltage of this table, and how far beyond it the rows go.
    const double rail = own_at_pin->tableVoltage(other_at_pin->reference);
    const double v = std::fmin(voltageBeyondRail(*physics.vcc()), own_at_pin->table->lastVoltage() - rail);
    if (!(v > 0.0)) return std::nullopt;
    const double current = own_at_pin->table->at(rail + v);
    const double of_other = other_at_pin->table->at(-v);
    if (!(std::fabs(of_other) > kClampCurrent)) return std::nullopt;
    const double ratio = current / of_other;
    if (!(ratio >= kLeast && ratio <= kMost)) return std::nullopt;
    return SameCurrent{clamp, other, false, other_at_pin->pinVoltage(-v), current, of_other};
}

/// "typ 18 mA, min 20 mA, max 16.4 mA" of the corners that are given.
std::string currentsText(const PerCorner<GivenValue>& currents) {
    std::string text;
    for (const Corner corner : kCorners) {
        if (!currents[corner]) continue;
        if (!text.empty()) text.append(", ");
        text.append(cornerWord(corner)).append(" ").append(amperes(*currents[corner]));
    }
    return text;
}

bool isSameTable(const IvTable& a, const IvTable& b) {
    return std::ranges::equal(a.points(), b.points(), [](const Point& one, const Point& other) {
        return one.x == other.x && one.y == other.y;
    });
}

/// "typ and min": the corners that have the same table as the typical one, empty without any.
std::string sameCorners(const AdvisedModel& advised, TableKind kind) {
    std::string text;
    for (const Corner corner : {Corner::min, Corner::max}) {
        const IvTable& table = advised.physics.table(kind, corner);
        if (!table.hasData() || !isSameTable(advised.physics.table(kind), table)) continue;
        if (text.empty()) text = cornerWord(Corner::typ);
        text.append(" and ").append(cornerWord(corner));
    }
    return text;
}

/// A step between two rows, as far as it lies between 0 and Vcc.
struct TableStep {
    double from;
    double to;
    double size; ///< amperes
};

/// The largest step that stands for a bend: one beside it has another slope.
std::optional<TableStep> largestBentStep(const IvTable& table, double vcc) {
    constexpr double kSimilar = 2.0;
    const std::span<const Point> points = table.points();
    const auto slope = [points](std::size_t step) {
        return (points[step + 1].y - points[step].y) / (points[step + 1].x - points[step].x);
    };
    const auto bends = [&](std::size_t step, std::size_t beside) {
        const double own = std::fabs(slope(step));
        const double other = std::signbit(slope(step)) == std::signbit(slope(beside)) ? std::fabs(slope(beside)) : 0.0;
        return other == 0.0 || other < own / kSimilar || other > own * kSimilar;
    };
    std::optional<TableStep> largest;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const double from = std::fmax(points[i].x, 0.0);
        const double to = std::fmin(points[i + 1].x, vcc);
        if (!(from < to)) continue;
        const double size = std::fabs(table.currentIn(i + 1, to) - table.currentIn(i + 1, from));
        if (largest && !(size > largest->size)) continue;
        const bool bent = (i > 0 && bends(i, i - 1)) || (i + 2 < points.size() && bends(i, i + 1));
        if (bent) largest = TableStep{from, to, size};
    }
    return largest;
}

} // namespace

void checkTableSpan(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kSlack = 0.05 + 1e-9; // of Vcc, and what rounding makes
    const bool looked_at = advised.drives() || advised.onlyReceives() || advised.isTerminator();
    if (!looked_at || !advised.physics.vcc()) return;
    const double vcc = *advised.physics.vcc();
    for (const TableKind kind : kAllTables) {
        const bool is_driver_table = kind == TableKind::pulldown || kind == TableKind::pullup;
        const std::optional<TableAtPin> at_pin = advised.physics.atPin(kind, Corner::typ);
        if (!at_pin || (is_driver_table && !advised.drives())) continue;
        const IvTable& table = *at_pin->table;
        const bool carries =
            std::ranges::any_of(table.points(), [](const Point& point) { return std::fabs(point.y) >= kNoCurrent; });
        if (!carries) continue;
        const Reach reach = reachOf(kind, table, vcc);
        const StateCurrent* const total = advised.physics.current(stateOf(kind));
        const bool low_short = table.firstVoltage() > reach.low + kSlack * vcc &&
                               !holdsLine(total, *at_pin, table.firstVoltage(), reach.low);
        const bool high_short = table.lastVoltage() < reach.high - kSlack * vcc &&
                                !holdsLine(total, *at_pin, table.lastVoltage(), reach.high);
        if (!low_short && !high_short) continue;
        list.add(placeOfTable(advised, kind), 201, tableKeyword(kind), volts(table.firstVoltage()),
                 volts(table.lastVoltage()), volts(reach.low), volts(reach.high));
        list.setPlace(low_short ? std::optional(table.firstVoltage()) : std::nullopt,
                      high_short ? std::optional(table.lastVoltage()) : std::nullopt);
    }
}

void checkRisingCurrent(const AdvisedModel& advised, AdviceList& list) {
    const bool receives = advised.onlyReceives() || advised.isTerminator();
    if (!receives && !advised.drives()) return;
    Worst<Fall> worst;
    for (const DriveState state : {DriveState::low, DriveState::high, DriveState::off}) {
        if ((state == DriveState::off) != receives) continue;
        for (const Corner corner : kCorners)
            if (const auto found = findFall(advised.physics, state, corner)) worst.add(found->second, found->first);
    }
    if (!worst) return;
    list.add(adviceAt(advised.model), 202, stateWord(worst->state), amperes(worst->from.y), volts(worst->from.x),
             amperes(worst->to.y), volts(worst->to.x), cornerWord(worst->corner));
    list.addMore(202, worst.more());
}

void checkCurrentAtRail(const AdvisedModel& advised, AdviceList& list) {
    // Waveforms that end at the levels of the tables say that these are right.
    if (!advised.drives() || advised.ends.allAgree()) return;
    const ModelPhysics& physics = advised.physics;
    for (const TableKind kind : kDriverTables) {
        const IvTable& table = physics.table(kind);
        if (!table.hasData() || !physics.vcc()) continue;
        const double at_rail = table.at(0.0);
        const double at_vcc = table.at(*physics.vcc());
        const double largest = table.largestBetween(0.0, *physics.vcc());
        const double size = std::fabs(at_rail);
        constexpr double kMostOfIt = 0.5;
        constexpr double kLittleOfIt = 0.2;
        const bool wrong_way =
            at_rail * signOf(kind) > 0.0 && size > kMostOfIt * largest && std::fabs(at_vcc) < kLittleOfIt * largest;
        constexpr double kMuch = 0.05;
        const bool carries = size > kMuch * largest && size > kNoCurrent && !advised.file.isInPair(advised.model);
        if (wrong_way) {
            list.add(placeOfTable(advised, kind), {203, 0}, tableKeyword(kind), amperes(at_rail), amperes(at_vcc));
            continue;
        }
        if (carries) {
            list.add(placeOfTable(advised, kind), {203, 1}, tableKeyword(kind), amperes(at_rail), amperes(largest));
            continue;
        }
        constexpr double kNoneInTyp = 0.01;
        constexpr double kSomeInCorner = 0.02;
        if (!(size <= kNoneInTyp * largest)) continue;
        for (const Corner corner : {Corner::min, Corner::max}) {
            const IvTable& other = physics.table(kind, corner);
            if (!other.hasData() || !physics.vcc(corner)) continue;
            const double current = other.at(0.0);
            const double most = other.largestBetween(0.0, *physics.vcc(corner));
            if (!(std::fabs(current) > kSomeInCorner * most) || !(std::fabs(current) > kNoCurrent)) continue;
            const NumberText in_typ = amperes(at_rail);
            list.add(placeOfTable(advised, kind), {203, 2}, tableKeyword(kind), amperes(current), cornerWord(corner),
                     size < kNoCurrent ? std::string_view("nothing") : std::string_view(in_typ));
            break;
        }
    }
}

void checkOffCurrent(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kTermination = 2000.0;
    const ModelPhysics& physics = advised.physics;
    const StateCurrent* const off = physics.current(DriveState::off);
    if ((!advised.drives() && !advised.onlyReceives()) || off == nullptr || !physics.vcc()) return;
    const double middle = *physics.references().pulldown + *physics.vcc() / 2.0;
    const double current = std::fabs(off->at(middle));
    if (!(current > *physics.vcc() / 2.0 / kTermination)) return;
    if (findRange(advised.model, MdlRange::rgnd) != nullptr || findRange(advised.model, MdlRange::rpower) != nullptr)
        return;
    if (namesTermination(advised.model.name)) return;
    for (const AddSubmodel& submodel : advised.model.add_submodels)
        if (namesTermination(submodel.name)) return;
    list.add(adviceAt(advised.model), 204, amperes(off->at(middle)), volts(middle),
             ohms(*physics.vcc() / 2.0 / current));
}

void checkClampsCountedOnce(const AdvisedModel& advised, AdviceList& list) {
    if (!advised.drives() && !advised.onlyReceives()) return;
    Worst<SameCurrent> first;
    const auto add = [&first](const std::optional<SameCurrent>& found) {
        if (found) first.add(*found);
    };
    if (advised.drives()) {
        add(clampInDriver(advised.physics, TableKind::pulldown, TableKind::gndClamp));
        add(clampInDriver(advised.physics, TableKind::pullup, TableKind::powerClamp));
    }
    add(clampInClamp(advised.physics, TableKind::powerClamp, TableKind::gndClamp));
    add(clampInClamp(advised.physics, TableKind::gndClamp, TableKind::powerClamp));
    if (!first) return;
    const NumberText at = volts(first->voltage);
    const NumberText current = amperes(first->current);
    const NumberText of_clamp = amperes(first->of_clamp);
    const AdvicePlace place = placeOfTable(advised, first->at);
    if (first->in_driver) {
        list.add(place, {205, 0}, tableKeyword(first->at), current, at, tableKeyword(first->clamp), of_clamp);
    } else {
        list.add(place, {205, 1}, at, tableKeyword(first->at), current, tableKeyword(first->clamp), of_clamp);
    }
    list.addMore(205, first.more());
}

void checkTableCorners(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kMostOfMin = 1.1;  // of typ
    constexpr double kLeastOfMax = 0.9; // of typ
    eachCarryingTable(advised, [&](TableKind kind, const IvTable& table, double vcc) {
        const std::string same = sameCorners(advised, kind);
        if (!same.empty()) {
            list.add(placeOfTable(advised, kind), {206, 1}, tableKeyword(kind), same);
            return;
        }
        PerCorner<GivenValue> currents;
        currents[Corner::typ] = table.at(vcc / 2.0);
        const double typ = std::fabs(*currents[Corner::typ]);
        for (const Corner corner : {Corner::min, Corner::max}) {
            const IvTable& other = advised.physics.table(kind, corner);
            if (other.hasData()) currents[corner] = other.at(vcc / 2.0);
        }
        const double min = std::fabs(currents[Corner::min].value_or(0.0));
        const double max = std::fabs(currents[Corner::max].value_or(typ));
        const bool min_strong = min > kMostOfMin * typ;
        const bool max_weak = max < kLeastOfMax * typ;
        if ((!min_strong && !max_weak) || !advised.physics.isAtRail(stateOf(kind))) return;
        list.add(placeOfTable(advised, kind), {206, 0}, tableKeyword(kind), volts(vcc / 2.0), currentsText(currents));
    });
}

void checkTableSteps(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kShare = 0.35;
    eachCarryingTable(advised, [&](TableKind kind, const IvTable& table, double vcc) {
        const double span = spanBetween(table, 0.0, vcc);
        const std::optional<TableStep> step = largestBentStep(table, vcc);
        if (!step || !(step->size > kShare * span)) return;
        list.add(placeOfTable(advised, kind), 207, tableKeyword(kind), amperes(step->size), amperes(span),
                 volts(step->from), volts(step->to));
    });
}

void checkStairs(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kRise = 0.05; // of the span
    constexpr std::ptrdiff_t kTread = 3;
    constexpr std::uint32_t kStairs = 3;
    eachCarryingTable(advised, [&](TableKind kind, const IvTable& table, double vcc) {
        const double rise = kRise * spanBetween(table, 0.0, vcc);
        const std::span<const Point> points = table.points();
        const auto begin = std::ranges::lower_bound(points, 0.0, {}, &Point::x);
        const auto end = std::ranges::upper_bound(points, vcc, {}, &Point::x);
        std::uint32_t stairs = 0;
        auto first = end;
        for (auto tread = begin; tread != end;) {
            const auto next = std::find_if(tread, end, [tread](const Point& point) { return point.y != tread->y; });
            const bool rises_before = tread != begin && std::fabs((tread - 1)->y - tread->y) > rise;
            const bool rises_behind = next != end && std::fabs(next->y - tread->y) > rise;
            if (next - tread >= kTread && (rises_before || rises_behind)) {
                if (stairs++ == 0) first = tread;
            }
            tread = next;
        }
        if (stairs < kStairs) return;
        list.add(placeOfTable(advised, kind), 208, tableKeyword(kind), stairs, amperes(first->y), volts(first->x));
    });
}

void checkDriveStrength(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kStrongest = 1.0;
    constexpr double kWeakest = 2000.0;
    const ModelPhysics& physics = advised.physics;
    if (!advised.drives() || !physics.vcc()) return;
    const double middle = *physics.vcc() / 2.0;
    for (const TableKind kind : kDriverTables) {
        const ModelTypeSet& others = kind == TableKind::pulldown ? kOpenHighTypes : kOpenLowTypes;
        const IvTable& table = physics.table(kind);
        if (!table.hasData() || others.has(advised.model.type())) continue;
        if (!physics.carriesSomething(kind)) {
            if (!std::isfinite(table.at(0.0)) || !std::isfinite(table.at(*physics.vcc()))) continue;
            list.add(placeOfTable(advised, kind), {209, 0}, tableKeyword(kind), volts(*physics.vcc()),
                     stateWord(stateOf(kind)));
            continue;
        }
        const double current = table.at(middle);
        const double size = std::fabs(current);
        const bool usual = middle >= kStrongest * size && middle <= kWeakest * size;
        if (usual || !std::isfinite(size) || !physics.isAtRail(stateOf(kind))) continue;
        if (size > 0.0) {
            list.add(placeOfTable(advised, kind), {209, 1}, tableKeyword(kind), amperes(current), volts(middle),
                     ohms(middle / size));
        } else {
            list.add(placeOfTable(advised, kind), {209, 2}, tableKeyword(kind), volts(middle));
        }
    }
}

} // namespace kestrel
