// What a model keeps of its lines, faulty ones included, and what is said of them; texts are left to the cases.

#include "ibis/checks.hpp"
#include "lines.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_literals;
using V = IbisVersion;

/// Models read line by line.
struct Reading : Lines {
    explicit Reading(V version) : Lines(KeywordCode::model, version) {}
    [[nodiscard]] const Mdl& newest() const { return *root.models.newestFirst().begin(); }
};

struct Row {
    V version;
    std::string_view lines;
    std::string_view codes;
};

TEST(Model, subparameterLines) {
    const Row rows[] = {
        // settings: one line each, whatever was wrong with it
        {V::v4, "Model_type Input\nModel_type Output", "E0119@"},
        {V::v4, "Model_type input\nModel_type Input", "E0136@ E0119@"},
        {V::v4, "Model_type\nModel_type Input", "E0175@ E0119@"},
        {V::v4, "Model_type = Input", "E0176@"},
        {V::v4, "Model_type=Input", "E0176@"},
        {V::v4, "Model_type =", "E0158@"},
        {V::v4, "Model_type No Type", "E0137@"},
        {V::v4, "model_type Input\n= Input", "E0174@ E0174@"},
        {V::v4, "Polarity Inverting\nPolarity Non-Inverting", "E0119@"},
        {V::v4, "Polarity NON-inverting\nEnable Low\nEnable Active-Low", "E0136@ E0158@ E0119@"},
        // types by version
        {V::v2, "Model_type Terminator", ""},
        {V::v2, "Model_type Series", "E0158@"},
        {V::v3, "Model_type 3-state_ECL", ""},
        {V::v3, "Model_type I/O_diff", "E0158@"},
        {V::v3, "Model_type input_Diff", "E0158@"},
        {V::v4, "Model_type Input_diff", ""},
        // gates stand ahead of the test for a second line
        {V::v4, "Vinl = 1\nVinh = 2\nModel_type Input\nVinl = 1", ""},
        {V::v4, "Model_type none\nVinl = 1", "E0158@ W0159@"},
        {V::v4, "Model_type Output\nVinl = 1\nVinh = 2\nVinh = 2", "W0159@ W0161@ W0161@"},
        {V::v4, "Model_type I/O_diff\nVinh = 2", "W0161@"},
        {V::v4, "Vmeas = 1\nModel_type Input\nVmeas = 1", "W0166@"},
        {V::v4, "Vmeas = 1\nModel_type I/O\nVmeas = 1", "E0119@"},
        {V::v4, "Model_type bad\nVmeas = 1\nRref = 1\nCref_diff = 1", "E0158@ W0163@"},
        {V::v4, "Rref_diff = 1\nModel_type I/O\nRref_diff = 1", "W0165@"},
        {V::v4, "Model_type Input_diff\nCref_diff = 1\nVmeas = 1\nCref = 1\nRref = 1\nVref = 1",
         "W0163@ W0166@ W0167@ W0168@ W0169@"},
        {V::v3, "Model_type I/O\nRref_diff = 1\nCref_diff = 1", "E0164@ E0162@"},
        {V::v3, "C_comp_pullup 1\nC_comp_pulldown 1\nC_comp_power_clamp 1\nC_comp_gnd_clamp 1",
         "E0170@ E0171@ E0172@ E0173@"},
        // single values
        {V::v4, "Model_type Input\nVinl 0.8\nVinl = 0.8", "E0176@ E0119@"},
        {V::v4, "Model_type Input\nVinl =\nVinh", "E0176@ E0176@"},
        {V::v4, "Model_type Input\nVinl 0.8 V", "E0176@"},
        {V::v4, "Model_type Input\nVinl 0.8 V more", "E0137@ E0176@"},
        {V::v4, "Model_type Input\nVinl = 0.8 more\nVinh = 2/3", "E0137@ E0149@"},
        {V::v4, "Model_type Input\nVinl=1.5n3\nVinh=2.0V", ""},
        // ranges: one of which a cell does not read is not stored
        {V::v4, "C_comp 5p 4p 6p\nC_comp 5p 4p 6p", "E0119@"},
        {V::v4, "C_comp\nC_comp 5p 4p 6p", "E3902@ E0119@"},
        {V::v4, "C_comp x 4p 6p\nC_comp 5p 4p 6p", "E1909@"},
        {V::v4, "C_comp = 5p 4p 6p", "E3902@ E1909@"},
        {V::v4, "C_comp 5p", "E3901@ E3901@"},
        {V::v4, "C_comp 5p6 NA NA", "W1910@"},
        {V::v4, "C_comp NA x 2p", "E1909@"},
        {V::v4, "C_comp NA 1p 2p\nC_comp 1p 1p 1p", "E0178@ E0119@"},
        {V::v4, "C_comp 5p 5p 5p\nC_comp_pullup 5p NA NA", ""},
        {V::v4, "C_comp 5p 6p 6p", "W0177@"},
        {V::v4, "C_comp 5p 4p 4p", "W0179@"},
        {V::v4, "C_comp 5p 3p 2p", "W0177@ W0179@"},
        {V::v4, "C_comp 5p NA 4p\nC_comp_pullup 5p 6p NA", "W0179@ W0177@"},
        {V::v4, "C_comp NA 2p 1p", "E0178@ W0177@ W0179@"},
    };
    for (const Row& row : rows) {
        Reading reading(row.version);
        EXPECT_EQ(reading.read("[Model] m").read(row.lines).codes(), row.codes) << row.lines;
    }
}

TEST(Model, keepsWhatItsLinesGive) {
    Reading reading(V::v4);
    reading.read(
        "[Model] m\nVinl = 9\nModel_type I/O_open_sink\nPolarity Inverting\nEnable Active-Low\nVinl 1\n"
        "Vinh = 2.0V\nVmeas=1.5 x\nCref = 5k\nRref = x\nVref_diff = 1\nC_comp 5p 4p NA\n"
        "C_comp_gnd_clamp\n[Voltage Range] 3.3 x 3.6\n[TTpower] -1n NA NA\n[GND Clamp Reference] 0 0 0");
    const Mdl& model = reading.newest();
    const MdlValues& values = *model.values;
    EXPECT_EQ(values.model_type, ModelType::ioOpenSink);
    EXPECT_EQ(values.polarity, Polarity::inverting);
    EXPECT_EQ(values.enable, EnableMode::activeLow);
    EXPECT_EQ(values.vinl.value_or(-1.0), 0.0); // given, without a value
    EXPECT_EQ(values.vinh.value_or(-1.0), 2.0);
    EXPECT_EQ(values.vmeas.value_or(-1.0), 1.5);
    EXPECT_EQ(values.cref.value_or(-1.0), 5000.0);
    EXPECT_EQ(values.rref.value_or(-1.0), 0.0);
    EXPECT_FALSE(values.vref);
    EXPECT_DOUBLE_EQ(values.c_comp->min().value(), 4e-12);
    EXPECT_EQ(values.c_comp->max().state(), CellState::na);
    EXPECT_EQ(values.c_comp_gnd_clamp->typ().state(), CellState::missing);
    EXPECT_EQ(findRange(model, MdlRange::voltageRange), nullptr);
    ASSERT_NE(findRange(model, MdlRange::ttpower), nullptr);
    EXPECT_DOUBLE_EQ(findRange(model, MdlRange::ttpower)->typ().value(), -1e-9);
    EXPECT_NE(findRange(model, MdlRange::gndClampReference), nullptr);
}

TEST(Model, names) {
    const std::string n20(20, 'n');
    const std::string n40(40, 'n');
    const struct {
        V version;
        std::string line;
        std::string_view codes;
        std::string name;
    } rows[] = {
        {V::v4, "[Model]", "E0128@", ""},
        {V::v4, "[Model] a b c", "E0128@", "a"},
        {V::v3, "[Model] " + n20, "E0131@", n20},
        {V::v3, "[Model] " + n20 + "n", "E0129@", n20},
        {V::v4, "[Model] " + n40, "", n40},
        {V::v5, "[Model] " + n40 + "n", "E0129@", n40},
        {V::v4, "[Model] Gnd", "E0130@ E0131@", "Gnd"},
        {V::v4, "[Model] gnd", "E0130@", "gnd"},
    };
    for (const auto& row : rows) {
        Reading reading(row.version);
        reading.read("[Model] Gnd\nModel_type Input\n[Model] " + n20 + "\nModel_type Input\n[End]");
        reading.codes();
        EXPECT_EQ(reading.read(row.line).codes(), row.codes) << row.line;
        EXPECT_EQ(reading.newest().name, row.name) << row.line;
        // Of models of one name the last one is meant.
        EXPECT_TRUE(row.name.empty() || reading.root.models.find(row.name) == &reading.newest()) << row.line;
    }
}

TEST(Model, keywordsThatTwoOthersShouldPrecede) {
    const struct {
        std::string_view lines;
        bool after_spec;
        bool after_thresholds;
        std::string_view type = "I/O";
    } rows[] = {
        {"[Temperature Range] 1 1 1", true, true},
        {"[Voltage Range] 1 1 1", true, true},
        {"[Voltage Range] x", false, false}, // not stored
        {"[Pullup Reference] 1 1 1", true, true},
        {"[Pulldown Reference] 1 1 1", true, true},
        {"[POWER Clamp Reference] 1 1 1", true, true},
        {"[GND Clamp Reference] 1 1 1", true, true},
        {"[External Reference] 1 1 1", false, false},
        {"[TTgnd] 1 1 1", true, true},
        {"[TTpower] 1 1 1", true, true},
        {"[Driver Schedule]", true, true},
        {"[Pullup]", true, true},
        {"[Pulldown]", true, true},
        {"[POWER Clamp]", true, true},
        {"[GND Clamp]", true, true},
        {"[Rgnd] 1 1 1", true, true},
        {"[Rpower] 1 1 1", true, true},
        {"[Rac] 1 1 1", true, true},
        {"[Cac] 1 1 1", true, true},
        {"[Ramp]", true, true},
        {"[Rising Waveform]", true, true},
        {"[Falling Waveform]", true, true},
        {"[Add Submodel]", true, false},
        {"[Receiver Thresholds]", true, false},
        {"[Model Spec]", false, false},
        {"[ISSO PD]", true, false},
        {"[ISSO PU]", true, false},
        {"[C Comp Corner]", false, false},
        {"[External Model]\n[End External Model]", false, false},
        {"[Algorithmic Model]\n[End Algorithmic Model]", false, false},
        {"[Begin EMI Model]\n[End EMI Model]", false, false},
        {"[R Series] 1 1 1\n[Series Current]", false, false, "Series"},
        {"[On]\n[R Series] 1 1 1\n[Off]", false, false, "Series_switch"},
    };
    for (const auto& row : rows) {
        const std::string lines = "[Model] m\nModel_type "s.append(row.type).append("\n").append(row.lines);
        const auto says = [&lines](std::string_view keyword, std::string_view code) {
            return Reading(V::v5).read(lines).read(keyword).codes().find(code) != std::string::npos;
        };
        EXPECT_EQ(says("[Model Spec]", "E0116@"), row.after_spec) << row.lines;
        EXPECT_EQ(says("[Receiver Thresholds]", "E0120@"), row.after_thresholds) << row.lines;
    }
}

/// The codes of the lines of a model, before it ends.
std::string codesOf(std::string_view type, std::string_view lines) {
    return Reading(V::v4).read("[Model] m\nModel_type "s.append(type)).read(lines).codes();
}

TEST(Model, keywordLines) {
    const struct {
        std::string_view type;
        std::string_view lines;
        std::string_view codes;
    } rows[] = {
        {"Input", "[Voltage Range] 3 2 4\ntext\n[Voltage Range] 3 2 4", "E0121@ E0119@"},
        {"Input", "[Voltage Range]\n[Rac] NA 1 2", "E3902@ E0178@"},
        {"Input", "[Voltage Range] 3 x 4\n[Voltage Range] 3 5 6", "E1909@"},
        {"Input", "[TTgnd] 0 0 0\n[TTpower] NA -1 1", "E0178@ E0113@"},
        {"Input", "[TTgnd] -1 NA NA\n[TTpower] -1n -2n -3n", "E0108@ E0112@ E0113@ E0114@"},
        {"Input", "[TTgnd] -1 -2 -3", "E0108@ E0109@ E0110@"},
        {"Input", "[External Model]\n[End External Model]\n[External Model]", "E1823 E1824 E1825 E0119@"},
        {"Output", "[Voltage Range] 3 2 4\n[Receiver Thresholds]\nVth = 1", "E0120@ W0117@"},
        {"Output_diff", "[Receiver Thresholds]", "W0117@"},
        {"wrong", "[Receiver Thresholds]", "E0158@ W0117@"},
        {"I/O_ECL", "[Receiver Thresholds]", ""},
        // series sections
        {"Input", "[R Series] 1 1 1\ntext", "E0206@ E0121@"},
        {"Input", "[Series Current]\n0 0 0 0\n1 1 1 1\n[Series MOSFET]\nVds = 1", "E0206@ E0206@ E0206@ E0206@ E0206@"},
        {"Input", "[Off]\n[On]\ntext", "E0205@ E0205@ E0121@"},
        {"Series", "[On]\n[R Series] 1 1 1\n[Voltage Range] 3 2 4", "E0205@"},
        {"Series", "[R Series] 1 1 1\n[R Series] 1 1 1\n[Rc Series] NA 1 1", "E0119@ E0178@"},
        {"Series", "[Series Current]\n0 0 0 0\n1 1 1 1\n[Series Current]", "E1100@"},
        {"Series", "[Series Current]\n[R Series] 1 1 1", "E1108"},
        {"Series_switch", "[R Series] 1 1 1\n[R Series] 1 1 1\n[Pullup Reference] 3 2 4", "E0207@ E0119@ E0204@"},
        {"Series_switch", "[On]\ntext\n[R Series] 1 1 1\n[Off]\n[R Series] 1 1 1\n[Lc Series] 1 1 1", "E0121@"},
        {"Series_switch", "[On]\n[R Series] 1 1 1\n[On]\n[R Series] 1 1 1", "E2901@"},
        {"Series_switch", "[R Series] 1 1 1\n[On]", "E0207@ E2901@"}, // an assumed section counts
        {"Series_switch",
         "[Voltage Range] 1 1 1\n[Off]\n[Voltage Range] 1 1 1\n[Temperature Range] 1 1 1\n[Pullup Reference] 1 1 1\n"
         "[Pulldown Reference] 1 1 1\n[POWER Clamp Reference] 1 1 1\n[GND Clamp Reference] x 1 1\n"
         "[External Reference] 1 1 1\n[Rgnd] 1 1 1",
         "E0119@ E0204@ E0204@ E0204@ E0204@ E0204@ E1909@"},
        // added submodels
        {"Input", "[Add Submodel] now\na All\n[Add Submodel]", "E0137@ E0208@"},
        {"Series", "[Add Submodel]", "E0209@"},
        {"Series_switch", "[Add Submodel]\n[Add Submodel] now", "E0209@ E0208@ E0137@ E0209@"},
        {"Input", "[Add Submodel]\na\nPower Driving more\nb driving\nc Never\nd No Mode",
         "E0215@ E0210@ E0213@ E0216@ E0136@ E0158@ E0210@ E0158@"},
        {"Input", "[Add Submodel]\nabcdefghijklmnopqrstuvwxyzabcdefghijklmnop Non-Driving", "E0212@"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(codesOf(row.type, row.lines), row.codes) << row.type << "\n" << row.lines;
}

TEST(Model, whatEachTypeAdmitsAndNeeds) {
    const struct {
        std::string_view type;
        bool thresholds;        // "Vinl"
        bool load;              // "Vmeas"
        bool diff_load;         // "Rref_diff"
        bool both;              // "Vmeas" is compared with the thresholds
        std::string_view modes; // what is said of an added submodel that acts while driving, then of one that does not
        std::string_view pulls; // severity of missing pull references
        std::string_view lacks; // what else a model without keywords is told
    } rows[] = {
        {"Input", true, false, false, false, "E0216@", "W", ""},
        {"Output", false, true, true, false, "E0217@", "E", " E0190 W0201"},
        {"I/O", true, true, true, true, "", "E", " E0190 W0201"},
        {"3-state", false, true, true, false, "", "E", " E0190 W0201"},
        {"Open_drain", false, true, true, false, "E0217@", "E", " E0190 W0200"},
        {"I/O_open_drain", true, true, true, true, "", "E", " E0190 W0200"},
        {"Open_sink", false, true, true, false, "E0217@", "E", " E0190 W0200"},
        {"I/O_open_sink", true, true, true, true, "", "E", " E0190 W0200"},
        {"Open_source", false, true, true, false, "E0217@", "E", " E0190 W0200"},
        {"I/O_open_source", true, true, true, true, "", "E", " E0190 W0200"},
        {"Input_ECL", true, false, false, false, "E0216@", "W", ""},
        {"Output_ECL", false, true, true, false, "E0217@", "E", " E0190 W0200"},
        {"I/O_ECL", true, true, true, true, "", "E", " E0190 W0200"},
        {"Terminator", false, false, false, false, "E0216@", "E", ""},
        {"Series", false, false, false, false, "E0209@", "E", ""},
        {"Series_switch", false, false, false, false, "E0209@", "E", " E0193 E0194"},
        {"3-state_ECL", false, true, true, false, "", "E", " E0190 W0200"},
        {"I/O_diff", false, true, true, false, "", "E", " E0190 W0202 C1829"},
        {"Output_diff", false, true, true, false, "", "E", " E0190 W0202 C1829"},
        {"3-state_diff", false, true, true, false, "", "E", " E0190 W0202 C1829"},
        {"Input_diff", false, false, false, false, "", "E", " C1829"},
    };
    for (const auto& row : rows) {
        const auto said = [&row](std::string_view lines) { return codesOf(row.type, lines); };
        EXPECT_EQ(said("Vinl = 1"), row.thresholds ? "" : "W0159@") << row.type;
        EXPECT_EQ(said("Vmeas = 1"), row.load ? "" : "W0166@") << row.type;
        EXPECT_EQ(said("Rref_diff = 1"), row.diff_load ? "" : "W0165@") << row.type;
        EXPECT_EQ(said("[Add Submodel]\na Driving\na Non-Driving\na All"), row.modes) << row.type;
        EXPECT_EQ(said("Vinl = 1\nVinh = 1\nVmeas = 1\n[Ramp]").find("C0182 C0183") != std::string::npos, row.both)
            << row.type;
        const std::string pull = std::string(row.pulls).append("0188 ");
        EXPECT_EQ(said("C_comp 1p NA NA\n[End]"),
                  (row.thresholds ? "W0184 W0184 "s : ""s).append(pull + pull + "E0188 E0188").append(row.lacks))
            << row.type;
        Reading reading(V::v4);
        reading.read("[Model] m\nModel_type "s.append(row.type));
        EXPECT_EQ(modelTypeText(reading.newest().type()), row.type);
    }
}

TEST(Model, seriesKeywordsFillTheirSection) {
    Reading reading(V::v4);
    reading.read(
        "[Model] m\nModel_type Series_switch\n[L Series] 2n 1n 3n\n[Off]\n[Rl Series] 3 NA NA\n"
        "[Lc Series] 4n NA NA\n[Series Current]\n0 0 0 0\n1 1 1 1");
    const Mdl& model = reading.newest();
    ASSERT_TRUE(model.on_block && model.off_block);
    EXPECT_DOUBLE_EQ(model.on_block->l_series->max().value(), 3e-9);
    EXPECT_FALSE(model.on_block->rl_series || model.on_block->series_current);
    EXPECT_EQ(model.off_block->rl_series->typ().value(), 3.0);
    EXPECT_DOUBLE_EQ(model.off_block->lc_series->typ().value(), 4e-9);
    EXPECT_FALSE(model.off_block->rc_series);
    EXPECT_EQ(model.off_block->series_current.rows.size(), 2U);
    // The next model has sections of its own.
    reading.read("[Model] n\nModel_type Series\n[Rl Series] 5 NA NA");
    ASSERT_TRUE(reading.newest().on_block);
    EXPECT_EQ(reading.newest().on_block->rl_series->typ().value(), 5.0);
}

constexpr std::string_view kRamp = "[Ramp]\ndV/dt_r 1/1n 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n";
constexpr std::string_view kVoltage = "[Voltage Range] 3 2 4\n";

TEST(Model, whatACompleteModelHas) {
    const std::string whole = std::string(kVoltage).append(kRamp);
    const std::string c_comp = "\nC_comp 1p 1p 1p\n";
    const struct {
        std::string lines;
        std::string_view codes;
    } rows[] = {
        {"[End]", "E0180 E0181 E0188 E0188 E0188 E0188 E0190"},
        {"Model_type wrong\n[End]", "E0158@ E0181 E0188 E0188 E0188 E0188 E0190"},
        {"[Rgnd] 1 1 1\n" + whole + "[End]", "E0180 E0181 E0185"},
        // the sections before the model: the last one's close, the schedule, then the model
        {"Model_type 3-state" + c_comp + whole + "[Driver Schedule]\n[Pullup]\n[End]", "E1108 E4205 W0201"},
        {"Model_type 3-state" + c_comp + whole + "[Driver Schedule]\n[Model] n", "E4205 W0201"},
        // capacitance
        {"Model_type Input_diff\nC_comp_gnd_clamp NA 1 1\n" + whole + "[End]", "E0178@ C1829"},
        {"Model_type Input_diff\n" + whole + "[External Model]\n[End External Model]\n[End]", "E1823 E1824 E1825"},
        {"Model_type Input_diff\n" + whole + "[C Comp Corner]\n[End]", "E5009 E0181 C1829"},
        // thresholds
        {"Model_type Input\nVinl = 1" + c_comp + "[Pulldown Reference] 0 0 0\n[GND Clamp Reference] 0 0 0\n[End]",
         "W0184 W0188 E0188"},
        {"Model_type Input_ECL" + c_comp + "[Receiver Thresholds]\n[End]", "W0188 W0188 E0188 E0188"},
        // terminators
        {"Model_type Input_diff" + c_comp + whole + "[Rpower] 1 1 1\n[Cac] 1 1 1\n[End]", "E0185 E0185 E0186 C1829"},
        {"Model_type Terminator" + c_comp + whole + "[Rpower] 1 1 1\n[Rac] 1 1 1\n[End]", "E0187"},
        {"Model_type Terminator" + c_comp + whole + "[Rac] 1 1 1\n[Cac] 1 1 1\n[Rgnd] 1 1 1\n[End]", ""},
        // ramp
        {"Model_type Output\nVmeas = 1" + c_comp + std::string(kVoltage) + "[End]", "E0190"},
        {"Model_type Series" + c_comp + whole + "[End]", "E0189"},
        // series models
        {"Model_type Series\n[Model Spec]\n[Voltage Range] 3 2 4\n[Driver Schedule]\n[TTgnd] 1 1 1\n[End]",
         "W3809 E4205 E0181 E0191 E0191 W0191"},
        {"Model_type Series_switch" + c_comp + "[Model Spec]\n" + std::string(kVoltage) + "[TTpower] 1 1 1\n[End]",
         "W3809 E0192 W0192 E0193 E0194"},
        {"Model_type Series_switch" + c_comp + std::string(kVoltage) + "[R Series] 1 1 1\n[End]", "E0207@ E0194"},
        {"Model_type Series_switch" + c_comp + std::string(kVoltage) + "[On]\n[Off]\n[End]", "W2904"},
        {"Model_type Series_switch\n" + std::string(kVoltage) + "[On]\n[Off]\n[External Model]\n[End]",
         "E1827@ E1823 E1824 E1825"},
        // test loads
        {"Model_type I/O\nVinl = 1\nVinh = 2\nVref = 1\nRref = 50" + c_comp + whole + "[End]", "W0201"},
        {"Model_type Output" + c_comp + "[Model Spec]\n" + whole + "[End]", "W3809 W0201"},
        {"Model_type Output" + c_comp + "[Model Spec]\nVmeas 1 NA NA\n" + whole + "[End]", ""},
        {"Model_type Open_sink\nVmeas = 1" + c_comp + "[Model Spec]\nVref 1 NA NA\n" + whole + "[End]", "W0200"},
        {"Model_type Open_sink\nVmeas = 1" + c_comp + "[Model Spec]\nVref 1 NA NA\nRref 1 NA NA\n" + whole + "[End]",
         ""},
        {"Model_type Output\nVmeas 1" + c_comp + whole + "[End]", "E0176@"}, // given without a value
        {"Model_type Open_sink\nVmeas = 1\nRref = 1" + c_comp + whole + "[End]", "W0200"},
        {"Model_type 3-state_ECL\nVref = 1\nRref = 1" + c_comp + whole + "[End]", "W0200"},
        {"Model_type Output_ECL\nVmeas = 1\nRref = 1\nVref = 1" + c_comp + whole + "[End]", ""},
        {"Model_type 3-state_diff\nCref_diff = 1p" + c_comp + whole + "[End]", "C1829"},
        // measuring voltage between the thresholds
        {"Model_type I/O\nVinl = 1.5\nVinh = 1.5\nVmeas = 1.5" + c_comp + whole + "[End]", "C0182 C0183"},
        {"Model_type I/O\nVinl = 1.4\nVinh = 1.6\nVmeas = 1.5" + c_comp + whole + "[End]", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Reading(V::v4).read("[Model] m").read(row.lines).codes(), row.codes) << row.lines;
}

/// A model that is right, for what follows it to go wrong in.
constexpr std::string_view kTerminator =
    "[Model] m\nModel_type Terminator\nC_comp 5p 4p 6p\nC_comp_pullup 5p NA 6p\n[Voltage Range] 3 2 4";

TEST(Model, cornersBesideTheModelsOwnCapacitances) {
    const struct {
        std::string_view lines;
        std::string_view codes;
    } rows[] = {
        {"C_comp 5p 6p 4p", ""},
        {"C_comp 5p 6.000001p NA", ""}, // within a millionth
        {"C_comp 5p 6.1p NA", "C5011"},
        {"C_comp 3.9p NA NA", "C5011"},
        {"C_comp 5p 3.9999999p 6.1p", "C5011"},
        {"C_comp_pullup 9p NA NA", ""}, // its own minimum is not known
        {"C_comp_pulldown 1p 1p 1p", "C5010"},
    };
    for (const auto& row : rows) {
        Reading reading(V::v5);
        reading.read(kTerminator).read("[C Comp Corner]").read(row.lines).read("[End]");
        EXPECT_EQ(reading.codes(), row.codes) << row.lines;
    }
}

TEST(Model, supplyTablesReachToTheSupplyOnBothSides) {
    const struct {
        std::string_view rows;
        std::string_view codes;
    } rows[] = {
        {"3 1 NA NA\n-3 1 NA NA", ""},
        {"-4 1 NA NA\nNA 1 NA NA\n4 1 NA NA", "E1106@"},
        {"-2.9 1 NA NA\n3 1 NA NA", "C1503"},
        {"-3 1 NA NA\n2.9 1 NA NA", "C1503"},
    };
    for (const auto& row : rows) {
        Reading reading(V::v5);
        reading.read("[Model] m\nModel_type Output\nVmeas = 1\nC_comp 5p 4p 6p\n[Voltage Range] 3 2 4")
            .read("[Pulldown]\n0 0 NA NA\n1 1 NA NA\n[Ramp]\ndV/dt_r 1/1n NA NA\ndV/dt_f 1/1n NA NA\n[ISSO PD]")
            .read(row.rows)
            .read("[End]");
        EXPECT_EQ(reading.codes(), row.codes) << row.rows;
    }
}

TEST(Model, rampsAndCurrentsAgainstWaveforms) {
    const std::string wave = "R_fixture = 50\nV_fixture = 0\n";
    const struct {
        std::string lines;
        std::string_view codes;
    } rows[] = {
        // from 20 to 80 percent a straight line of 1 ns takes 0.6 ns
        {"[Ramp]\ndV/dt_r 1/2.9n NA NA\ndV/dt_f 1/9n NA NA\n[Rising Waveform]\n" + wave + "0 0 NA NA\n1n 1 NA NA", ""},
        {"[Ramp]\ndV/dt_r 1/3.1n NA NA\ndV/dt_f 1/9n NA NA\n[Rising Waveform]\n" + wave + "0 0 NA NA\n1n 1 NA NA",
         "C1709"},
        {"[Ramp]\ndV/dt_r 1/9n NA NA\ndV/dt_f 1/0.11n NA NA\n[Falling Waveform]\n" + wave + "0 1 NA NA\n1n 0 NA NA",
         "C1709"},
        // one waveform that agrees is enough; one that does not move says nothing
        {"[Ramp]\ndV/dt_r 1/9n NA NA\ndV/dt_f 1/1n NA NA\n[Rising Waveform]\n" + wave +
             "0 0 NA NA\n1n 1 NA NA\n[Rising Waveform]\n" + wave + "0 0 NA NA\n1n 0 NA NA\n5n 0.1 NA NA\n9n 1 NA NA",
         ""},
        {"[Ramp]\ndV/dt_r 1/9n NA NA\ndV/dt_f 1/1n NA NA\n[Rising Waveform]\n" + wave + "0 1 NA NA\n1n 1 NA NA", ""},
        // time points
        {"[Rising Waveform]\n" + wave + "0 0 NA NA\n1n 1 NA NA\n[Composite Current]\n0 1m NA NA\n1n 2m NA NA", ""},
        {"[Rising Waveform]\n" + wave + "0 0 NA NA\n1n 1 NA NA\n[Composite Current]\n0 1m NA NA\n2n 2m NA NA\n" +
             "[Falling Waveform]\n" + wave + "0 1 NA NA\n1n 0 NA NA\n[Composite Current]\n0 1m NA NA\n1n 2m NA NA\n" +
             "2n 2m NA NA",
         "C2021 C2021"},
    };
    for (const auto& row : rows) {
        Reading reading(V::v5);
        reading.read("[Model] m\nModel_type Output\nVmeas = 1\nC_comp 5p 4p 6p").read(row.lines).read("[Rgnd] x");
        reading.codes();
        checkCompositeCurrents(reading.run, reading.root);
        EXPECT_EQ(reading.codes(), row.codes) << row.lines;
    }
}

TEST(Model, currentsGoToTheLastWaveformWhateverStandsBetween) {
    const std::string wave = "R_fixture = 50\nV_fixture = 0\n0 0 NA NA\n1n 1 NA NA\n";
    Reading reading(V::v5);
    reading.read("[Model] m\nModel_type Output\nVmeas = 1\nC_comp 5p 4p 6p")
        .read("[Rising Waveform]\n" + wave + "[Falling Waveform]\n" + wave + "[Ramp]\ndV/dt_r 1/1n NA NA")
        .read("dV/dt_f 1/1n NA NA\n[Composite Current]\n0 1m NA NA\n1n 2m NA NA\n[Rising Waveform]\n" + wave +
              "[Voltage Range] 3 NA NA")
        .read("[Composite Current]\n0 1m NA NA\n1n 2m NA NA\n2n 1m NA NA");
    EXPECT_EQ(reading.codes(), "");
    const Mdl& model = reading.newest();
    EXPECT_FALSE(model.tables->rising_waveforms[0].composite_current);
    ASSERT_TRUE(model.tables->falling_waveforms[0].composite_current);
    EXPECT_EQ(model.tables->falling_waveforms[0].composite_current->rows.size(), 2U);
    ASSERT_TRUE(model.tables->rising_waveforms[1].composite_current);
    EXPECT_EQ(model.tables->rising_waveforms[1].composite_current->rows.size(), 3U);
}

TEST(Model, thresholdsThatBeginASet) {
    constexpr std::string_view kSix = " E3216 E3216 E3216 E3216 E3216 E3216";
    const struct {
        std::string_view lines;
        std::string codes;
    } rows[] = {
        // the line of the pair is refused, so that only the others tell what is meant
        {"Vcross_low 1\nReference_supply Ext_ref", "E3208@ C3218"},
        {"Vcross_low 1\nVth_min = 1", "E3208@"s.append(kSix)},
        {"Vcross_low 1\nVth_max = 1", "E3208@"s.append(kSix)},
        {"Vcross_low 1\nReference_supply=Ext_ref\nThreshold_sensitivity = 1", "E3208@"s.append(kSix)},
        {"Vcross_low = 1\nVth_min = 1", "E3216 E3216 E3216 E3216"},
    };
    for (const auto& row : rows) {
        Reading reading(V::v4);
        reading.read("[Model] m\nModel_type Input\n[Receiver Thresholds]").read(row.lines);
        checkRcvTh(reading.run, *reading.newest().receiver_thresholds, "m");
        EXPECT_EQ(reading.codes(), row.codes) << row.lines;
    }
}

TEST(Model, linesOutsideAModel) {
    EXPECT_EQ(Reading(V::v4).read("[Pullup]\n0 0 0 0").codes(), "E0102@ E0107@");
    EXPECT_EQ(Reading(V::v4).read("[Model] m\nModel_type Terminator\nC_comp 1\n[Component] c\n[Ramp]").codes(),
              "E3901@ E3901@ E0188 E0188 E0188 E0188 E0102@");
}

TEST(EmiModels, keepTheFirstWords) {
    Reading reading(V::v5);
    reading.read(
        "[Model] M\n[Begin EMI Model]\nModel_emi_type Ferite\nModel_emi_type Not_a_ferrite\n"
        "[End EMI Model]\n[Begin EMI Model]\nModel_emi_type Ferrite\nModel_Domain Analog");
    ASSERT_TRUE(reading.newest().emi_model);
    EXPECT_EQ(reading.newest().emi_model->type, EmiType::notFerrite);
    EXPECT_EQ(reading.newest().emi_model->domain, EmiDomain::analog);
}

} // namespace
} // namespace kestrel
