// A model of which nothing is said, broken in one place at a time: each fault is noticed.

#include "files.hpp"
#include "quality/advised.hpp"
#include "quality/checks.hpp"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::Optional;

/// The codes of what is said of a file, each once, as "Q201 Q301".
std::string codesOf(const std::vector<Advice>& list) {
    std::set<FindingCode> codes;
    for (const Advice& advice : list)
        codes.insert(advice.code);
    std::string text;
    for (const FindingCode& code : codes)
        text.append(text.empty() ? "" : " ").append(CodeText(code).text());
    return text;
}

using Corners = std::array<double, kCornerCount>;

/// A row of a table: the first column, and what the corners have.
struct Row {
    double first;
    Corners values;
};
using Table = std::vector<Row>;

/// A waveform: its keyword, where its fixture of 50 ohm leads in the corners, its rows.
struct Wave {
    std::string keyword;
    Corners fixture;
    Table rows;
};

constexpr Corners kVcc{3.3, 3.0, 3.6};
constexpr Corners kStrength{1.0, 0.75, 1.3};
constexpr Corners kDelay{1.0, 1.2, 0.8}; // of the corners' edges

/// A push-pull driver: 25 ohm up to 1.5 V and 250 ohm above, by the strength of the corner; clamps of 5 ohm from 0.6 V
/// beyond the rails; edges of 2 ns into 50 ohm to either supply, which begin at 1 ns.
struct PushPull {
    std::string name = "io";
    std::string type = "Output";
    std::string vmeas = "Vmeas = 1.65\nRref = 50\nVref = 1.65\n";
    Corners supply = kVcc;
    Table pulldown = driverTable(1.0);
    Table pullup = driverTable(-1.0);
    Table gnd_clamp = clampTable(-1.0);
    Table power_clamp = clampTable(1.0);
    std::vector<Wave> waves{wave("Rising", false), wave("Rising", true), wave("Falling", false), wave("Falling", true)};
    std::string pins = "1 s io\n";
    Corners dv_r{1.32, 1.08, 1.56}; // 60 % of the swing into 50 ohm to the far rail
    Corners dv_f = dv_r;
    Corners dt{1.2e-9, 1.44e-9, 0.96e-9};

    static Table driverTable(double sign) {
        Table table;
        for (int step = -12; step <= 24; ++step) {
            const double v = 0.3 * step;
            const double current = v < 1.5 ? v / 25.0 : 0.06 + (v - 1.5) / 250.0;
            table.push_back({v, {sign * current, 0.75 * sign * current, 1.3 * sign * current}});
        }
        return table;
    }
    static Table clampTable(double sign) {
        Table table;
        for (int step = -12; step <= 12; ++step) {
            const double v = 0.3 * step;
            const double current = v < -0.6 ? (-0.6 - v) / 5.0 : 0.0;
            table.push_back({v, {sign * current, sign * current, sign * current}});
        }
        return table;
    }
    /// The level of the resistance of a driver that holds one rail, with the load at the other.
    static double divided(std::size_t corner) { return kVcc[corner] * 25.0 / (25.0 + 50.0 * kStrength[corner]); }
    static Wave wave(const std::string& edge, bool to_supply) {
        Wave wave{"[" + edge + " Waveform]", to_supply ? kVcc : Corners{}, {}};
        for (int step = 0; step <= 30; ++step) {
            Row row{0.2e-9 * step, {}};
            for (std::size_t c = 0; c < kCornerCount; ++c) {
                const double low = to_supply ? divided(c) : 0.0;
                const double high = to_supply ? kVcc[c] : kVcc[c] - divided(c);
                const double share = std::clamp((row.first - 1e-9) / (2e-9 * kDelay[c]), 0.0, 1.0);
                row.values[c] = edge == "Rising" ? low + share * (high - low) : high + share * (low - high);
            }
            wave.rows.push_back(row);
        }
        return wave;
    }

    [[nodiscard]] std::string text() const {
        std::ostringstream out;
        out.precision(12);
        out << "[Date] March 3, 2020\n[Source] made for a test\n[Component] c\n"
            << kComponentStart << "[Pin] signal_name model_name R_pin L_pin C_pin\n"
            << pins << "[Model Selector] sel\n"
            << name << " the model\n[Model] " << name << "\nModel_type " << type << "\n"
            << vmeas << "C_comp 3p 2.5p 3.5p\n";
        const auto put_row = [&out](double first, const Corners& values) {
            out << first;
            for (const double value : values)
                out << ' ' << value;
            out << '\n';
        };
        const auto put = [&](const char* keyword, const Table& table) {
            if (!table.empty()) out << keyword << '\n';
            for (const Row& row : table)
                put_row(row.first, row.values);
        };
        out << "[Voltage Range] " << supply[0] << ' ' << supply[1] << ' ' << supply[2] << '\n';
        put("[Pulldown]", pulldown);
        put("[Pullup]", pullup);
        put("[GND Clamp]", gnd_clamp);
        put("[POWER Clamp]", power_clamp);
        out << "[Ramp]\n";
        for (const auto& [rate, dv] : {std::pair("dV/dt_r", dv_r), std::pair("dV/dt_f", dv_f)}) {
            out << rate;
            for (std::size_t c = 0; c < kCornerCount; ++c)
                out << ' ' << dv[c] << '/' << dt[c];
            out << '\n';
        }
        for (const Wave& one : waves) {
            out << one.keyword << "\nR_fixture = 50\nV_fixture = " << one.fixture[0]
                << "\nV_fixture_min = " << one.fixture[1] << "\nV_fixture_max = " << one.fixture[2] << '\n';
            for (const Row& row : one.rows)
                put_row(row.first, row.values);
        }
        return out.str();
    }
};

std::vector<Advice> adviceOf(const std::string& text, Files& files) {
    files.add("io.ibs", text, "5.1").check("io.ibs");
    EXPECT_EQ(files.run.diagnostics.errors, 0) << files.out.text();
    return adviseOn(AdvisedFile(files.root(), files.run.parse));
}

std::string codesOf(const PushPull& model) {
    Files files;
    return codesOf(adviceOf(model.text(), files));
}

/// What a change makes of the model.
std::string broken(const std::function<void(PushPull&)>& change) {
    PushPull model;
    change(model);
    return codesOf(model);
}

/// Where in its table the only advice on a broken model is.
TablePlaces placesIn(const std::function<void(PushPull&)>& change) {
    PushPull model;
    change(model);
    Files files;
    const std::vector<Advice> list = adviceOf(model.text(), files);
    EXPECT_EQ(list.size(), 1U);
    return list.empty() ? TablePlaces() : list.front().at;
}

void scale(Table& table, double factor) {
    for (Row& row : table)
        for (double& value : row.values)
            value *= factor;
}

TEST(Advice, saysNothingOfAGoodModel) {
    Files files;
    for (const Advice& advice : adviceOf(PushPull().text(), files))
        ADD_FAILURE() << advice.line << ": " << advice.text;
}

TEST(Advice, noticesWhatIsWrongWithTables) {
    EXPECT_EQ(broken([](PushPull& m) { scale(m.pulldown, 2.0); }), "Q301");
    // 0.6 V off: 24 mA at the supply, and 1.8 V in place of 2.2 V into 50 ohm to ground.
    EXPECT_EQ(broken([](PushPull& m) {
                  for (Row& row : m.pullup)
                      row.first += 0.6;
              }),
              "Q203 Q301 Q310");
    EXPECT_EQ(broken([](PushPull& m) { scale(m.pulldown, -1.0); }).substr(0, 9), "Q108 Q202");
    // From the pin's ground in place of the supply: the table of table voltage V is that of Vcc - V.
    EXPECT_EQ(broken([](PushPull& m) {
                  for (Row& row : m.pullup)
                      row.first = 3.3 - row.first;
              }).substr(0, 9),
              "Q202 Q203");
    EXPECT_EQ(broken([](PushPull& m) {
                  for (Row& row : m.pulldown)
                      std::swap(row.values[1], row.values[2]);
              }),
              "Q206 Q301");
    EXPECT_EQ(broken([](PushPull& m) {
                  for (Row& row : m.pulldown)
                      row.values[1] = row.values[0];
              }),
              "Q206 Q301");
    // A row inside the range of the levels, and one outside it.
    EXPECT_EQ(broken([](PushPull& m) { m.pulldown[14].values[0] *= 10.0; }), "Q202 Q207 Q301 Q310");
    EXPECT_EQ(broken([](PushPull& m) { m.pulldown[20].values[0] *= 10.0; }), "Q202 Q207");
    // The ground clamp once more in the pulldown.
    EXPECT_EQ(broken([](PushPull& m) {
                  for (std::size_t i = 0; i < m.gnd_clamp.size(); ++i)
                      for (std::size_t c = 0; c < kCornerCount; ++c)
                          m.pulldown[i].values[c] += m.gnd_clamp[i].values[c];
              }),
              "Q205");
    EXPECT_EQ(broken([](PushPull& m) { std::swap(m.supply[1], m.supply[2]); }).substr(0, 4), "Q104");
    EXPECT_EQ(broken([](PushPull& m) { m.pulldown.resize(20); }), "Q201");
    // From -3.6 V in steps of 0.3 V: the ends that are short.
    const auto cut_off = [](PushPull& m) { m.pulldown.resize(20); };
    const auto begun_late = [](PushPull& m) { m.pulldown.erase(m.pulldown.begin(), m.pulldown.begin() + 10); };
    const auto both = [&](PushPull& m) {
        cut_off(m);
        begun_late(m);
    };
    EXPECT_THAT(placesIn(cut_off), ElementsAre(std::nullopt, Optional(DoubleNear(2.1, 1e-9))));
    EXPECT_THAT(placesIn(begun_late), ElementsAre(Optional(DoubleNear(-0.6, 1e-9)), std::nullopt));
    EXPECT_THAT(placesIn(both), ElementsAre(Optional(DoubleNear(-0.6, 1e-9)), Optional(DoubleNear(2.1, 1e-9))));
    EXPECT_EQ(broken([](PushPull& m) { scale(m.pullup, 0.0); }),
              "Q209 Q301"); // what is left is an open drain, of which the ramp is right
    EXPECT_EQ(broken([](PushPull& m) {
                  m.type = "Input";
                  m.waves.clear();
                  m.pulldown.clear();
                  m.pullup.clear();
                  for (Row& row : m.gnd_clamp)
                      for (double& value : row.values)
                          value += 1e-3;
              }),
              "Q204");
}

TEST(Advice, noticesWhatIsWrongWithWaveforms) {
    // Levels of the other load.
    EXPECT_EQ(broken([](PushPull& m) { std::swap(m.waves[0].fixture, m.waves[1].fixture); }).substr(0, 4), "Q301");
    EXPECT_EQ(broken([](PushPull& m) { std::swap(m.waves[0].keyword, m.waves[2].keyword); }).substr(0, 4), "Q301");
    // Cut off in the middle of the edge.
    EXPECT_EQ(broken([](PushPull& m) { m.waves[0].rows.resize(12); }), "Q301 Q304 Q307");
    EXPECT_EQ(broken([](PushPull& m) {
                  for (Wave& wave : m.waves) {
                      wave.rows.insert(wave.rows.begin(), wave.rows.front());
                      for (std::size_t i = 1; i < wave.rows.size(); ++i)
                          wave.rows[i].first += 3e-9;
                  }
              }),
              "Q303");
    EXPECT_EQ(broken([](PushPull& m) { m.waves.erase(m.waves.begin() + 1); }), "Q302");
    EXPECT_EQ(broken([](PushPull& m) { m.waves[1] = m.waves[0]; }), "Q302");
    // One row in five: steps of 1 ns, of which an edge has two.
    EXPECT_EQ(broken([](PushPull& m) {
                  m.waves[3].rows = {m.waves[3].rows[0], m.waves[3].rows[6], m.waves[3].rows[15], m.waves[3].rows[30]};
              }),
              "Q305");
    // A kick ahead of the edge: up to a third of the swing and back.
    EXPECT_EQ(broken([](PushPull& m) { m.waves[1].rows[2].values[2] += 0.9; }), "Q313");
    EXPECT_EQ(broken([](PushPull& m) { scale(m.waves[0].rows, 0.0); }), "Q301 Q306 Q307");
    // The weak corner has the strong one's times, and the other way round.
    EXPECT_EQ(broken([](PushPull& m) {
                  for (Wave& wave : m.waves)
                      for (Row& row : wave.rows)
                          std::swap(row.values[1], row.values[2]);
              }).substr(0, 4),
              "Q301");
}

TEST(Advice, noticesWhatIsWrongWithRamps) {
    // The whole swing in place of 60 % of it, in the same time.
    EXPECT_EQ(broken([](PushPull& m) { m.dv_r = {2.2, 1.8, 2.6}; }), "Q310");
    EXPECT_EQ(broken([](PushPull& m) { m.dt = {3.6e-9, 4.32e-9, 2.88e-9}; }), "Q309");
    EXPECT_EQ(broken([](PushPull& m) { m.dt = {1.2, 1.44, 0.96}; }), "Q309 Q312");
    // The weak corner is the fast one.
    EXPECT_EQ(broken([](PushPull& m) {
                  std::swap(m.dt[1], m.dt[2]);
                  std::swap(m.dv_f[1], m.dv_f[2]);
                  std::swap(m.dv_r[1], m.dv_r[2]);
              }),
              "Q309 Q311");
}

/// Pins of two models in a pair.
constexpr const char* kPairPins =
    "1 s sel\n2 s sel\n[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n1 2 0.2 NA NA NA\n";

/// 20 mA at the rail, which is 0.5 V off in a pulldown of 25 ohm.
void addCurrentAtRail(PushPull& model) {
    for (Row& row : model.pulldown)
        for (double& value : row.values)
            value += 0.02;
    model.waves.clear();
    model.dv_r = model.dv_f = {1.52, 1.2, 1.8};
}

TEST(Advice, knowsWhereACurrentAtTheRailBelongs) {
    EXPECT_EQ(broken(addCurrentAtRail), "Q203 Q407");
    EXPECT_EQ(broken([](PushPull& m) {
                  addCurrentAtRail(m);
                  m.pins = kPairPins;
              }).find("Q203"),
              std::string::npos);
    // Waveforms that end at the levels of these tables say that they are right: 25 ohm to -0.5 V against 50 ohm.
    constexpr const char* kTables =
        "Model_type Output\nC_comp 3p 2p 4p\n[Voltage Range] 3.3 3.0 3.6\n[Pulldown]\n-3.3 -112m NA NA\n0 20m NA NA\n6.6 284m NA NA\n"
        "[Pullup]\n-3.3 132m NA NA\n6.6 -264m NA NA\n[Ramp]\ndV/dt_r 1.52/1.2n NA NA\ndV/dt_f 1.52/1.2n NA NA\n";
    const auto said_of = [&](const std::string& low) {
        std::string text = std::string("[Model] m\n") + kTables;
        for (const bool rises : {true, false}) {
            text.append(rises ? "[Rising Waveform]\n" : "[Falling Waveform]\n")
                .append("R_fixture = 50\nV_fixture = 3.3\n");
            text.append("0 ").append(rises ? low : "3.3").append(" NA NA\n1n 2 NA NA\n2n ");
            text.append(rises ? "3.3" : low).append(" NA NA\n3n ").append(rises ? "3.3" : low).append(" NA NA\n");
        }
        Files files;
        files.add("m.ibs", text, "5.1").check("m.ibs");
        return codesOf(adviseOn(AdvisedFile(files.root(), files.run.parse)));
    };
    EXPECT_EQ(said_of("0.766667").find("Q203"), std::string::npos);
    EXPECT_NE(said_of("0.6").find("Q203"), std::string::npos);
    // The minimum counts from the typical supply: 0.3 V and so 9 mA off at its own.
    EXPECT_EQ(broken([](PushPull& m) {
                  for (std::size_t i = 0; i + 1 < m.pullup.size(); ++i)
                      m.pullup[i].values[1] = m.pullup[i + 1].values[1];
              }),
              "Q203 Q301");
}

TEST(Advice, isQuietWhereThereIsAReason) {
    // A table that ends where the driver itself stops the reflection: at 3.9 V with 69.6 mA, where 50 ohm to 6.6 V give
    // 54 mA. At 3 V it is 66 mA for 72 mA.
    EXPECT_EQ(broken([](PushPull& m) { m.pulldown.resize(26); }), "");
    EXPECT_EQ(broken([](PushPull& m) { m.pulldown.resize(23); }), "Q201");
    // A termination that the name owns up to.
    const auto terminated = [](PushPull& m) {
        m.waves.clear();
        m.type = "Input";
        m.pulldown.clear();
        m.pullup.clear();
        m.vmeas.clear();
        for (Row& row : m.gnd_clamp)
            for (double& value : row.values)
                value += row.first / 100.0;
    };
    EXPECT_EQ(broken(terminated), "Q204");
    EXPECT_EQ(broken([&](PushPull& m) {
                  terminated(m);
                  m.name = "in_ODT60";
                  m.pins = "1 s in_ODT60\n";
              }),
              "");
    // An open drain whose ramp was measured with the resistor of its timing load: 25 ohm against 1 kohm to 3.3 V.
    const auto drain = [](double step) {
        return broken([step](PushPull& m) {
            m.type = "Open_drain";
            m.vmeas = "Vmeas = 1.65\nRref = 1k\nVref = 3.3\n";
            m.waves.clear();
            m.pullup.clear();
            m.dv_r = m.dv_f = {step, step, step};
        });
    };
    EXPECT_EQ(drain(1.93), "Q407");
    EXPECT_EQ(drain(2.9), "Q310 Q407");
}

TEST(Advice, readsNumbersOfAnyKind) {
    const std::string good = PushPull().text();
    const std::size_t model = good.find("[Voltage Range]");
    std::size_t changed = 0;
    for (const char* const word : {"NA", "0", "-0", "1e400", "-1e400", "1e308", "-1e308", "1e-320", "-5", "x"}) {
        // Every 29th number from the supply on, in tables, ramps and fixtures alike.
        std::size_t count = 0;
        for (std::size_t at = model; at < good.size(); ++at) {
            const bool begins = (good[at - 1] == ' ' || good[at - 1] == '\n') &&
                                std::string_view("-.0123456789").find(good[at]) != std::string_view::npos;
            if (!begins || ++count % 29 != 0) continue;
            const std::size_t end = good.find_first_of(" /\n", at);
            Files files;
            files.add("io.ibs", std::string(good).replace(at, end - at, word), "5.1").check("io.ibs");
            ++changed;
            for (const Advice& advice : adviseOn(AdvisedFile(files.root(), files.run.parse)))
                EXPECT_EQ(advice.text.find("nan"), std::string::npos) << advice.text;
        }
    }
    EXPECT_GT(changed, 300U);
}

TEST(Advice, readsTablesOfAnyForm) {
    const auto said_of = [](const std::function<void(PushPull&)>& change) {
        PushPull model;
        change(model);
        Files files;
        files.add("io.ibs", model.text(), "5.1").check("io.ibs");
        return codesOf(adviseOn(AdvisedFile(files.root(), files.run.parse)));
    };
    const auto each_table = [](PushPull& m, auto change) {
        for (Table* const table : {&m.pulldown, &m.pullup, &m.gnd_clamp, &m.power_clamp})
            change(*table);
        for (Wave& wave : m.waves)
            change(wave.rows);
    };
    // One row, or rows that are all at one voltage or time, are no data.
    EXPECT_EQ(said_of([&](PushPull& m) { each_table(m, [](Table& t) { t.resize(1); }); }), "");
    const std::string at_one_voltage = said_of([&](PushPull& m) {
        each_table(m, [](Table& t) {
            for (Row& row : t)
                row.first = 1.0;
        });
    });
    EXPECT_EQ(at_one_voltage.find("Q2"), std::string::npos) << at_one_voltage;
    // The order of the rows of a table does not matter.
    EXPECT_EQ(said_of([](PushPull& m) { std::ranges::reverse(m.pulldown); }), "");
    EXPECT_EQ(said_of([](PushPull& m) { m.supply = {-3.3, -3.0, -3.6}; }).find("Q2"), std::string::npos);
    EXPECT_EQ(said_of([](PushPull& m) { m.supply = {}; }).find("Q3"), std::string::npos);
}

} // namespace
} // namespace kestrel
