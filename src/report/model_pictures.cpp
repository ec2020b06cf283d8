#include "report/model_pictures.hpp"

#include "ibis/run.hpp"
#include "quality/waveforms.hpp"

#include <limits>

namespace kestrel {

namespace {

/// Its word joiner keeps the unit in one line.
constexpr std::string_view kVoltsPerNanosecond = "V/\u2060ns";

constexpr Axis kTableAxis{"Table voltage", "V"};
constexpr Axis kPinAxis{"Pin voltage", "V"};
constexpr Axis kChangeAxis{"Change of voltage", "V"};

/// The pictures of one record, which are kept until all of them are drawn and their key is known.
class Pictures {
public:
    Pictures(const PartContext& part, const Subject& record) : owner_(record.name), marks_(part, record) {}

    [[nodiscard]] std::string_view owner() const { return owner_; }

    /// Tables of the record, all of them ahead of the first picture, so that findings are known by their tables.
    void enter(const Crv& table) {
        if (table) marks_.enterTable(table.line);
    }
    void enter(const Wvfrm& waveform) {
        marks_.enterTable(waveform.line);
        if (waveform.composite_current) marks_.enterTable(waveform.composite_current->line);
    }
    void enter(const Tables& tables) {
        for (const Crv* const table : {&tables.pulldown, &tables.pullup, &tables.gnd_clamp, &tables.power_clamp})
            enter(*table);
        if (tables.ramp) marks_.enterTable(tables.ramp->line);
        for (const Rows<Wvfrm>* const list : {&tables.rising_waveforms, &tables.falling_waveforms}) {
            for (const Wvfrm& waveform : *list)
                enter(waveform);
        }
    }
    void ready() { marks_.ready(); }

    [[nodiscard]] const FindingMarks& marks() const { return marks_; }

    void draw(const Plot& plot) { signs_ = signs_.with(writePlot(drawn_.html(), plot)); }

    void curve(const Crv& table, std::string_view title, std::string_view note, std::vector<Rule> rails = {}) {
        if (!table) return;
        Plot plot = plotOf(table.rows, std::string(title), owner_, kTableAxis, kCurrentAxis);
        plot.note = note;
        plot.rules = std::move(rails);
        marks_.mark(plot, table.line, title);
        draw(plot);
    }

    [[nodiscard]] Plot waveform(const Wvfrm& table, std::string_view word, std::string_view label) const {
        Plot plot = plotOf(table.rows, waveformTitle(word, table), owner_, kTimeAxis, kVoltageAxis);
        plot.note = fixtureNote(table);
        marks_.mark(plot, table.line, label);
        return plot;
    }

    /// Writes a waveform and its supply current, if it has one, over the same time.
    void writeWaveform(Plot& plot, const Wvfrm& table, std::string_view word, Flat flat = Flat::ofSwing) {
        double settled = settledTime(plot, flat);
        if (!table.composite_current) {
            endBehind(plot, settled);
            draw(plot);
            return;
        }
        const Wvfrm& of_supply = *table.composite_current;
        Plot current = plotOf(of_supply.rows, std::string("Supply current, ").append(waveformTitle(word, table)),
                              owner_, kTimeAxis, kCurrentAxis);
        marks_.mark(current, of_supply.line, kCompositeCurrent.open);
        settled = std::max(settled, settledTime(current, Flat::ofRange));
        for (Plot* const one : {&plot, &current}) {
            endBehind(*one, settled);
            draw(*one);
        }
    }

    /// Writes the key and what was drawn.
    void write(Html& html) {
        writeLegend(html, signs_);
        (html << "<div class=\"plots\">\n").append(drawn_) << "</div>";
    }

private:
    std::string_view owner_;
    FindingMarks marks_;
    HtmlPiece drawn_;
    Signs signs_{};
};

void writeSeries(Pictures& pictures, const SeriesBlock& block, std::string_view label) {
    pictures.curve(block.series_current, std::string("Series Current ").append(label), "");
    for (const SMos& mosfet : block.mosfets)
        pictures.curve(mosfet.table, mosfetTitle(label, mosfet), "");
}

/// The pictures and figures of a model that follow from the physics of its tables.
class ModelFigures {
public:
    ModelFigures(const PartContext& part, const Mdl& model, Pictures& pictures)
        : part_(part), model_(model), pictures_(pictures), physics_(model, room_) {
        PointRoom room;
        waveforms_ = waveformsOf(model, physics_, room);
    }

    void writeCurves() {
        for (const TableTitle& table : kTableTitles)
            pictures_.curve(tableOf(model_, table.kind), table.title, table.note, railsOfTable(physics_, table.kind));
    }

    /// The states, where the supply is known.
    void writeStates() {
        for (const DriveState state : {DriveState::low, DriveState::high, DriveState::off})
            if (hasState(state)) writeState(state);
    }

    void writeWaveforms() {
        for (const Waveform& waveform : waveforms_)
            writeWaveform(waveform);
        writeOtherRamps();
    }

    void writeNumbers() {
        HtmlPiece figures;
        writeResistances(figures.html());
        writeEdges(figures.html());
        if (!figures.text().empty()) (part_.html << "<div>").append(figures) << "</div>";
    }

private:
    [[nodiscard]] bool hasState(DriveState state) const {
        const bool drives = state == DriveState::low ? physics_.drivesLow() : physics_.drivesHigh();
        if (state != DriveState::off && !drives) return false;
        const bool has_clamps = model_.tables->gnd_clamp.given || model_.tables->power_clamp.given ||
                                findRange(model_, MdlRange::rgnd) != nullptr ||
                                findRange(model_, MdlRange::rpower) != nullptr;
        return state != DriveState::off || has_clamps;
    }

    /// The rows of all tables of a corner.
    [[nodiscard]] std::size_t rowsOf(Corner corner) const {
        std::size_t rows = 0;
        for (const TableKind kind : kAllTables)
            rows += physics_.table(kind, corner).points().size();
        return rows;
    }

    void writeState(DriveState state) {
        constexpr std::array<std::string_view, kDriveStates> kNames{"Low state", "High state", "Off state"};
        Plot plot;
        plot.title = kNames[static_cast<std::size_t>(state)];
        plot.owner = pictures_.owner();
        plot.x = kPinAxis;
        plot.y = kCurrentAxis;
        Span between_rails;
        Span all;
        double vcc = 0.0;
        for (const Corner corner : {Corner::max, Corner::min, Corner::typ}) {
            const StateCurrent* const current = physics_.current(state, corner);
            const References& given = physics_.references(corner);
            if (current == nullptr || !given.vcc) continue;
            vcc = std::max(vcc, *given.vcc);
            std::vector<Point> points;
            points.reserve(rowsOf(corner) + 2);
            current->sweep(*given.pulldown - *given.vcc, *given.pulldown + 2.0 * *given.vcc,
                           [&](double pin, double amperes) {
                               if (!canBeDrawn(pin) || !canBeDrawn(amperes)) return;
                               points.push_back({pin, amperes});
                               all.include(amperes);
                               if (pin >= *given.pulldown && pin <= *given.pullup) between_rails.include(amperes);
                           });
            if (!points.empty()) plot.lines.push_back({corner, std::move(points)});
        }
        if (plot.lines.empty()) return;
        cutAtDriver(plot, between_rails, all, vcc);
        const References& given = physics_.references();
        for (const GivenValue rail : {given.pulldown, given.pullup})
            if (rail) plot.rules.push_back(railAt(*rail, "", *rail));
        pictures_.marks().markByWords(plot, std::string(stateWord(state)).append("-state"));
        if (state == DriveState::off) {
            pictures_.marks().markByWords(plot, "the clamps carry");
            pictures_.marks().markByWords(plot, kAtPinVoltage, kAtPinVoltage);
        }
        pictures_.draw(plot);
    }

    /// Beyond the rails clamps carry so much more than a driver that nothing would be seen of it: such a picture ends
    /// where the driver's currents between the rails do. Where there are none, what a line drives into clamps counts.
    static void cutAtDriver(Plot& plot, const Span& between_rails, const Span& all, double vcc) {
        constexpr double kRoom = 2.0;
        constexpr double kMuchMore = 5.0;
        constexpr double kLine = 50.0; // ohm
        if (!between_rails.given) return;
        double driver = std::max(std::abs(between_rails.low), std::abs(between_rails.high));
        if (driver < kNoCurrent) driver = vcc / kLine;
        if (std::max(-all.low, all.high) < kMuchMore * driver) return;
        const double limit = kRoom * driver;
        const bool below = all.low < -limit;
        const bool above = all.high > limit;
        const double low = below ? -limit : all.low;
        const double high = above ? limit : all.high;
        const double beside = (high - low) * kRoomBesideLines;
        plot.shown_y.include(below ? low : low - beside);
        plot.shown_y.include(above ? high : high + beside);
        plot.note = below && above ? "cut beyond \u00b1" : below ? "cut below " : "cut above ";
        appendQuantity(plot.note, below && !above ? -limit : limit, "A", 2);
    }

    struct Levels {
        PerCorner<std::optional<double>> low;
        PerCorner<std::optional<double>> high;
    };

    /// The levels into a waveform's fixture; waveforms with the same one share them.
    [[nodiscard]] const Levels& levelsOf(const Wvfrm& waveform) {
        const auto same = std::ranges::find_if(levels_, [&](const auto& known) {
            const Wvfrm& other = *known.first;
            const auto equals = [](GivenValue a, GivenValue b) {
                return a.has_value() == b.has_value() && (!a || *a == *b);
            };
            return equals(other.r_fixture, waveform.r_fixture) && equals(other.v_fixture, waveform.v_fixture) &&
                   equals(other.v_fixture_min, waveform.v_fixture_min) &&
                   equals(other.v_fixture_max, waveform.v_fixture_max);
        });
        if (same != levels_.end()) return same->second;
        Levels levels;
        for (const Corner corner : kCorners) {
            const std::optional<DcLoad> load = fixtureLoad(waveform, corner);
            if (!load || !physics_.isDriver()) continue;
            levels.low[corner] = withoutNoise(physics_.level(DriveState::low, corner, *load));
            levels.high[corner] = withoutNoise(physics_.level(DriveState::high, corner, *load));
        }
        return levels_.emplace_back(&waveform, levels).second;
    }

    void writeWaveform(const Waveform& waveform) {
        const bool rises = waveform.edge == Edge::rising;
        const std::string_view word = rises ? "Rising" : "Falling";
        Plot plot = pictures_.waveform(*waveform.record, word, rises ? kRisingWaveform.open : kFallingWaveform.open);
        const Levels& levels = levelsOf(*waveform.record);
        const bool has_ramp = showsRamp(waveform);
        for (const Corner corner : kCorners) {
            addLevel(plot, "low", levels.low[corner], corner);
            addLevel(plot, "high", levels.high[corner], corner);
            if (const auto& middle = waveform.corners[corner].middle) {
                plot.dots.push_back({corner, {middle->low, middle->high}});
                if (has_ramp) addRamp(plot, *middle, waveform.edge, corner);
            }
        }
        addThresholds(plot);
        pictures_.writeWaveform(plot, *waveform.record, word);
    }

    static void addLevel(Plot& plot, std::string_view word, const std::optional<double>& level, Corner corner) {
        if (!level || !canBeDrawn(*level)) return;
        plot.rules.push_back(
            {.kind = Rule::Kind::level, .upright = false, .at = *level, .label = std::string(word), .corner = corner});
    }

    /// A level; what is below a microvolt is 0.
    [[nodiscard]] static std::optional<double> withoutNoise(std::optional<double> level) {
        constexpr double kNothing = 1e-6;
        return level && std::abs(*level) < kNothing ? 0.0 : level;
    }

    /// How far the ramp of an edge goes in a corner: in which time, and by which voltage.
    [[nodiscard]] std::optional<Point> rampOf(Edge edge, Corner corner) const {
        const Ramp& ramp = *model_.tables->ramp;
        const std::optional<RampRate>& rate = edge == Edge::rising ? ramp.dv_dt_r : ramp.dv_dt_f;
        if (!rate || !(*rate)[corner].dv.isNumber() || !((*rate)[corner].dt > 0.0)) return std::nullopt;
        const Point size{(*rate)[corner].dt, (*rate)[corner].dv.value() * (edge == Edge::rising ? 1.0 : -1.0)};
        return canBeDrawn(size.x) && canBeDrawn(size.y) ? std::optional(size) : std::nullopt;
    }

    /// The waveform has the load of the ramp, and a middle through which its line goes.
    [[nodiscard]] bool showsRamp(const Waveform& waveform) const {
        return waveform.corners.typ().middle && hasLoadOfRamp(waveform, Corner::typ, *model_.tables->ramp, physics_);
    }

    /// The ramp as a straight line through the middle of the edge.
    void addRamp(Plot& plot, const WaveMiddle& middle, Edge edge, Corner corner) const {
        const std::optional<Point> size = rampOf(edge, corner);
        if (!size) return;
        const Point center{(middle.low.x + middle.high.x) / 2.0, (middle.low.y + middle.high.y) / 2.0};
        plot.lines.push_back({corner,
                              {{center.x - size->x / 2.0, center.y - size->y / 2.0},
                               {center.x + size->x / 2.0, center.y + size->y / 2.0}},
                              true});
    }

    /// The load with which the ramp of an edge fits best: its own, unless another one that it may have fits better.
    [[nodiscard]] std::optional<DcLoad> loadOfRamp(Edge edge) const {
        const std::vector<DcLoad> loads = loadsOfRamp(model_, physics_, edge);
        const std::optional<Point> size = rampOf(edge, Corner::typ);
        if (loads.empty()) return std::nullopt;
        const auto deviation = [&](const DcLoad& load) {
            const std::optional<double> found =
                size ? rampDeviation(physics_, edge, std::abs(size->y), load) : std::nullopt;
            return found.value_or(std::numeric_limits<double>::infinity());
        };
        return *std::ranges::min_element(loads, {}, deviation);
    }

    void appendLoad(std::string& note, const std::optional<DcLoad>& load) const {
        const GivenValue resistance = load ? GivenValue(load->resistance) : rampLoad(*model_.tables->ramp);
        if (resistance) appendQuantity(note.append(" into "), *resistance, kOhm);
        if (load) appendQuantity(note.append(" to "), load->voltage, "V");
    }

    /// A picture of the ramps that no waveform shows, from where they begin.
    void writeOtherRamps() {
        Plot plot;
        plot.title = "Ramp";
        plot.owner = pictures_.owner();
        plot.x = kTimeAxis;
        plot.y = kChangeAxis;
        std::vector<std::pair<Edge, std::optional<DcLoad>>> drawn;
        for (const Edge edge : kEdges) {
            if (std::ranges::any_of(
                    waveforms_, [&](const Waveform& waveform) { return waveform.edge == edge && showsRamp(waveform); }))
                continue;
            const std::size_t before = plot.lines.size();
            for (const Corner corner : {Corner::max, Corner::min, Corner::typ}) {
                if (const std::optional<Point> size = rampOf(edge, corner))
                    plot.lines.push_back({corner, {{0.0, 0.0}, *size}});
            }
            if (plot.lines.size() != before) drawn.emplace_back(edge, loadOfRamp(edge));
        }
        if (drawn.empty()) return;
        plot.note = "20\u201380\u00a0%";
        const bool is_same = drawn.size() == 2 && drawn.front().second == drawn.back().second;
        for (const auto& [edge, load] : drawn) {
            const bool is_second = is_same && edge == Edge::falling;
            plot.note.append(is_second ? " and " : ", ").append(edgeWord(edge));
            if (!is_same || is_second) appendLoad(plot.note, load);
        }
        pictures_.draw(plot);
    }

    void addThresholds(Plot& plot) const {
        struct Threshold {
            std::string_view word;
            GivenValue value;
        };
        const TypicalValues values = typicalValuesOf(model_);
        const bool receives = kReceivingTypes.has(model_.type());
        const GivenValue none;
        for (const Threshold& threshold :
             {Threshold{"Vinh", receives ? values.vinh : none}, Threshold{"Vinl", receives ? values.vinl : none},
              Threshold{"Vmeas", values.vmeas}}) {
            if (!threshold.value || !canBeDrawn(*threshold.value)) continue;
            plot.rules.push_back({.kind = Rule::Kind::threshold,
                                  .upright = false,
                                  .at = *threshold.value,
                                  .label = std::string(threshold.word),
                                  .digits = 4});
        }
    }

    /// A row of texts that a function gives for the corners; none where it gives nothing.
    template <class TextOf> static void row(CornerTable& table, std::string_view name, TextOf text_of) {
        PerCorner<std::string> texts;
        bool any = false;
        for (const Corner corner : kCorners) {
            texts[corner] = text_of(corner);
            any = any || !texts[corner].empty();
            if (texts[corner].empty()) texts[corner] = "\u2013";
        }
        if (any) table.row(name, texts);
    }

    /// What a driver's table is at half of the supply, as a resistance.
    [[nodiscard]] std::string resistanceText(TableKind kind, Corner corner) const {
        const GivenValue vcc = physics_.vcc(corner);
        const IvTable& table = physics_.table(kind, corner);
        if (!vcc || !table.hasData()) return {};
        const double current = table.at(*vcc / 2.0) * (kind == TableKind::pullup ? -1.0 : 1.0);
        return std::abs(current) < kNoCurrent ? std::string() : quantityText(*vcc / 2.0 / current, kOhm, 3);
    }

    void writeResistances(Html& html) {
        CornerTable table(html, "Output");
        if (physics_.drivesLow())
            row(table, "R low at Vcc/2", [&](Corner corner) { return resistanceText(TableKind::pulldown, corner); });
        if (physics_.drivesHigh())
            row(table, "R high at Vcc/2", [&](Corner corner) { return resistanceText(TableKind::pullup, corner); });
        for (const Waveform& waveform : waveforms_)
            (void)levelsOf(*waveform.record);
        for (const auto& [waveform, levels] : levels_) {
            const std::string fixture = waveformTitle("", *waveform);
            const auto text_of = [](const PerCorner<std::optional<double>>& level) {
                return [&level](Corner corner) {
                    return level[corner] ? quantityText(*level[corner], "V", 3) : std::string();
                };
            };
            row(table, std::string("Low").append(fixture), text_of(levels.low));
            row(table, std::string("High").append(fixture), text_of(levels.high));
        }
    }

    void writeEdges(Html& html) const {
        CornerTable table(html, "Edges");
        for (const Waveform& waveform : waveforms_) {
            const std::string title =
                waveformTitle(waveform.edge == Edge::rising ? "Rising" : "Falling", *waveform.record);
            row(table, std::string(title).append(": swing"), [&](Corner corner) {
                const WaveCorner& wave = waveform.corners[corner];
                return wave.given && canBeDrawn(wave.size()) ? quantityText(wave.size(), "V", 3) : std::string();
            });
            row(table, std::string(title).append(": 20\u2013\u206080\u00a0%"), [&](Corner corner) {
                const auto& middle = waveform.corners[corner].middle;
                return middle ? quantityText(middle->high.x - middle->low.x, "s", 3) : std::string();
            });
            row(table, std::string(title).append(": rate"), [&](Corner corner) {
                const GivenValue rate = waveform.corners[corner].rate;
                return rate ? quantityText(*rate * 1e-9, kVoltsPerNanosecond, 3) : std::string();
            });
        }
    }

    const PartContext& part_;
    const Mdl& model_;
    Pictures& pictures_;
    PointRoom room_; // of the physics
    ModelPhysics physics_;
    std::vector<Waveform> waveforms_;
    std::vector<std::pair<const Wvfrm*, Levels>> levels_;
};

} // namespace

void writeRamp(CornerTable& table, const Ramp& ramp) {
    const auto rate = [&](std::string_view name, const std::optional<RampRate>& given) {
        if (!given) return;
        PerCorner<std::string> texts;
        for (const Corner corner : kCorners) {
            const RampCorner& step = (*given)[corner];
            texts[corner] = step.dv.isNumber() ? quantityText(step.dv.value(), "V", 4) : cellText(step.dv, "V");
            if (step.dv.isNumber()) appendQuantity(texts[corner].append(" / "), step.dt, "s", 4);
        }
        table.row(name, texts);
    };
    rate("dV/dt_r", ramp.dv_dt_r);
    rate("dV/dt_f", ramp.dv_dt_f);
    table.row("R_load", ramp.r_load, kOhm);
}

void writeModelTables(const PartContext& part, const Mdl& model) {
    const MdlTables& tables = *model.tables;
    Pictures pictures(part, model);
    pictures.enter(tables);
    pictures.enter(tables.isso_pd);
    pictures.enter(tables.isso_pu);
    for (const auto& block : {model.on_block.get(), model.off_block.get()}) {
        if (block == nullptr) continue;
        pictures.enter(block->series_current);
        for (const SMos& mosfet : block->mosfets)
            pictures.enter(mosfet.table);
    }
    pictures.ready();
    if (!model.tables && !model.on_block && !model.off_block) {
        part.html << "</div>\n";
        return;
    }
    ModelFigures figures(part, model, pictures);
    figures.writeNumbers();
    part.html << "</div>\n";
    // The script makes the pictures of so many models when they are looked at; without it they are there.
    constexpr std::uint32_t kMostAtOnce = 40;
    const Anchor* const place = part.anchors.find(&model);
    const bool is_later = place != nullptr && place->number > kMostAtOnce;
    figures.writeCurves();
    figures.writeStates();
    pictures.curve(tables.isso_pd, "ISSO PD", "");
    pictures.curve(tables.isso_pu, "ISSO PU", "");
    if (model.on_block) writeSeries(pictures, *model.on_block, kOnLabel);
    if (model.off_block) writeSeries(pictures, *model.off_block, kOffLabel);
    figures.writeWaveforms();
    if (is_later) part.html << "<noscript class=\"later\">";
    pictures.write(part.html);
    part.html << (is_later ? Markup("</noscript>\n") : Markup("\n"));
}

void writeSubmodelPictures(const PartContext& part, const SubMdl& submodel) {
    const SubMdlTables& tables = *submodel.tables;
    Pictures pictures(part, submodel);
    pictures.enter(tables);
    for (const OnDemand<Wvfrm>* const pulse : {&submodel.gnd_pulse, &submodel.power_pulse})
        if (*pulse) pictures.enter(**pulse);
    pictures.ready();
    if (!submodel.tables && !submodel.gnd_pulse && !submodel.power_pulse) return;
    for (const TableTitle& table : kTableTitles)
        pictures.curve(tableOf(tables, table.kind), table.title, "");
    const auto write = [&pictures](const Wvfrm& table, std::string_view word, std::string_view label, Flat flat) {
        Plot plot = pictures.waveform(table, word, label);
        pictures.writeWaveform(plot, table, word, flat);
    };
    for (const Wvfrm& table : tables.rising_waveforms)
        write(table, "Rising", kRisingWaveform.open, Flat::ofSwing);
    for (const Wvfrm& table : tables.falling_waveforms)
        write(table, "Falling", kFallingWaveform.open, Flat::ofSwing);
    if (submodel.gnd_pulse) write(*submodel.gnd_pulse, "GND pulse", kGndPulse.open, Flat::ofRange);
    if (submodel.power_pulse) write(*submodel.power_pulse, "POWER pulse", kPowerPulse.open, Flat::ofRange);
    pictures.write(part.html);
    part.html << "\n";
}

void writeGoldenWaveforms(const PartContext& part, const TestData& data) {
    Pictures pictures(part, data);
    for (const OnDemand<Wvfrm>& table : data.tables)
        if (table) pictures.enter(*table);
    pictures.ready();
    if (std::ranges::none_of(data.tables, [](const OnDemand<Wvfrm>& table) { return bool(table); })) return;
    for (std::size_t i = 0; i < kGoldenWaveforms.size(); ++i) {
        if (!data.tables[i]) continue;
        const std::string_view label = kGoldenWaveforms[i].open;
        Plot plot = pictures.waveform(*data.tables[i], label, label);
        if (!data.test_load.empty()) plot.note.assign("into ").append(data.test_load);
        pictures.writeWaveform(plot, *data.tables[i], label);
    }
    pictures.write(part.html);
    part.html << "\n";
}

} // namespace kestrel
