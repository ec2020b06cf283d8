#include "report/plot.hpp"

#include "base/powers.hpp"
#include "quality/physics.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <utility>

namespace kestrel {

namespace {

/// The picture, and its frame in it; the style and the script know the same numbers.
constexpr double kLeft = 50;
constexpr double kTop = 20;
constexpr double kWidth = 420;
constexpr double kHeight = 240;
constexpr double kWidthBesideLabels = 330;
constexpr double kBottom = kTop + kHeight;
constexpr double kLineOfText = 11.5;

/// The values of a label that several corners share: one, or from where to where.
std::string extentText(double low, double high, std::string_view unit, int digits) {
    const UnitPrefix prefix = prefixOf(std::max(std::abs(low), std::abs(high)), NumberStyle::printed, digits);
    const double factor = kExactPowers[static_cast<std::size_t>(std::abs(prefix.power))];
    const auto number = [&](double value) {
        return quantityText(prefix.power < 0 ? value * factor : value / factor, "", digits);
    };
    std::string text = number(low);
    const std::string most = number(high);
    if (most != text) text.append("\u2026").append(most);
    return text.append("\u00a0").append(prefix.letter).append(unit);
}

/// The same, in as few letters as there is room for beside the frame.
std::string shortExtentText(double low, double high, std::string_view unit) {
    constexpr std::ptrdiff_t kMost = 12;
    const auto begins_letter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    std::string text = extentText(low, high, unit, 3);
    return std::ranges::count_if(text, begins_letter) <= kMost ? text : extentText(low, high, unit, 2);
}

/// A picture being drawn.
class Drawing {
public:
    Drawing(Html& html, const Plot& plot, const Frame& frame) : html_(html), plot_(plot), frame_(frame) {
        for (const Rule& rule : plot.rules)
            if (!rule.upright && isInFrame(rule)) beside_.push_back(&rule);
        if (!beside_.empty()) width_ = kWidthBesideLabels;
    }

    Signs draw() {
        html_.begin("svg", {{"class", beside_.empty() ? Literal("plot") : Literal("plot w")},
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
        labelUprightRules();
        labelsBeside();
        marks();
        html_ << "</svg>";
        return signs_;
    }

private:
    static std::string spanData(const Span& span, const Axis& axis) {
        std::string text;
        appendGeneral(text, span.low);
        text.push_back(' ');
        appendGeneral(text, span.high);
        return text.append(" ").append(axis.unit);
    }

    [[nodiscard]] double acrossOf(double value) const { return kLeft + frame_.acrossOf(value) * width_ / kFrameWidth; }
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
            place_.add("M50 ").tenths(downOf(tick.value)).add(beside_.empty() ? Literal("h420") : Literal("h330"));
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
            signs_ = signs_.with({signOf(rule)});
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
            if (place_.empty()) continue;
            html_.path(classOf(line), place_);
            signs_ = signs_.with({line.thin ? Sign::ramp : signOf(line.corner)});
        }
        for (const Dots& dots : plot_.dots) {
            place_.clear();
            for (const Point& point : dots.points)
                if (frame_.x.has(point.x) && frame_.y.has(point.y)) appendPath(place_, {&point, 1}, frame_);
            if (place_.empty()) continue;
            html_.path(dotClassOf(dots.corner), place_);
            signs_ = signs_.with({Sign::dots});
        }
    }

    static Sign signOf(const Rule& rule) {
        switch (rule.kind) {
        case Rule::Kind::rail: return Sign::rail;
        case Rule::Kind::threshold: return Sign::threshold;
        case Rule::Kind::level: break;
        }
        return Sign::level;
    }
    static Sign signOf(Corner corner) {
        return corner == Corner::typ ? Sign::typ : corner == Corner::min ? Sign::min : Sign::max;
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

    /// Above the frame. Those that would lie over another are left out; the lines are there.
    void labelUprightRules() {
        std::vector<double> taken{20.0}; // where the label of the axis is
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

    /// A label beside the frame, of one rule or of those of several corners.
    struct Label {
        double down;
        std::span<const Rule* const> rules;
        std::string text;
    };

    /// Beside the frame, where no curve runs: each at its rules, or near them and joined to them by a line where it
    /// would lie over another label.
    void labelsBeside() {
        if (beside_.empty()) return;
        std::vector<Label> labels = labelsOf();
        std::ranges::stable_sort(labels, {}, &Label::down);
        moveApart(labels);
        place_.clear();
        for (const Label& label : labels) {
            for (const Rule* const rule : label.rules)
                place_.add("M380 ").tenths(downOf(rule->at)).add("L385 ").tenths(label.down);
        }
        html_.path("k", place_);
        for (const Label& label : labels) {
            place_.clear();
            data_.clear();
            html_.begin("text", {{"class", Literal("lh")},
                                 {TextAttribute("y"), place_.tenths(label.down)},
                                 {TextAttribute("data-y"), data_.general(middleOf(label.rules))}});
            html_ << Text(label.text) << "</text>";
        }
    }

    [[nodiscard]] static double middleOf(std::span<const Rule* const> rules) {
        const auto [least, most] = std::ranges::minmax(rules, {}, &Rule::at);
        return least == most ? least->at : (least->at + most->at) / 2.0;
    }

    /// The value of a rule as its label has it: what cannot be told from 0 in the picture is 0.
    [[nodiscard]] double labelled(double value) const {
        constexpr double kResolution = 1e-3; // of the height
        return std::abs(value) < kResolution * frame_.y.length() ? 0.0 : value;
    }

    /// The rules of a name, one for each corner, share a label where all of them lie within a line of text.
    [[nodiscard]] std::vector<Label> labelsOf() {
        std::ranges::stable_sort(beside_, {}, [](const Rule* rule) -> const std::string& { return rule->label; });
        std::vector<Label> labels;
        for (std::span<const Rule* const> rest = beside_; !rest.empty();) {
            const auto is_other = [&](const Rule* rule) { return rule->label != rest.front()->label; };
            const auto count = static_cast<std::size_t>(std::ranges::find_if(rest, is_other) - rest.begin());
            addLabels(labels, rest.first(count));
            rest = rest.subspan(count);
        }
        return labels;
    }

    void addLabels(std::vector<Label>& labels, std::span<const Rule* const> rules) const {
        const auto [least, most] = std::ranges::minmax(rules, {}, &Rule::at);
        if (rules.size() > 1 && downOf(least->at) - downOf(most->at) <= kLineOfText) {
            std::string text = rules.front()->label;
            text.append(" ").append(shortExtentText(labelled(least->at), labelled(most->at), plot_.y.unit));
            labels.push_back({downOf(middleOf(rules)), rules, std::move(text)});
            return;
        }
        for (std::size_t i = 0; i < rules.size(); ++i) {
            const Rule& rule = *rules[i];
            std::string text = rule.label;
            if (rule.corner != Corner::typ) text.append(" ").append(cornerWord(rule.corner));
            appendQuantity(text.append(" "), labelled(rule.at), plot_.y.unit, rule.digits);
            labels.push_back({downOf(rule.at), rules.subspan(i, 1), std::move(text)});
        }
    }

    /// Moves labels, which are in order, to a line of text from each other, those of a crowd by equal parts up and
    /// down.
    static void moveApart(std::vector<Label>& labels) {
        struct Crowd {
            double sum; ///< of where its labels would be if they took no room
            std::size_t size;
            [[nodiscard]] double place() const { return sum / static_cast<double>(size); }
        };
        std::vector<Crowd> crowds;
        for (std::size_t i = 0; i < labels.size(); ++i) {
            Crowd crowd{labels[i].down - kLineOfText * static_cast<double>(i), 1};
            for (; !crowds.empty() && crowds.back().place() > crowd.place(); crowds.pop_back())
                crowd = {crowd.sum + crowds.back().sum, crowd.size + crowds.back().size};
            crowds.push_back(crowd);
        }
        constexpr double kHalfLine = kLineOfText / 2;
        const double lowest = kBottom + kHalfLine - kLineOfText * static_cast<double>(labels.size());
        std::size_t next = 0;
        for (const Crowd& crowd : crowds) {
            const double place = std::max(std::min(crowd.place(), lowest), kTop + kHalfLine);
            for (std::size_t i = 0; i < crowd.size; ++i, ++next)
                labels[next].down = place + kLineOfText * static_cast<double>(next);
        }
    }

    void marks() {
        constexpr double kRadius = 8;
        if (!plot_.marks.empty()) signs_ = signs_.with({Sign::mark});
        std::vector<Point> taken;
        for (const PlotMark& mark : plot_.marks) {
            Point at{std::clamp(acrossOf(mark.at.x), kLeft + kRadius, kLeft + width_ - kRadius),
                     std::clamp(downOf(mark.at.y), kTop + kRadius, kBottom - kRadius)};
            // Marks of one place lie side by side.
            const double aside = at.x < kLeft + width_ / 2 ? 2 * kRadius : -2 * kRadius;
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
    std::vector<const Rule*> beside_; ///< rules of the frame that have their label beside it
    double width_ = kWidth;
    Signs signs_{};
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

Signs writePlot(Html& html, const Plot& plot) {
    Frame frame = frameOf(plot);
    const bool is_empty = !frame.x.given;
    html << "<figure><figcaption>" << Text(plot.title);
    if (!plot.note.empty()) html << " <small>" << Text(plot.note) << "</small>";
    html << "</figcaption>";
    if (is_empty) {
        html << "<p class=\"none\">It has no point that can be drawn.</p></figure>\n";
        return {};
    }
    for (const Rule& rule : plot.rules)
        if (!rule.upright && rule.kind != Rule::Kind::rail) frame.y.include(rule.at);
    if (plot.shown_x.given) frame.x = plot.shown_x;
    if (plot.shown_y.given) frame.y = plot.shown_y;
    frame.x = frame.x.widened(0.0);
    frame.y = frame.y.widened(plot.shown_y.given ? 0.0 : kRoomBesideLines);
    const Signs signs = Drawing(html, plot, frame).draw();
    html << "</figure>\n";
    return signs;
}

} // namespace kestrel
