// Trigger voltages of submodels against the corners of their waveforms.

#include "ibis/run.hpp"

#include <array>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// Typical, minimum and maximum; kNone is a missing cell, kNa "NA".
using Corners = std::array<double, 3>;
constexpr double kNone = std::numeric_limits<double>::infinity();
constexpr double kNa = -kNone;

Cell cell(double value) {
    if (value == kNone) return {};
    return value == kNa ? Cell{0.0, CellState::na} : Cell{value, CellState::number};
}

Rng range(const Corners& corners) { return {cell(corners[0]), cell(corners[1]), cell(corners[2])}; }

std::unique_ptr<Wvfrm> waveform(const Corners& first, const Corners& last) {
    auto made = std::make_unique<Wvfrm>();
    for (const Corners* corners : {&first, &last}) {
        TableRow& row = made->rows.emplace_back();
        for (std::size_t i = 0; i < corners->size(); ++i) {
            const Cell of_corner = cell((*corners)[i]);
            row.value[i + 1] = of_corner.value;
            row.state[i + 1] = of_corner.state;
        }
    }
    return made;
}

/// The warnings of a check as "2441 Typ; 2442 Max".
std::string warningsOf(const SubMdl& submodel) {
    Output out;
    Run run{out};
    run.diagnostics.coded_form = true;
    checkSubMdl(run, submodel);
    std::string list;
    const std::string& text = out.text();
    for (std::size_t at = text.find('W'); at != std::string::npos; at = text.find("\nW", at)) {
        at += text[at] == '\n' ? 1 : 0;
        list.append(list.empty() ? "" : "; ").append(text, at + 1, 4).append(" ");
        list.append(text, text.find('(', at) + 1, 3);
    }
    return list;
}

TEST(Submodel, risingTriggerAgainstCorners) {
    struct Row {
        std::string_view label;
        Corners trigger, first, last;
        std::string warnings;
    };
    const Row rows[] = {
        {"between", {2, 1.5, 2.5}, {0, 0, 0}, {3, 3, 3}, ""},
        {"equal at both ends", {2, 1.5, 2.5}, {2, 1.5, 2.5}, {2, 1.5, 2.5}, ""},
        {"start above", {2, 1.5, 2.5}, {2.1, 1.6, 2.6}, {9, 9, 9}, "2441 Typ; 2441 Min; 2441 Max"},
        {"end below", {2, 1.5, 2.5}, {0, 0, 0}, {1.9, 1.4, 2.4}, "2442 Typ; 2442 Min; 2442 Max"},
        {"start before end", {2, 1, 3}, {0, 2, 0}, {3, 2, 2}, "2441 Min; 2442 Max"},
        {"trigger NA: its typical value", {2, kNa, kNa}, {0, 2.1, 2}, {3, 2, 1.9}, "2441 Min; 2442 Max"},
        {"waveform NA: its typical value", {2, 1, 4}, {1.5, kNa, kNa}, {3, kNa, kNa}, "2441 Min; 2442 Max"},
        {"both NA", {2, kNa, kNa}, {3, kNa, kNa}, {3, kNa, kNa}, "2441 Typ"},
        {"typical NA at the start", {2, 1, 3}, {kNa, 9, 9}, {0, 0, 0}, ""},
        {"typical NA at the end", {2, 1, 3}, {0, 0, 0}, {kNa, kNa, 2}, "2442 Max"},
        {"typical trigger NA", {kNa, 1, 1}, {9, 9, 9}, {0, 0, 0}, ""},
        {"missing cells", {2, kNone, 1}, {0, 9, kNone}, {3, 0, 0}, "2442 Max"},
    };
    for (const Row& row : rows) {
        SubMdl submodel;
        SubMdlTables& tables = submodel.tables.made();
        tables.spec.emplace().v_trigger_r = range(row.trigger);
        tables.rising_waveforms.push_back(waveform(row.first, row.last));
        tables.falling_waveforms.push_back(waveform(row.first, row.last));
        EXPECT_EQ(warningsOf(submodel), row.warnings) << row.label;
    }
}

TEST(Submodel, triggersOfBothEdgesInOrder) {
    const Corners low{0, 0, 0};
    const Corners high{3, 3, 3};
    const Corners middle{1, 1, 1};
    SubMdl submodel;
    SubMdlTables& tables = submodel.tables.made();
    tables.spec.emplace().v_trigger_r = range({2, 2, 2});
    tables.spec->v_trigger_f = range({1.5, kNa, kNa});
    tables.rising_waveforms.push_back(std::make_unique<Wvfrm>());
    tables.rising_waveforms.push_back(waveform(low, middle));
    tables.rising_waveforms.push_back(waveform(high, high));
    tables.falling_waveforms.push_back(waveform(high, low));
    tables.falling_waveforms.push_back(waveform(middle, {2, 1.5, kNa}));
    EXPECT_EQ(warningsOf(submodel),
              "2442 Typ; 2442 Min; 2442 Max; 2441 Typ; 2441 Min; 2441 Max; "
              "2443 Typ; 2443 Min; 2443 Max; 2444 Typ");
}

} // namespace
} // namespace kestrel
