#include "quality/edges.hpp"

#include "quality/advised.hpp"
#include "quality/number_text.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrel {

namespace {

constexpr double kPlayOfRates = 1.2;  // that a weak corner may be faster
constexpr double kPlayOfStrong = 0.8; // that a strong corner may be slower

AdvicePlace placeOfWave(const AdvisedModel& advised, const Waveform& waveform) {
    return adviceAt(advised.model, waveform.record->line);
}

AdvicePlace placeOfRamp(const AdvisedModel& advised) {
    return adviceAt(advised.model, advised.model.tables->ramp->line);
}

/// A waveform in a corner.
struct WaveAt {
    const Waveform* waveform;
    Corner corner;

    [[nodiscard]] const WaveCorner& measures() const { return waveform->corners[corner]; }
    [[nodiscard]] std::string name() const { return waveformText(*waveform); }
    [[nodiscard]] std::string_view word() const { return cornerWord(corner); }
};

/// Calls `visit` with every waveform of a driver in every corner that it gives.
template <class Visit> void eachWave(const AdvisedModel& advised, Visit visit) {
    if (!advised.drives()) return;
    for (const Waveform& waveform : advised.waveforms)
        for (const Corner corner : kCorners)
            if (waveform.corners[corner].given) visit(WaveAt{&waveform, corner});
}

/// The same for those that move.
template <class Visit> void eachMovingWave(const AdvisedModel& advised, Visit visit) {
    eachWave(advised, [&visit](const WaveAt& wave) {
        if (wave.measures().moves) visit(wave);
    });
}

/// One of the two lines of a ramp.
struct RampLine {
    Edge edge;
    std::string_view name;
    const std::optional<RampRate>* rate;

    /// The slew of a corner in V/s, where both of its numbers are above 0.
    [[nodiscard]] GivenValue slew(Corner corner) const {
        const GivenValue step = dv(corner);
        return step ? GivenValue(*step / (**rate)[corner].dt) : GivenValue();
    }
    /// The voltage of a corner, likewise.
    [[nodiscard]] GivenValue dv(Corner corner) const {
        if (!*rate) return {};
        const RampCorner& found = (**rate)[corner];
        const bool counts = found.dv.value() > 0.0 && found.dt > 0.0 && std::isfinite(found.dv.value() / found.dt);
        return counts ? GivenValue(found.dv.value()) : GivenValue();
    }
};

/// Both lines of a driver's ramp, for a loop; without rates in models that do not drive.
std::array<RampLine, 2> rampLines(const AdvisedModel& advised) {
    static constexpr std::optional<RampRate> kNone;
    const Ramp& ramp = *advised.model.tables->ramp;
    const bool drives = advised.drives();
    return {RampLine{Edge::rising, "dV/dt_r", drives ? &ramp.dv_dt_r : &kNone},
            RampLine{Edge::falling, "dV/dt_f", drives ? &ramp.dv_dt_f : &kNone}};
}

/// How far corners are out of order: the larger of min over typ and typ over max, where that is more than some play.
std::optional<double> outOfOrder(const PerCorner<GivenValue>& rates) {
    const GivenValue typ = rates.typ();
    if (!typ || !(*typ > 0.0)) return std::nullopt;
    const bool min_fast = rates.min() && *rates.min() > kPlayOfRates * *typ;
    const bool max_slow = rates.max() && *rates.max() < kPlayOfStrong * *typ;
    if (!min_fast && !max_slow) return std::nullopt;
    const double of_min = rates.min() ? *rates.min() / *typ : 0.0;
    const double of_max = rates.max() && *rates.max() > 0.0 ? *typ / *rates.max() : 0.0;
    return std::fmax(of_min, of_max);
}

/// "typ 2.54 V/ns, min 1.89 V/ns" of the corners that are given.
std::string slewsText(const PerCorner<GivenValue>& rates) {
    std::string text;
    for (const Corner corner : kCorners) {
        if (!rates[corner]) continue;
        if (!text.empty()) text.append(", ");
        text.append(cornerWord(corner)).append(" ").append(slew(*rates[corner]));
    }
    return text;
}

/// Waveforms of both edges into the same fixture that do not agree on a level.
struct LevelDifference {
    WaveAt rising;
    bool is_high;
    double in_rising;
    double in_falling;
};

bool isSame(GivenValue a, GivenValue b) { return a.has_value() == b.has_value() && (!a || *a == *b); }

bool haveSameFixture(const Wvfrm& a, const Wvfrm& b) {
    return isSame(a.r_fixture, b.r_fixture) && isSame(a.v_fixture, b.v_fixture) &&
           isSame(a.v_fixture_min, b.v_fixture_min) && isSame(a.v_fixture_max, b.v_fixture_max);
}

/// The first waveforms of an edge: as many as a model may have.
std::vector<const Waveform*> waveformsOf(const AdvisedModel& advised, Edge edge) {
    constexpr std::size_t kMost = 100;
    std::vector<const Waveform*> list;
    for (const Waveform& waveform : advised.waveforms)
        if (waveform.edge == edge && list.size() < kMost) list.push_back(&waveform);
    return list;
}

void compareLevels(const AdvisedModel& advised, const Waveform& rising, const Waveform& falling,
                   Worst<LevelDifference>& worst) {
    for (const Corner corner : kCorners) {
        const WaveCorner& up = rising.corners[corner];
        const WaveCorner& down = falling.corners[corner];
        const GivenValue vcc = advised.physics.vcc(corner);
        if (!up.given || !down.given || !vcc) continue;
        const double limit = std::fmax(kLevelOfSwing * std::fmax(up.size(), down.size()), leastDifference(*vcc));
        const auto compare = [&](bool is_high, double in_rising, double in_falling) {
            const double difference = std::fabs(in_rising - in_falling);
            if (!(difference > limit)) return;
            worst.add(difference, LevelDifference{{&rising, corner}, is_high, in_rising, in_falling});
        };
        compare(false, up.first, down.last);
        compare(true, up.last, down.first);
    }
}

/// Where the dV of a ramp is not that of the tables.
struct RampDifference {
    RampLine line;
    double dv;
    double from; ///< level of the tables at the beginning of the edge
    double to;
    double load; ///< ohms
};

} // namespace

void checkWaveformEnds(const AdvisedModel& advised, AdviceList& list) {
    const Worst<EndDifference>& differences = advised.ends.differences;
    if (!differences) return;
    const EndDifference& worst = *differences;
    list.add(placeOfWave(advised, *worst.waveform), 301, waveformText(*worst.waveform),
             std::string_view(worst.at_end ? "ends" : "begins"), level(worst.level), level(worst.of_tables),
             cornerWord(worst.corner));
    list.addMore(301, differences.more());
    const WaveCorner& wave = worst.waveform->corners[worst.corner];
    list.setPlace(worst.at_end ? wave.end() : wave.begin);
}

void checkTwoLoads(const AdvisedModel& advised, AdviceList& list) {
    if (!advised.drives() || !advised.physics.isPushPull() || advised.waveforms.empty()) return;
    const auto has_two = [&advised](Edge edge) {
        const Wvfrm* first = nullptr;
        return std::ranges::any_of(advised.waveforms, [&](const Waveform& waveform) {
            if (waveform.edge != edge) return false;
            const Wvfrm& record = *waveform.record;
            if (first == nullptr) first = &record;
            return !isSame(first->r_fixture, record.r_fixture) || !isSame(first->v_fixture, record.v_fixture);
        });
    };
    const bool rising = has_two(Edge::rising);
    const bool falling = has_two(Edge::falling);
    if (rising && falling) return;
    const std::string_view edges = rising    ? "the falling edge"
                                   : falling ? "the rising edge"
                                             : "the rising and the falling edge";
    list.add(placeOfWave(advised, advised.waveforms.front()), 302, edges);
}

void checkDeadTime(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLimit = 0.4;
    const auto share_of = [](const WaveAt& wave) { return wave.measures().dead_time / wave.measures().duration; };
    // All waveforms of an edge begin together, so the one that waits least says how long nothing happens.
    std::array<PerCorner<std::optional<WaveAt>>, kEdges.size()> least;
    eachMovingWave(advised, [&](const WaveAt& wave) {
        if (!(wave.measures().duration > 0.0)) return;
        std::optional<WaveAt>& found = least[static_cast<std::size_t>(wave.waveform->edge)][wave.corner];
        if (!found || roundedMeasure(share_of(wave)) < roundedMeasure(share_of(*found))) found = wave;
    });
    Worst<WaveAt> worst;
    for (const auto& edge : least)
        for (const std::optional<WaveAt>& wave : edge)
            if (wave && share_of(*wave) > kLimit) worst.add(share_of(*wave), *wave);
    if (!worst) return;
    list.add(placeOfWave(advised, *worst->waveform), 303, seconds(worst->measures().dead_time),
             seconds(worst->measures().duration), edgeWord(worst->waveform->edge), worst->word());
    list.addMore(303, worst.more());
    list.setPlace(worst->measures().begin + worst->measures().dead_time);
}

void checkSettled(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLimit = 0.03;
    Worst<WaveAt> worst;
    eachMovingWave(advised, [&worst](const WaveAt& wave) {
        const double share = wave.measures().late_movement / wave.measures().size();
        if (share > kLimit) worst.add(share, wave);
    });
    if (!worst) return;
    list.add(placeOfWave(advised, *worst->waveform), 304, worst->name(), volts(worst->measures().late_movement),
             volts(worst->measures().size()), "5 %", worst->word());
    list.addMore(304, worst.more());
    list.setPlace(worst->measures().late_time);
}

void checkWaveformSteps(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kFirstStep = 0.25;
    const auto step_of = [](const WaveAt& wave) {
        return wave.measures().isCoarse() ? wave.measures().largest_step : wave.measures().first_step;
    };
    Worst<WaveAt> worst;
    eachMovingWave(advised, [&](const WaveAt& wave) {
        if (wave.corner != Corner::typ) return;
        const double share = step_of(wave).volts / wave.measures().size();
        if (wave.measures().isCoarse() || share > kFirstStep) worst.add(share, wave);
    });
    if (!worst) return;
    const WaveStep step = step_of(*worst);
    list.add(placeOfWave(advised, *worst->waveform), 305, worst->name(), volts(step.volts),
             volts(worst->measures().size()), seconds(step.seconds));
    list.addMore(305, worst.more());
    list.setPlace(step.end);
}

void checkMovement(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLimit = 0.01; // of Vcc
    Worst<WaveAt> worst;
    eachWave(advised, [&](const WaveAt& wave) {
        const GivenValue vcc = advised.physics.vcc(wave.corner);
        if (!vcc || !leadsToFarRail(*wave.waveform, wave.corner, advised.physics)) return;
        if (wave.measures().size() < kLimit * *vcc) worst.add(wave);
    });
    if (!worst) return;
    list.add(placeOfWave(advised, *worst->waveform), 306, worst->name(), level(worst->measures().size()),
             worst->word());
    list.addMore(306, worst.more());
}

void checkLevelsOfEdges(const AdvisedModel& advised, AdviceList& list) {
    if (!advised.drives()) return;
    Worst<LevelDifference> worst;
    const std::vector<const Waveform*> falling = waveformsOf(advised, Edge::falling);
    for (const Waveform* const up : waveformsOf(advised, Edge::rising))
        for (const Waveform* const down : falling)
            if (haveSameFixture(*up->record, *down->record)) compareLevels(advised, *up, *down, worst);
    if (!worst) return;
    list.add(placeOfWave(advised, *worst->rising.waveform), 307, fixtureText(*worst->rising.waveform->record),
             std::string_view(worst->is_high ? "high" : "low"), level(worst->in_rising), level(worst->in_falling),
             worst->rising.word());
    list.addMore(307, worst.more());
    const WaveCorner& rising = worst->rising.measures();
    list.setPlace(worst->is_high ? rising.end() : rising.begin);
}

void checkWaveformCorners(const AdvisedModel& advised, AdviceList& list) {
    struct Found {
        const Waveform* waveform;
        PerCorner<GivenValue> rates;
    };
    if (!advised.drives()) return;
    Worst<Found> worst;
    for (const Waveform& waveform : advised.waveforms) {
        PerCorner<GivenValue> rates;
        for (const Corner corner : kCorners) {
            const WaveCorner& wave = waveform.corners[corner];
            if (wave.moves && !wave.isCoarse()) rates[corner] = wave.rate;
        }
        if (const std::optional<double> measure = outOfOrder(rates)) worst.add(*measure, Found{&waveform, rates});
    }
    if (!worst) return;
    list.add(placeOfWave(advised, *worst->waveform), 308, waveformText(*worst->waveform), "20-80 %",
             slewsText(worst->rates));
    list.addMore(308, worst.more());
}

void checkRampRate(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLimit = 2.0;
    struct Found {
        RampLine line;
        WaveAt wave;
    };
    const std::array<RampLine, 2> lines = rampLines(advised);
    Worst<Found> worst;
    eachMovingWave(advised, [&](const WaveAt& wave) {
        const RampLine& line = lines[static_cast<std::size_t>(wave.waveform->edge)];
        const GivenValue of_ramp = line.slew(wave.corner);
        const GivenValue of_wave = wave.measures().rate;
        if (!of_ramp || !of_wave || wave.measures().isCoarse()) return;
        if (!hasLoadOfRamp(*wave.waveform, wave.corner, *advised.model.tables->ramp, advised.physics)) return;
        if (!(*of_ramp > 0.0) || !(*of_wave > 0.0)) return;
        const double factor = std::fmax(*of_ramp / *of_wave, *of_wave / *of_ramp);
        if (factor > kLimit) worst.add(factor, Found{line, wave});
    });
    if (!worst) return;
    const WaveAt& wave = worst->wave;
    list.add(placeOfRamp(advised), 309, worst->line.name, slew(*worst->line.slew(wave.corner)),
             fixtureText(*wave.waveform->record), slew(*wave.measures().rate), wave.word());
    list.addMore(309, worst.more());
}

void checkRampSwing(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLimit = 0.2;
    const ModelPhysics& physics = advised.physics;
    const GivenValue load = rampLoad(*advised.model.tables->ramp);
    if (!load) return;
    const auto is_off_rail = [&physics] {
        return (physics.drivesLow() && !physics.isAtRail(DriveState::low)) ||
               (physics.drivesHigh() && !physics.isAtRail(DriveState::high));
    };
    Worst<RampDifference> worst;
    for (const RampLine& line : rampLines(advised)) {
        const GivenValue dv = line.dv(Corner::typ);
        const GivenValue far = physics.farRail(line.edge);
        if (!dv || !far) continue;
        const DcLoad own{*load, *far};
        const std::optional<double> found = rampDeviation(physics, line.edge, *dv, own);
        if (!found || !(*found > kLimit) || is_off_rail()) continue;
        const auto agrees = [&](const DcLoad& other) {
            const std::optional<double> off_by = rampDeviation(physics, line.edge, *dv, other);
            return off_by && *off_by <= kLimit;
        };
        if (std::ranges::any_of(loadsOfRamp(advised.model, physics, line.edge), agrees)) continue;
        const auto levels = levelsOfEdge(physics, line.edge, own);
        worst.add(*found, RampDifference{line, *dv, levels->first, levels->second, *load});
    }
    if (!worst) return;
    list.add(placeOfRamp(advised), 310, worst->line.name, volts(worst->dv), "60 %", level(worst->from),
             level(worst->to), ohms(worst->load), volts(kRampPart * std::fabs(worst->to - worst->from)));
    list.addMore(310, worst.more());
}

void checkRampCorners(const AdvisedModel& advised, AdviceList& list) {
    struct Found {
        RampLine line;
        PerCorner<GivenValue> rates;
    };
    Worst<Found> worst;
    for (const RampLine& line : rampLines(advised)) {
        PerCorner<GivenValue> rates;
        for (const Corner corner : kCorners)
            rates[corner] = line.slew(corner);
        if (const std::optional<double> measure = outOfOrder(rates)) worst.add(*measure, Found{line, rates});
    }
    if (!worst) return;
    list.add(placeOfRamp(advised), 311, worst->line.name, slewsText(worst->rates));
    list.addMore(311, worst.more());
}

void checkRampSlew(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kSlowest = 100e3;
    constexpr double kFastest = 500e9;
    Worst<RampLine> worst;
    for (const RampLine& line : rampLines(advised)) {
        const GivenValue found = line.slew(Corner::typ);
        if (found && (*found < kSlowest || *found > kFastest)) worst.add(line);
    }
    if (!worst) return;
    list.add(placeOfRamp(advised), 312, worst->name, slew(*worst->slew(Corner::typ)));
    list.addMore(312, worst.more());
}

void checkWayBack(const AdvisedModel& advised, AdviceList& list) {
    constexpr double kLimit = 0.2;
    Worst<WaveAt> worst;
    eachMovingWave(advised, [&worst](const WaveAt& wave) {
        const double share = wave.measures().back() / wave.measures().size();
        if (share > kLimit) worst.add(share, wave);
    });
    if (!worst) return;
    const WaveCorner& wave = worst->measures();
    list.add(placeOfWave(advised, *worst->waveform), 313, worst->name(), level(wave.back_from.y),
             seconds(wave.back_from.x), level(wave.back_to.y), seconds(wave.back_to.x), worst->word());
    list.addMore(313, worst.more());
}

} // namespace kestrel
