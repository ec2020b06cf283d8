#include "quality/waveforms.hpp"

#include "quality/number_text.hpp"

#include <algorithm>

namespace kestrel {

namespace {

/// Where a line between two points reaches a height that lies between theirs, which differ.
double timeAt(const Point& a, const Point& b, double height) {
    return a.x + (b.x - a.x) * ((height - a.y) / (b.y - a.y));
}

/// The time until the values leave a band around the first one.
double timeInBand(std::span<const Point> points, double band) {
    const double first = points.front().y;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double offset = points[i].y - first;
        if (!(std::fabs(offset) > band)) continue;
        return timeAt(points[i - 1], points[i], offset > 0.0 ? first + band : first - band) - points.front().x;
    }
    return points.back().x - points.front().x;
}

/// How many volts the values go through from a time on.
double movementFrom(std::span<const Point> points, double time) {
    auto point = std::ranges::lower_bound(points, time, {}, &Point::x);
    if (point == points.end()) return 0.0;
    double low = point->y;
    double high = point->y;
    if (point != points.begin() && point->x > time) {
        const Point& before = *(point - 1);
        const double begin = before.y + (point->y - before.y) * ((time - before.x) / (point->x - before.x));
        low = std::fmin(low, begin);
        high = std::fmax(high, begin);
    }
    for (; point != points.end(); ++point) {
        low = std::fmin(low, point->y);
        high = std::fmax(high, point->y);
    }
    return high - low;
}

/// Where the middle of an edge begins and ends, as parts of the swing.
constexpr double kLow = 0.2;
constexpr double kHigh = 0.8;

/// The middle of the edge, where it has one.
std::optional<WaveMiddle> middleOf(std::span<const Point> points, double swing) {
    const double first = points.front().y;
    const double low = first + kLow * swing;
    const double high = first + kHigh * swing;
    const bool rises = swing > 0.0;
    const auto crosses = [rises](const Point& a, const Point& b, double height) {
        return rises ? a.y < height && b.y >= height : a.y > height && b.y <= height;
    };
    double low_time = points.front().x;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point& a = points[i - 1];
        const Point& b = points[i];
        if (crosses(a, b, low)) low_time = timeAt(a, b, low);
        if (!crosses(a, b, high)) continue;
        const double time = timeAt(a, b, high) - low_time;
        if (!(time > 0.0)) return {};
        return WaveMiddle{{low_time, low}, {timeAt(a, b, high), high}};
    }
    return {};
}

/// The rate of the middle.
GivenValue rateOf(const WaveMiddle& middle, double swing) {
    const double rate = (kHigh - kLow) * std::fabs(swing) / (middle.high.x - middle.low.x);
    return std::isfinite(rate) ? GivenValue(rate) : GivenValue();
}

} // namespace

WaveCorner measureWave(std::span<const Point> points, GivenValue vcc) {
    constexpr double kMoves = 0.1;  // of Vcc
    constexpr double kStays = 0.01; // of the swing
    constexpr double kEnd = 0.05;   // of the duration
    WaveCorner wave;
    if (points.size() < 2) return wave;
    wave.given = true;
    wave.first = points.front().y;
    wave.last = points.back().y;
    wave.begin = points.front().x;
    wave.duration = points.back().x - points.front().x;
    wave.moves = vcc && wave.size() > kMoves * *vcc && std::isfinite(wave.size());
    if (!wave.moves) return wave;

    const bool rises = wave.swing() > 0.0;
    Point farthest = points.front();
    wave.back_from = wave.back_to = farthest;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point& point = points[i];
        const WaveStep step{std::fabs(point.y - points[i - 1].y), point.x - points[i - 1].x, point.x};
        if (i == 1) wave.first_step = step;
        if (step.volts > wave.largest_step.volts) wave.largest_step = step;
        const double ahead = rises ? point.y - farthest.y : farthest.y - point.y;
        if (ahead >= 0.0) {
            farthest = point;
        } else if (-ahead > wave.back()) {
            wave.back_from = farthest;
            wave.back_to = point;
        }
    }
    wave.dead_time = timeInBand(points, kStays * wave.size());
    wave.late_time = points.back().x - kEnd * wave.duration;
    wave.late_movement = movementFrom(points, wave.late_time);
    wave.middle = middleOf(points, wave.swing());
    if (wave.middle) wave.rate = rateOf(*wave.middle, wave.swing());
    return wave;
}

std::vector<Waveform> waveformsOf(const Mdl& model, const ModelPhysics& physics, PointRoom& room) {
    const MdlTables& tables = *model.tables;
    std::vector<Waveform> list;
    list.reserve(tables.rising_waveforms.size() + tables.falling_waveforms.size());
    for (const Wvfrm& waveform : tables.rising_waveforms)
        list.push_back({&waveform, Edge::rising, {}});
    for (const Wvfrm& waveform : tables.falling_waveforms)
        list.push_back({&waveform, Edge::falling, {}});
    const auto falling = list.begin() + static_cast<std::ptrdiff_t>(tables.rising_waveforms.size());
    std::inplace_merge(list.begin(), falling, list.end(),
                       [](const Waveform& a, const Waveform& b) { return a.record->line < b.record->line; });
    for (Waveform& waveform : list) {
        room.empty(waveform.record->rows.size() * kCornerCount);
        const auto points = orderedCorners(waveform.record->rows, EqualRows::keepAll, room);
        for (const Corner corner : kCorners)
            waveform.corners[corner] = measureWave(points[corner], physics.vcc(corner));
    }
    return list;
}

GivenValue rampLoad(const Ramp& ramp) {
    constexpr double kUsual = 50.0;
    if (!ramp.r_load) return kUsual;
    return *ramp.r_load > 0.0 && std::isfinite(*ramp.r_load) ? ramp.r_load : GivenValue();
}

std::optional<std::pair<double, double>> levelsOfEdge(const ModelPhysics& physics, Edge edge, const DcLoad& load) {
    const std::optional<double> low = physics.level(DriveState::low, Corner::typ, load);
    const std::optional<double> high = physics.level(DriveState::high, Corner::typ, load);
    if (!low || !high) return std::nullopt;
    return edge == Edge::rising ? std::pair(*low, *high) : std::pair(*high, *low);
}

std::optional<double> rampDeviation(const ModelPhysics& physics, Edge edge, double dv, const DcLoad& load) {
    const auto levels = levelsOfEdge(physics, edge, load);
    const double expected = levels ? kRampPart * std::fabs(levels->second - levels->first) : 0.0;
    if (!(expected > 0.0)) return std::nullopt;
    return std::fabs(dv - expected) / expected;
}

std::vector<DcLoad> loadsOfRamp(const Mdl& model, const ModelPhysics& physics, Edge edge) {
    std::vector<DcLoad> loads;
    const auto add = [&loads](GivenValue resistance, GivenValue voltage) {
        if (resistance && voltage) loads.push_back({*resistance, *voltage});
    };
    const GivenValue own = rampLoad(*model.tables->ramp);
    const GivenValue far = physics.farRail(edge);
    add(own, far);
    if (physics.drivesLow() == physics.drivesHigh()) return loads;
    const TypicalValues values = typicalValuesOf(model);
    add(own, values.vref);
    add(values.rref, values.vref);
    add(values.rref, far);
    return loads;
}

bool leadsToFarRail(const Waveform& waveform, Corner corner, const ModelPhysics& physics) {
    constexpr double kNear = 0.1; // of Vcc
    const GivenValue voltage = fixtureVoltage(*waveform.record, corner);
    const GivenValue rail = physics.farRail(waveform.edge, corner);
    const GivenValue vcc = physics.vcc(corner);
    return voltage && rail && vcc && std::fabs(*voltage - *rail) <= kNear * *vcc;
}

bool hasLoadOfRamp(const Waveform& waveform, Corner corner, const Ramp& ramp, const ModelPhysics& physics) {
    const Wvfrm& record = *waveform.record;
    for (const GivenValue& other : {record.c_fixture, record.l_fixture, record.r_dut, record.l_dut, record.c_dut})
        if (other && *other != 0.0) return false;
    const GivenValue load = rampLoad(ramp);
    return load && record.r_fixture && *record.r_fixture == *load && leadsToFarRail(waveform, corner, physics);
}

GivenValue fixtureVoltage(const Wvfrm& waveform, Corner corner) {
    if (corner == Corner::min && waveform.v_fixture_min) return waveform.v_fixture_min;
    if (corner == Corner::max && waveform.v_fixture_max) return waveform.v_fixture_max;
    return waveform.v_fixture;
}

std::optional<DcLoad> fixtureLoad(const Wvfrm& waveform, Corner corner) {
    const GivenValue voltage = fixtureVoltage(waveform, corner);
    const GivenValue resistance = waveform.r_fixture;
    const bool complete = voltage && resistance && *resistance > 0.0 && std::isfinite(*voltage);
    return complete ? std::optional(DcLoad{*resistance, *voltage}) : std::nullopt;
}

std::string fixtureText(const Wvfrm& waveform) {
    const GivenValue voltage = waveform.v_fixture;
    std::string text(waveform.r_fixture ? std::string_view(ohms(*waveform.r_fixture)) : std::string_view("?"));
    text.append(" to ").append(voltage ? std::string_view(volts(*voltage)) : std::string_view("?"));
    return text;
}

std::string waveformText(const Waveform& waveform) {
    std::string text(waveform.edge == Edge::rising ? "[Rising Waveform] with " : "[Falling Waveform] with ");
    return text.append(fixtureText(*waveform.record));
}

EndComparison compareEnds(const ModelPhysics& physics, const std::vector<Waveform>& waveforms) {
    EndComparison comparison;
    const auto compare = [&](const Waveform& waveform, Corner corner, const DcLoad& load, double vcc) {
        constexpr double kOfMove = 0.25; // of what the load moves the level
        for (const bool at_end : {false, true}) {
            const DriveState state = (waveform.edge == Edge::rising) == at_end ? DriveState::high : DriveState::low;
            const std::optional<double> of_tables = physics.level(state, corner, load);
            if (!of_tables) continue;
            const WaveCorner& wave = waveform.corners[corner];
            const double level = at_end ? wave.last : wave.first;
            const double difference = std::fabs(level - *of_tables);
            ++comparison.compared;
            if (!(difference > leastDifference(vcc))) continue;
            if (!(difference > kLevelOfSwing * wave.size())) {
                // A load that hardly moves the level has to be met more closely than the swing asks for.
                const std::optional<double> open = physics.levelWithoutLoad(state, corner);
                const double move = open ? std::fabs(*of_tables - *open) : wave.size();
                if (!(difference > kOfMove * move)) continue;
            }
            comparison.differences.add(difference, EndDifference{&waveform, corner, at_end, level, *of_tables});
        }
    };
    for (const Waveform& waveform : waveforms) {
        // Inside the device a resistance would be in series with the tables.
        if (waveform.record->r_dut && *waveform.record->r_dut != 0.0) continue;
        for (const Corner corner : kCorners) {
            const std::optional<DcLoad> load = fixtureLoad(*waveform.record, corner);
            const GivenValue vcc = physics.vcc(corner);
            if (load && vcc && waveform.corners[corner].given) compare(waveform, corner, *load, *vcc);
        }
    }
    return comparison;
}

std::string_view edgeWord(Edge edge) { return edge == Edge::rising ? "rising" : "falling"; }

} // namespace kestrel
