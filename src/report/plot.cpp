#include "report/plot.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrel {

namespace {

/// The picture, and its frame in it; the style and the script know the same numbers.
constexpr double kLeft = 50;
constexpr double kTop = 20;
constexpr double kWidth = 420;
constexpr double kHeight = 240;
constexpr double kRight = kLeft + kWidth;
constexpr double kBottom = kTop + kHeight;

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
        html_ << "<g class=\"c\"><g class=\"d\" transform=\"translate(50 20)scale(.07 .06)\">";
        lines();
        html_ << "</g></g>";
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
        html_ << "<g class=\"tx\" transform=\"translate(0 275)\">";
        for (const Tick& tick : across.ticks)
            tickText("x", acrossOf(tick.value), tick);
        html_ << "</g><g class=\"ty\" transform=\"translate(45 4)\">";
        for (const Tick& tick : down.ticks)
            tickText("y", downOf(tick.value), tick);
        html_ << "</g><text class=\"lx\" x=\"470\" y=\"293\">";
        axisLabel(plot_.x, across) << "</text><text class=\"ly\" x=\"4\" y=\"12\">";
        axisLabel(plot_.y, down) << "</text>";
    }

    void tickText(MarkupName axis, double at, const Tick& tick) {
        place_.clear();
        html_.tick(axis, place_.tenths(at), Text(tick.text));
    }

    Html& axisLabel(const Axis& axis, const Ticks& ticks) {
        return html_ << Text(axis.word) << " (" << Text(ticks.prefix.letter) << Text(axis.unit) << ")";
    }

    void lines() {
        for (const Rule& rule : plot_.rules) {
            if (!(rule.upright ? frame_.x : frame_.y).has(rule.at)) continue;
            place_.clear();
            if (rule.upright) {
                place_.add("M").step(rounded(frame_.acrossOf(rule.at))).add(" 0v4000");
            } else {
                place_.add("M0 ").step(rounded(frame_.downOf(rule.at))).add("h6000");
            }
            html_.path(classOf(rule), place_);
        }
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

    /// Labels of rules: of upright ones above the frame, of others at its right. Those that would lie over another are
    /// left out; the lines are there.
    void labels() {
        std::vector<double> taken_across{20}; // where the label of the axis is
        std::vector<double> taken_down;
        const auto isFree = [](std::vector<double>& taken, double at, double room) {
            const bool is_free = std::ranges::none_of(taken, [&](double other) { return std::abs(other - at) < room; });
            if (is_free) taken.push_back(at);
            return is_free;
        };
        for (const Rule& rule : plot_.rules) {
            if (rule.label.empty() || !(rule.upright ? frame_.x : frame_.y).has(rule.at)) continue;
            place_.clear();
            data_.clear();
            data_.general(rule.at);
            if (rule.upright) {
                const double room = 3.3 * static_cast<double>(rule.label.size());
                const double at = std::min(acrossOf(rule.at), 479 - room);
                if (!isFree(taken_across, at, 62)) continue;
                html_.begin("text", {{"class", Literal("lr")},
                                     {TextAttribute("x"), place_.tenths(at)},
                                     {"y", Literal("14")},
                                     {TextAttribute("data-x"), data_}});
            } else {
                const double at = downOf(rule.at);
                if (!isFree(taken_down, at, 12)) continue;
                html_.begin("text", {{"class", Literal("lh")},
                                     {"x", Literal("467")},
                                     {TextAttribute("y"), place_.tenths(at < kTop + 12 ? at + 11 : at - 3)},
                                     {TextAttribute("data-y"), data_}});
            }
            html_ << Text(rule.label) << "</text>";
        }
    }

    void marks() {
        for (const PlotMark& mark : plot_.marks) {
            const double across = std::clamp(acrossOf(mark.at.x), kLeft, kRight);
            const double down = std::clamp(downOf(mark.at.y), kTop, kBottom);
            place_.clear();
            place_.add("translate(").tenths(across).add(" ").tenths(down).add(")");
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
