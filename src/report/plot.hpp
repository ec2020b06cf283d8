#pragma once

#include "base/enum_set.hpp"
#include "reader/corner.hpp"
#include "report/curve_path.hpp"
#include "report/html.hpp"

#include <string>
#include <string_view>
#include <vector>

/// Pictures of lines over two axes, as inline SVG.
namespace kestrel {

/// What an axis counts.
struct Axis {
    std::string_view word; ///< such as "Current"
    std::string_view unit;
};
inline constexpr Axis kVoltageAxis{"Voltage", "V"};
inline constexpr Axis kCurrentAxis{"Current", "A"};
inline constexpr Axis kTimeAxis{"Time", "s"};

/// A line of a corner.
struct PlotLine {
    Corner corner;
    std::vector<Point> points; ///< that can be drawn; x does not fall
    bool thin = false;         ///< it helps to read the others
    bool is_old = false;       ///< of the file with which another is compared
};

/// A straight line across the picture.
struct Rule {
    enum class Kind : std::uint8_t { rail, level, threshold };
    Kind kind;
    bool upright; ///< at a value of x
    double at;
    std::string label; ///< of one that is not upright: the name that it shares with those of other corners
    Corner corner = Corner::typ;
    int digits = 3; ///< significant ones of the value in its label, of one that is not upright
};

/// Points of a line that are told apart.
struct Dots {
    Corner corner;
    std::vector<Point> points;
};

/// A place that a finding names.
struct PlotMark {
    Point at;
    Anchor finding;
    std::string text;
};

/// The room above and below the lines of a picture, as a part of its height.
inline constexpr double kRoomBesideLines = 0.04;

/// A picture before it is drawn.
struct Plot {
    std::string title;      ///< such as "Pulldown"
    std::string_view owner; ///< whose it is
    std::string note;       ///< beside the title
    Axis x;
    Axis y;
    std::vector<PlotLine> lines;
    std::vector<Rule> rules;
    std::vector<Dots> dots;
    std::vector<PlotMark> marks;
    Span shown_x; ///< when given, x goes as far as this says
    Span shown_y; ///< when given, y goes as far as this says, whatever the lines hold
};

/// What a picture has that a key explains.
enum class Sign : std::uint8_t { typ, min, max, rail, dots, ramp, level, threshold, mark };
using Signs = EnumSet<Sign>;

/// Draws it as a figure; one without a point is only said to be empty. Returns what was drawn.
Signs writePlot(Html& html, const Plot& plot);

/// The class by which lines of a corner are styled.
[[nodiscard]] constexpr MarkupName classOf(Corner corner) {
    switch (corner) {
    case Corner::min: return "n";
    case Corner::max: return "x";
    case Corner::typ: break;
    }
    return "t";
}

} // namespace kestrel
