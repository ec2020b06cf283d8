// The parts of the report's page: texts that cannot become markup, numbers, ticks, lines of pictures, lines of files.

#include "report/curve_path.hpp"
#include "report/html.hpp"
#include "report/pictures.hpp"
#include "report/quantity.hpp"
#include "report/scale.hpp"
#include "report/source_lines.hpp"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string textOf(std::string_view text) {
    HtmlPiece piece;
    Html& html = piece.html();
    html << Text(text);
    return std::string(piece.text());
}

TEST(Html, textsAreNoMarkupWhateverTheirBytes) {
    EXPECT_EQ(textOf("<img src=x onerror=\"alert('1')\">&"),
              "&lt;img src=x onerror=&quot;alert(&#39;1&#39;)&quot;&gt;&amp;");
    EXPECT_EQ(textOf("a\tb\nc"), "a\tb\nc");
    EXPECT_EQ(textOf("\0\x1b[m\x7f\r"sv), "\uFFFD\uFFFD[m\uFFFD\uFFFD");
    EXPECT_EQ(textOf("\u00e9\u20ac\U0001f600\u0085\ufffe\ufdd0"), "\u00e9\u20ac\U0001f600\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(textOf("\xff<\xe2\x82\xc0\xaf"), "\uFFFD&lt;\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(textOf("\xe2<b>"), "\uFFFD&lt;b&gt;"); // a character that is cut off takes nothing with it
    HtmlPiece piece;
    Html& html = piece.html();
    html.cell(Text("a\tb\nc<")) << "\t";
    EXPECT_EQ(piece.text(), "a b c&lt;\t");
}

TEST(Html, attributesAreQuotedAndLinksAreNumbers) {
    HtmlPiece piece;
    Html& html = piece.html();
    html.begin("a", {Attribute::href({'m', 3, 12}), {TextAttribute("title"), Text("\" onclick=\"x")}});
    html << Text("x") << "</a>";
    html.begin("section", {Attribute::id({'f', 3, 0}), {"class", Literal("file")}});
    EXPECT_EQ(piece.text(),
              "<a href=\"#f3m12\" title=\"&quot; onclick=&quot;x\">x</a><section id=\"f3\" class=\"file\">");
}

TEST(Quantity, hasAnEngineeringPrefix) {
    const auto text = [](double value, std::string_view unit, int digits = 6) {
        std::string made = quantityText(value, unit, digits);
        for (std::size_t at = made.find("\u00a0"); at != std::string::npos; at = made.find("\u00a0"))
            made.replace(at, 2, " ");
        return made;
    };
    EXPECT_EQ(text(0.0, "V"), "0 V");
    EXPECT_EQ(text(-3.3, "V"), "\u22123.3 V");
    EXPECT_EQ(text(2.9e-9, "H"), "2.9 nH");
    EXPECT_EQ(text(1e-3, "A"), "1 mA");
    EXPECT_EQ(text(0.000999, "A"), "999 \u00b5A");
    EXPECT_EQ(text(0.9999996, "V"), "1 V"); // rounding carries it over
    EXPECT_EQ(text(999.6, kOhm, 3), "1 k\u03a9");
    EXPECT_EQ(text(66.666, kOhm, 3), "66.7 \u03a9");
    EXPECT_EQ(text(2500.0, kCelsius), "2500 \u00b0C");
    EXPECT_EQ(text(1.5e18, "V"), "1.5e+18 V");
    EXPECT_EQ(text(1e-20, "F"), "1e-20 F");
    EXPECT_EQ(text(-kInfinity, "A"), "\u2212\u221e A");
    EXPECT_EQ(text(1.5, ""), "1.5");
}

TEST(MinusSigns, goAheadOfNumbersOfOurOwn) {
    EXPECT_EQ(withMinusSigns("-1 V (-2 mA) at pin A-3, -x, \"-4\" and 'b -5': -6"),
              "\u22121 V (\u22122 mA) at pin A-3, -x, \"-4\" and 'b -5': \u22126");
}

std::string ticksText(double low, double high, int most) {
    const Ticks ticks = ticksOf({low, high, true}, most);
    std::string text(ticks.prefix.letter);
    for (const Tick& tick : ticks.ticks)
        text.append(" ").append(tick.text);
    return text;
}

TEST(Ticks, areRoundAndSayNoMoreThanTheyMust) {
    EXPECT_EQ(ticksText(-3.3, 6.6, 8), " \u22122 0 2 4 6");
    EXPECT_EQ(ticksText(-0.062, 0.075, 6), "m \u221250 0 50");
    EXPECT_EQ(ticksText(0, 2.5e-9, 8), "n 0.0 0.5 1.0 1.5 2.0 2.5");
    EXPECT_EQ(ticksText(3.3, 3.3001, 4), " 3.30000 3.30005 3.30010");
    EXPECT_EQ(ticksText(0, 0.9e-3, 6), "\u00b5 0 200 400 600 800");
    EXPECT_EQ(ticksText(0, 4e20, 4), " 0 1e+20 2e+20 3e+20 4e+20");
}

TEST(Span, leavesOutWhatIsNoNumber) {
    Span span;
    for (const double value : {kInfinity, -kInfinity, std::nan(""), 1e40})
        span.include(value);
    EXPECT_FALSE(span.given);
    EXPECT_GT(span.widened(0.1).length(), 0.0);
    span.include(3.3);
    EXPECT_GT(span.widened(0.0).length(), 0.0); // one value has room around it
    EXPECT_TRUE(span.widened(0.0).has(3.3));
    span.include(-1e30);
    EXPECT_TRUE(std::isfinite(span.widened(0.1).length()));
}

/// The moves of a line in a frame of 6 by 4, whose thousandth parts are those of the picture.
std::string pathOf(std::vector<Point> points) {
    Coordinates path;
    appendPath(path, points, {{0.0, 6.0, true}, {0.0, 4.0, true}});
    return std::string(path.text());
}

TEST(Path, goesFromPointToPoint) {
    EXPECT_EQ(pathOf({{0, 0}, {1, 1}, {3, 0}}), "M0 4000l1000-1000 2000 1000");
    EXPECT_EQ(pathOf({{0, 1}, {1, 1}, {2, 1}, {3, 2}}), "M0 3000l2000 0 1000-1000"); // one move for a straight row
    EXPECT_EQ(pathOf({{0, 1}, {2, 1}, {1, 1}}), "M0 3000l2000 0-1000 0");            // but not for the way back
    EXPECT_EQ(pathOf({{3, 2}}), "M3000 2000h0");
    EXPECT_EQ(pathOf({{3, 2}, {3, 2}}), "M3000 2000h0");
    EXPECT_EQ(pathOf({}), "");
}

TEST(Path, endsAtTheFrame) {
    EXPECT_EQ(pathOf({{-6, 2}, {12, 2}}), "M0 2000l6000 0");
    EXPECT_EQ(pathOf({{1, 2}, {1, 8}, {3, 8}, {3, 2}}), "M1000 2000l0-2000M3000 0l0 2000"); // out and in again
    EXPECT_EQ(pathOf({{0, 6}, {6, -2}}), "M1500 0l3000 4000");
    EXPECT_EQ(pathOf({{-1, -1}, {-1, 9}, {9, 9}}), "");
    EXPECT_EQ(pathOf({{7, 2}}), "");
    EXPECT_EQ(pathOf({{0, -1}, {1, -3e-4}, {2, 1}}), "M1000 4000l1000-1000"); // what rounds to the edge is on it
    EXPECT_EQ(pathOf({{1, 2}, {2, 4.0003}, {3, 9}, {4, 4.0003}, {5, 2}}), "M1000 2000l1000-2000M4000 0l1000 2000");
    EXPECT_EQ(pathOf({{0, 2}, {1, kInfinity}, {std::nan(""), 2}, {2, 1e300}, {6, 2}}), "M0 2000l6000 0");
}

TEST(Thinning, keepsPeaks) {
    constexpr std::size_t kCount = 100000;
    std::vector<Point> points;
    for (std::size_t i = 0; i < kCount; ++i)
        points.push_back({static_cast<double>(i), std::sin(static_cast<double>(i) * 0.001)});
    points[12345].y = 50.0;
    points[67891].y = -70.0;
    const std::vector<Point> kept = thinned(points, {0.0, kCount - 1.0, true});
    EXPECT_LE(kept.size(), kMostPoints);
    EXPECT_GE(kept.size(), kMostPoints / 2);
    EXPECT_TRUE(std::ranges::is_sorted(kept, {}, &Point::x));
    const auto has = [&kept](double x, double y) {
        return std::ranges::any_of(kept, [&](const Point& point) { return point.x == x && point.y == y; });
    };
    EXPECT_TRUE(has(12345, 50));
    EXPECT_TRUE(has(67891, -70));
    EXPECT_TRUE(has(0, 0));
    EXPECT_EQ(kept.back().x, kCount - 1.0);
    points.resize(kMostPoints);
    EXPECT_EQ(thinned(points, {0.0, 1e6, true}).size(), kMostPoints);
}

TEST(Marks, readTheValueThatAFindingNames) {
    EXPECT_EQ(valueBehind(kAt, "falls from -4.31 mA at 860 mV to -38.5 mA at 900 mV (typ)", "V"), 860 * 1e-3);
    EXPECT_EQ(valueBehind(kAt, "[Pullup] carries 2.52 mA at 0 V in min", "V"), 0.0);
    EXPECT_EQ(valueBehind(kAt, "goes back at 1.5 ns by 100 mV", "s"), 1.5 * 1e-9);
    EXPECT_EQ(valueBehind(kAt, "goes back at 1.5 ns by 100 mV", "V"), std::nullopt);
    EXPECT_EQ(valueBehind(kAt, "rises at 2 V/ns", "V"), std::nullopt);
    EXPECT_EQ(valueBehind(kAt, "Beginning at Line 12", "V"), std::nullopt);
    EXPECT_EQ(valueBehind(kAt, "looked at 3 Volts", "V"), std::nullopt);
    EXPECT_EQ(valueBehind(kAt, "ends at ", "V"), std::nullopt);
    const std::string_view pin = "Model 'x': at the pin voltage -2.64 V [POWER Clamp] carries -650 mA";
    EXPECT_EQ(valueBehind(kAt, pin, "V"), std::nullopt); // not a table's voltage
    EXPECT_EQ(valueBehind(kAtPinVoltage, pin, "V"), -2.64);
}

TEST(SourceLines, areReadAgainByNumber) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "kestrel_source_lines.txt";
    const auto later = std::filesystem::file_time_type::clock::now() + std::chrono::hours(1);
    std::ofstream(path, std::ios::binary) << "one\r\ntwo\n\n" << std::string(100000, 'x') << "\nlast";
    const SourceLines lines = readLines(path.string(), {1, 3, 4, 5, 9}, later);
    EXPECT_THAT(lines, ElementsAre(testing::Pair(1, "one"), testing::Pair(3, ""),
                                   testing::Pair(4, std::string(160, 'x')), testing::Pair(5, "last")));
    // One that was changed behind the check is not the file that was checked.
    EXPECT_TRUE(readLines(path.string(), {1}, later - std::chrono::hours(48)).empty());
    std::filesystem::remove(path);
    EXPECT_TRUE(readLines(path.string(), {1}, later).empty());
    EXPECT_TRUE(readLines("/dev/null", {1}, later).empty());
}

} // namespace
} // namespace kestrel
