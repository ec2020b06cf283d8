#include "report/plot.hpp"

#include "quality/physics.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace kestrel {

namespace {

/// The picture, and its frame in it; the style and the script know the same numbers.
constexpr double kLeft = 50;
constexpr double kTop = 20;
constexpr double kWidth = 420;
constexpr double kHeight = 240;
constexpr double kRight = kLeft + kWidth;
constexpr double kBottom = kTop + kHeight;
constexpr double kLineOfText = 11.5;

/// A picture being drawn.
class Drawing {
public:
    Drawing(Html& html, const Plot& plot, const Frame& frame) : html_(html), plot_(plot), frame_(frame) {}

    void draw() {
        html_.begin("svg", {{"class", Literal("plot")},
                            {"viewBox", Literal("0 0 480 300")},
                            {"role", Literal("img")},
                            {TextAttribute("data-x"), Text(spanData(frame_.x, plot_.x))},
                            {TextAttribute("data-y"), Text(spanData(frame_.y, plot_.y))}});
        describe();
        axes();
        html_ << "<g class=\"d\">";
        rules();
        lines();
        html_ << "</g>";
        labels();
        marks();
        html_ << "</svg>";
    }

private:
    static std::string spanData(const Span& span, const Axis& axis) {
        std::string text;
        appendGeneral(text, span.low);
        text.push_back(' ');
        appendGeneral(text, span.high);
        return text.append(" ").append(axis.unit);
    }

    [[nodiscard]] double acrossOf(double value) const { return kLeft + frame_.acrossOf(value) * kWidth / kFrameWidth; }
    [[nodiscard]] double downOf(double value) const { return kTop + frame_.downOf(value) * kHeight / kFrameHeight; }

    void describe() {
        text_.assign(plot_.y.word).append(" over ").append(plot_.x.word).append(", ");
        appendQuantity(text_, frame_.x.low, plot_.x.unit, 3);
        appendQuantity(text_.append(" to "), frame_.x.high, plot_.x.unit, 3);
        appendQuantity(text_.append(" and "), frame_.y.low, plot_.y.unit, 3);
        appendQuantity(text_.append(" to "), frame_.y.high, plot_.y.unit, 3);
        html_ << "<title>" << Text(plot_.title);
        if (!plot_.owner.empty()) html_ << " of " << Text(plot_.owner);
        html_ << "</title><desc>" << Text(text_) << "</desc>";
    }

    void axes() {
        const Ticks across = ticksOf(frame_.x, 8);
        const Ticks down = ticksOf(frame_.y, 8);
        place_.clear();
        for (const Tick& tick : across.ticks)
            place_.add("M").tenths(acrossOf(tick.value)).add(" 20v240");
        for (const Tick& tick : down.ticks)
            place_.add("M50 ").tenths(downOf(tick.value)).add("h420");
        html_.path("g", place_);
        html_ << "<g class=\"tx\">";
        for (const Tick& tick : across.ticks)
            tickText("x", acrossOf(tick.value), tick);
        html_ << "</g><g class=\"ty\">";
        for (const Tick& tick : down.ticks)
            tickText("y", downOf(tick.value), tick);
        html_ << "</g><text class=\"lx\">";
        axisLabel(plot_.x, across) << "</text><text class=\"ly\">";
        axisLabel(plot_.y, down) << "</text>";
    }

    /// Beside its line of the grid, to a whole unit.
    void tickText(MarkupName axis, double at, const Tick& tick) {
        place_.clear();
        html_.tick(axis, place_.step(rounded(at)), Text(tick.text));
    }

    Html& axisLabel(const Axis& axis, const Ticks& ticks) {
        return html_ << Text(axis.word) << " (" << Text(ticks.prefix.letter) << Text(axis.unit) << ")";
    }

    [[nodiscard]] bool isInFrame(const Rule& rule) const { return (rule.upright ? frame_.x : frame_.y).has(rule.at); }

    /// Rules of a class that follow each other are one path.
    void rules() {
        place_.clear();
        const Rule* before = nullptr;
        for (const Rule& rule : plot_.rules) {
            if (!isInFrame(rule)) continue;
            if (before != nullptr && (before->kind != rule.kind || before->corner != rule.corner)) {
                html_.path(classOf(*before), place_);
                place_.clear();
            }
            before = &rule;
            if (rule.upright) {
                place_.add("M").step(rounded(frame_.acrossOf(rule.at))).add(" 0v4000");
            } else {
                place_.add("M0 ").step(rounded(frame_.downOf(rule.at))).add("h6000");
            }
        }
        if (before != nullptr) html_.path(classOf(*before), place_);
    }

    void lines() {
        for (const PlotLine& line : plot_.lines) {
            place_.clear();
            if (line.points.size() > kMostPoints) {
                appendPath(place_, thinned(line.points, frame_.x), frame_);
            } else {
                appendPath(place_, line.points, frame_);
            }
            if (!place_.empty()) html_.path(classOf(line), place_);
        }
        for (const Dots& dots : plot_.dots) {
            place_.clear();
            for (const Point& point : dots.points)
                if (frame_.x.has(point.x) && frame_.y.has(point.y)) appendPath(place_, {&point, 1}, frame_);
            if (!place_.empty()) html_.path(dotClassOf(dots.corner), place_);
        }
    }

    static MarkupName classOf(const Rule& rule) {
        switch (rule.kind) {
        case Rule::Kind::rail: return "r";
        case Rule::Kind::threshold: return "h";
        case Rule::Kind::level: break;
        }
        return rule.corner == Corner::typ ? MarkupName("e-t") : rule.corner == Corner::min ? MarkupName("e-n") : "e-x";
    }
    static MarkupName classOf(const PlotLine& line) {
        if (line.is_old) return oldClassOf(line.corner);
        return line.thin ? thinClassOf(line.corner) : kestrel::classOf(line.corner);
    }
    static MarkupName oldClassOf(Corner corner) {
        return corner == Corner::typ ? MarkupName("w-t") : corner == Corner::min ? MarkupName("w-n") : "w-x";
    }
    static MarkupName thinClassOf(Corner corner) {
        return corner == Corner::typ ? MarkupName("s-t") : corner == Corner::min ? MarkupName("s-n") : "s-x";
    }
    static MarkupName dotClassOf(Corner corner) {
        return corner == Corner::typ ? MarkupName("o-t") : corner == Corner::min ? MarkupName("o-n") : "o-x";
    }

    void labels() {
        labelUprightRules();
        labelLevels(Rule::Kind::threshold, "lh lt");
        labelLevels(Rule::Kind::level, "lh");
    }

    /// Above the frame. Those that would lie over another are left out; the lines are there.
    void labelUprightRules() {
        std::vector<double> taken{20}; // where the label of the axis is
        for (const Rule& rule : plot_.rules) {
            if (!rule.upright || rule.label.empty() || !isInFrame(rule)) continue;
            const double room = 3.3 * static_cast<double>(rule.label.size());
            const double at = std::min(acrossOf(rule.at), 479 - room);
            if (std::ranges::any_of(taken, [&](double other) { return std::abs(other - at) < 62; })) continue;
            taken.push_back(at);
            place_.clear();
            data_.clear();
            html_.begin("text", {{"class", Literal("lr")},
                                 {TextAttribute("x"), place_.tenths(at)},
                                 {TextAttribute("data-x"), data_.general(rule.at)}});
            html_ << Text(rule.label) << "</text>";
        }
    }

    /// A label of a rule that is not upright, and where its line of text is.
    struct Label {
        double down;
        double at; ///< in the unit of the axis
        std::string text;
    };

    /// In the frame above their lines, moved apart where they are closer than a line of text.
    void labelLevels(Rule::Kind kind, Literal class_name) {
        std::vector<Label> labels = labelsOf(kind);
        if (labels.empty()) return;
        std::ranges::stable_sort(labels, {}, &Label::down);
        double least = kTop + 10;
        for (Label& label : labels) {
            label.down = std::max(label.down, least);
            least = label.down + kLineOfText;
        }
        double most = kBottom - 3;
        for (auto label = labels.rbegin(); label != labels.rend(); ++label) {
            label->down = std::min(label->down, most);
            most = label->down - kLineOfText;
        }
        for (const Label& label : labels) {
            place_.clear();
            data_.clear();
            html_.begin("text", {{"class", class_name},
                                 {TextAttribute("y"), place_.tenths(label.down)},
                                 {TextAttribute("data-y"), data_.general(label.at)}});
            html_ << Text(label.text) << "</text>";
        }
    }

    /// The rules of a name, one for each corner, have a label each; when two of them are closer than a line of text,
    /// one label has the values of all.
    [[nodiscard]] std::vector<Label> labelsOf(Rule::Kind kind) const {
        std::vector<const Rule*> rules;
        for (const Rule& rule : plot_.rules)
            if (rule.kind == kind && !rule.upright && isInFrame(rule)) rules.push_back(&rule);
        std::ranges::stable_sort(rules, {}, [](const Rule* rule) -> const std::string& { return rule->label; });
        std::vector<Label> labels;
        for (auto begin = rules.begin(); begin != rules.end();) {
            const auto end =
                std::find_if(begin, rules.end(), [&](const Rule* rule) { return rule->label != (*begin)->label; });
            addLabels(labels, {begin, end});
            begin = end;
        }
        return labels;
    }

    void addLabels(std::vector<Label>& labels, std::span<const Rule* const> rules) const {
        bool is_close = false;
        bool is_same = true;
        for (const Rule* const rule : rules) {
            is_same = is_same && rule->value == rules.front()->value;
            for (const Rule* const other : rules)
                is_close = is_close || (rule != other && std::abs(downOf(rule->at) - downOf(other->at)) < kLineOfText);
        }
        for (const Rule* const rule : rules) {
            const bool goes_on = is_close && rule != rules.front();
            if (goes_on && is_same) return;
            if (!goes_on) labels.push_back({downOf(rule->at) - 3, rule->at, rule->label});
            std::string& text = labels.back().text;
            if (goes_on) text.push_back(',');
            if (rule->corner != Corner::typ) text.append(" ").append(cornerWord(rule->corner));
            text.append(" ").append(rule->value);
        }
    }

    void marks() {
        constexpr double kRadius = 8;
        std::vector<Point> taken;
        for (const PlotMark& mark : plot_.marks) {
            Point at{std::clamp(acrossOf(mark.at.x), kLeft + kRadius, kRight - kRadius),
                     std::clamp(downOf(mark.at.y), kTop + kRadius, kBottom - kRadius)};
            // Marks of one place lie side by side.
            const double aside = at.x < (kLeft + kRight) / 2 ? 2 * kRadius : -2 * kRadius;
            while (std::ranges::any_of(taken, [&at](const Point& other) {
                return std::abs(other.x - at.x) < kRadius && std::abs(other.y - at.y) < kRadius;
            }))
                at.x += aside;
            taken.push_back(at);
            place_.clear();
            place_.add("translate(").tenths(at.x).add(" ").tenths(at.y).add(")");
            data_.clear();
            data_.general(mark.at.x).add(" ").general(mark.at.y);
            html_.begin("a", {{"class", Literal("mark")}, Attribute::href(mark.finding)});
            html_.begin("g", {{TextAttribute("transform"), place_}, {TextAttribute("data-at"), data_}});
            html_ << "<title>" << Text(mark.text) << "</title><circle r=\"7\"/><path d=\"M0-4v5M0 3.5v0.5\"/></g></a>";
        }
    }

    Html& html_;
    const Plot& plot_;
    const Frame& frame_;
    std::string text_;
    Coordinates place_;
    Coordinates data_;
};

/// The span of all points, of which x does not fall; lines that help to read others are cut off at it.
Frame frameOf(const Plot& plot) {
    Frame frame;
    for (const PlotLine& line : plot.lines) {
        if (line.thin || line.points.empty()) continue;
        frame.x.include(line.points.front().x);
        frame.x.include(line.points.back().x);
        double low = line.points.front().y;
        double high = low;
        for (const Point& point : line.points) {
            low = point.y < low ? point.y : low;
            high = point.y > high ? point.y : high;
        }
        frame.y.include(low);
        frame.y.include(high);
    }
    return frame;
}

} // namespace

void writePlot(Html& html, const Plot& plot) {
    Frame frame = frameOf(plot);
    const bool is_empty = !frame.x.given;
    html << "<figure><figcaption>" << Text(plot.title);
    if (!plot.note.empty()) html << " <small>" << Text(plot.note) << "</small>";
    html << "</figcaption>";
    if (is_empty) {
        html << "<p class=\"none\">It has no point that can be drawn.</p></figure>\n";
        return;
    }
    for (const Rule& rule : plot.rules)
        if (!rule.upright && rule.kind != Rule::Kind::rail) frame.y.include(rule.at);
    if (plot.shown_x.given) frame.x = plot.shown_x;
    if (plot.shown_y.given) frame.y = plot.shown_y;
    frame.x = frame.x.widened(0.0);
    frame.y = frame.y.widened(plot.shown_y.given ? 0.0 : 0.04);
    Drawing(html, plot, frame).draw();
    html << "</figure>\n";
}

} // namespace kestrel
