// The library as programs see it: nothing is included but its public header.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <kestrel/kestrel.hpp>

#include <gtest/gtest.h>

namespace {

/// How many requests for memory of this thread are granted before one is refused; below zero for all.
thread_local long requests_left = -1;

} // namespace

// Not inlined: g++ takes the pieces for a mismatch of operators where it sees into some of them.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (requests_left == 0) {
        requests_left = -1;
        throw std::bad_alloc();
    }
    if (requests_left > 0) --requests_left;
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
    return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace {

using namespace kestrel::api;

/// A file with a correct header ahead of `text`, and "[End]" behind it.
std::string whole(const std::string& name, const std::string& text, const std::string& version = "5.1") {
    return "[IBIS Ver] " + version + "\n[File Name] " + name + "\n[File Rev] 1.0\n[Date] March 1, 2026\n" + text +
           "[End]\n";
}

const std::string kPackaged =
    "[Manufacturer] Ours\n"
    "[Package]\n"
    "R_pkg 50m 40m NA\n"
    "L_pkg 3n NA NA\n"
    "C_pkg 1p NA NA\n";
const std::string kComponent = "[Component] Chip\n" + kPackaged;

/// A package model of two pins with a resistance alone.
std::string package(const std::string& name) {
    return "[Define Package Model] " + name +
           "\n[Manufacturer] Ours\n[OEM] Others\n[Description] two pins\n[Number Of Pins] 2\n[Pin Numbers]\n1\n2\n"
           "[Model Data]\n[Resistance Matrix] Full_matrix\n[Row] 1\n50m 1m\n[Row] 2\n60m\n"
           "[Inductance Matrix] Full_matrix\n[Row] 1\n3n 0\n[Row] 2\n3n\n"
           "[Capacitance Matrix] Full_matrix\n[Row] 1\n1p 0\n[Row] 2\n1p\n[End Model Data]\n[End Package Model]\n";
}

/// What a test says of a finding.
std::string place(const Finding& finding) {
    return std::string(levelName(finding.level)) + " " + std::string(finding.code) + " " + std::string(finding.file) +
           ":" + std::to_string(finding.line) + (finding.exact ? "! " : " ") + std::string(finding.kind) + " " +
           std::string(finding.subject);
}

std::vector<std::string> places(const File& file) {
    std::vector<std::string> all;
    for (const Finding& finding : file.findings())
        all.push_back(place(finding));
    return all;
}

bool has(const std::vector<std::string>& texts, const std::string& text) {
    return std::ranges::find(texts, text) != texts.end();
}

/// Everything that a file has, walked to its end: what it says depends on nothing else.
std::string walk(const File& file) {
    std::string all;
    const auto add = [&all](std::string_view text) { all.append(text).append(";"); };
    const auto add_number = [&all](double value) {
        all.append(std::isnan(value) ? "-" : std::to_string(value)) += ';';
    };
    const auto add_table = [&](const Table& table) { std::ranges::for_each(table.values(), add_number); };
    for (const Finding& finding : file.findings()) {
        add(place(finding));
        add(finding.text);
    }
    for (const Component& component : file.components()) {
        add(component.name);
        for (const Pin& pin : component.pins) {
            add(pin.name);
            add(pin.model);
            add_number(pin.r_pin);
        }
    }
    for (const Model& model : file.models()) {
        add(model.name);
        add(model.type);
        add_table(model.pulldown);
        for (const Waveform& waveform : model.rising_waveforms)
            add_table(waveform.table);
        for (const NamedCorners& one : model.model_spec)
            add(one.name);
    }
    for (const PackageModel& one : file.packageModels()) {
        add(one.name);
        for (const MatrixRow& row : one.inductance.rows)
            for (const MatrixEntry& entry : row.entries)
                add_number(static_cast<double>(entry.column) + entry.value);
    }
    return all;
}

void expectCorners(const Corners& corners, double typ, double min, double max) {
    const auto same = [](double a, double b) {
        return (std::isnan(a) && std::isnan(b)) || std::fabs(a - b) <= 1e-12 * std::fabs(b);
    };
    EXPECT_TRUE(same(corners.typ, typ) && same(corners.min, min) && same(corners.max, max))
        << corners.typ << " " << corners.min << " " << corners.max;
}

constexpr double kNone = kNotGiven;

TEST(Library, findings) {
    const std::string text = "[IBIS Ver] 5.1\n[File Name] a.ibs\n[File Rev] 1.0\n[Nonsense]\n" + kComponent +
                             "[Pin] signal_name model_name\n1 CK ck\n[Model] ck\nModel_type Inputt\nVinl = 0.8\n";
    const File file = readText("a.ibs", text);
    EXPECT_EQ(file.name(), "a.ibs");
    EXPECT_TRUE(file.isRead());
    EXPECT_TRUE(file.isChecked());
    EXPECT_FALSE(file.hasPassed());
    const std::vector<std::string> found = places(file);
    EXPECT_TRUE(has(found, "error 916 a.ibs:4!  ")) << walk(file); // an unknown keyword
    EXPECT_TRUE(has(found, "error 903 a.ibs:1  ")) << walk(file);  // no [End]
    const Counts counts = file.counts();
    EXPECT_EQ(counts.bugs + counts.errors + counts.warnings + counts.notes, found.size());
    EXPECT_EQ(counts.errors, static_cast<std::size_t>(std::ranges::count_if(
                                 found, [](const std::string& one) { return one.starts_with("error"); })));
    const auto about_model =
        std::ranges::find_if(file.findings(), [](const Finding& one) { return one.kind == "model"; });
    ASSERT_NE(about_model, file.findings().end());
    EXPECT_EQ(about_model->subject, "ck");
    EXPECT_GE(about_model->line, 13U);
    EXPECT_NE(about_model->text.find("Inputt"), std::string_view::npos) << about_model->text;
    // A text has no end of a line, as kestrel's form of this one has.
    const File repeated = readText("a.ibs", "[IBIS Ver] 4.2\n[File Name] a.ibs\n[IBIS Ver] 4.2\n[End]\n");
    EXPECT_TRUE(std::ranges::any_of(repeated.findings(), [](const Finding& one) {
        return one.text == "IBIS_Version must be first keyword.";
    })) << walk(repeated);
}

TEST(Library, sampleFromTheDisk) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const File file = read(std::string(KESTREL_EXAMPLES_DIR) + "/board.ibs");
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(file.hasPassed());
    EXPECT_TRUE(file.findings().empty());
    EXPECT_EQ(file.header().file_name, "board.ibs");
    EXPECT_EQ(file.header().ibis_version, "4.2");
    EXPECT_EQ(file.header().copyright, "");
    ASSERT_EQ(file.components().size(), 1U);
    ASSERT_EQ(file.models().size(), 3U);
    EXPECT_EQ(file.models()[0].name, "clk_in"); // in the order of the file
    EXPECT_EQ(file.models()[2].name, "irq_od");

    const Model model = file.model("dq_io").value();
    EXPECT_EQ(model.type, "I/O");
    EXPECT_EQ(model.polarity, "Non-Inverting");
    EXPECT_EQ(model.enable, "Active-Low");
    EXPECT_DOUBLE_EQ(model.cref, 30e-12);
    EXPECT_TRUE(std::isnan(model.cref_diff));
    expectCorners(model.temperature_range, 25, 85, 0);
    expectCorners(model.pullup_reference, kNone, kNone, kNone);
    EXPECT_FALSE(model.pullup_reference.given());
    ASSERT_EQ(model.pullup.size(), 13U);
    EXPECT_DOUBLE_EQ(model.pullup[11][0], 3.3);
    EXPECT_DOUBLE_EQ(model.pullup[11][3], -60.5e-3); // the maximum
    EXPECT_EQ(model.pullup.values().size(), 52U);
    EXPECT_TRUE(model.gnd_clamp.empty());
    EXPECT_DOUBLE_EQ(model.ramp.dv_f.min, 0.94);
    EXPECT_DOUBLE_EQ(model.ramp.dt_r.max, 0.55e-9);
    ASSERT_EQ(model.falling_waveforms.size(), 2U);
    EXPECT_DOUBLE_EQ(model.falling_waveforms[1].v_fixture_max, 3.6);
    EXPECT_TRUE(std::isnan(model.falling_waveforms[1].c_fixture));
    EXPECT_DOUBLE_EQ(model.falling_waveforms[1].table[2][2], 2.991);

    const Component component = file.components()[0];
    expectCorners(component.l_pkg, 3e-9, 2.5e-9, 3.5e-9);
    ASSERT_EQ(component.pins.size(), 8U);
    EXPECT_EQ(component.pins[3].signal, "DQ");
    EXPECT_DOUBLE_EQ(component.pins[3].r_pin, 52e-3);
    EXPECT_TRUE(std::isnan(component.pins[4].l_pin)); // "NA"
    EXPECT_EQ(component.pins[5].model, "NC");
    EXPECT_FALSE(file.model("DQ_IO").has_value());
    EXPECT_FALSE(file.component("").has_value());
}

TEST(Library, relationsOfPins) {
    const File file =
        readText("a.ibs", whole("a.ibs", "[Component] Chip\nSi_location Die\n" + kPackaged +
                                             "[Pin] signal_name model_name R_pin L_pin C_pin\n"
                                             "1 P pair\n2 N pair NA 2n NA\n3 VDD POWER\n4 VSS GND\n"
                                             "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n"
                                             "1 2 150mV 1ns NA 2ns\n"
                                             "[Pin Mapping] pulldown_ref pullup_ref\n"
                                             "1 GNDB PWRB\n2 GNDB PWRB\n3 NC PWRB\n4 GNDB NC\n"
                                             "[Series Pin Mapping] pin_2 model_name function_table_group\n"
                                             "1 2 ser 1\n"));
    const Component component = file.component("Chip").value();
    EXPECT_EQ(component.si_location, "Die");
    EXPECT_EQ(component.timing_location, "");
    expectCorners(component.r_pkg, 50e-3, 40e-3, kNone);
    ASSERT_EQ(component.diff_pins.size(), 1U);
    EXPECT_EQ(component.diff_pins[0].inv_pin, "2");
    EXPECT_DOUBLE_EQ(component.diff_pins[0].vdiff, 0.15);
    expectCorners(component.diff_pins[0].tdelay, 1e-9, kNone, 2e-9);
    ASSERT_EQ(component.pin_mapping.size(), 4U);
    EXPECT_EQ(component.pin_mapping[2].pulldown_ref, "NC");
    EXPECT_EQ(component.pin_mapping[2].pullup_ref, "PWRB");
    EXPECT_EQ(component.pin_mapping[2].ext_ref, "");
    ASSERT_EQ(component.series_pins.size(), 1U);
    EXPECT_EQ(component.series_pins[0].model, "ser");
    EXPECT_EQ(component.series_pins[0].group, "1");
}

TEST(Library, partsOfModels) {
    const File file = readText(
        "a.ibs",
        whole("a.ibs", kComponent +
                           "[Pin] signal_name model_name\n1 DQ sel\n"
                           "[Model Selector] sel\ndq strong one\nother\n"
                           "[Model] dq\nModel_type I/O\nVinl=0.8\nVinh=2\nC_comp 3p 2p 4p\n"
                           "[Model Spec]\nVmeas 1.5 1.4 1.6\nVinh+ 2 NA NA\n"
                           "[Receiver Thresholds]\nVth = 1.5\nVinh_ac = 0.2\nReference_supply Ext_ref\n"
                           "[Add Submodel]\nbus Non-Driving\n"
                           "[Driver Schedule]\nother 0 NA 1n NA\n"
                           "[Voltage Range] 3.3 3 3.6\n"
                           "[Pulldown]\n-3.3 -1 NA NA\n0 0 NA NA\n6.6 2 NA NA\n"
                           "[Rising Waveform]\nR_fixture=50\nV_fixture=0\n0 0 0 0\n1n 1 NA NA\n"
                           "[Composite Current]\n0 0 0 0\n1n 5m NA NA\n"
                           "[Algorithmic Model]\nExecutable linux_gcc_64 dq.so dq.ami\n[End Algorithmic Model]\n"
                           "[Submodel] bus\nSubmodel_type Bus_hold\n"
                           "[Submodel Spec]\nV_trigger_r 1 NA NA\nV_trigger_f 1 NA NA\n"
                           "[Pulldown]\n-1 -1m NA NA\n5 5m NA NA\n"));
    const Model model = file.model("dq").value();
    ASSERT_EQ(model.model_spec.size(), 2U);
    EXPECT_EQ(model.model_spec[0].name, "Vinh+");
    EXPECT_EQ(model.model_spec[1].name, "Vmeas");
    expectCorners(model.model_spec[1].corners, 1.5, 1.4, 1.6);
    ASSERT_EQ(model.receiver_thresholds.size(), 2U);
    EXPECT_EQ(model.receiver_thresholds[1].name, "Vinh_ac");
    EXPECT_DOUBLE_EQ(model.receiver_thresholds[1].value, 0.2);
    EXPECT_EQ(model.reference_supply, "Ext_ref");
    ASSERT_EQ(model.submodels.size(), 1U);
    EXPECT_EQ(model.submodels[0].mode, "Non-Driving");
    ASSERT_EQ(model.driver_schedule.size(), 1U);
    EXPECT_EQ(model.driver_schedule[0].model, "other");
    EXPECT_DOUBLE_EQ(model.driver_schedule[0].fall_on, 1e-9);
    EXPECT_TRUE(std::isnan(model.driver_schedule[0].rise_off));
    ASSERT_EQ(model.executables.size(), 1U);
    EXPECT_EQ(model.executables[0].parameter_file, "dq.ami");
    ASSERT_EQ(model.rising_waveforms.size(), 1U);
    EXPECT_DOUBLE_EQ(model.rising_waveforms[0].composite_current[1][1], 5e-3);
    EXPECT_TRUE(std::isnan(model.pulldown[0][2]));

    const Selector selector = file.selector("sel").value();
    ASSERT_EQ(selector.entries.size(), 2U);
    EXPECT_EQ(selector.entries[0].model, "dq");
    EXPECT_EQ(selector.entries[0].description, "strong one");
    const Submodel submodel = file.submodel("bus").value();
    EXPECT_EQ(submodel.type, "Bus_hold");
    EXPECT_DOUBLE_EQ(submodel.pulldown[1][1], 5e-3);
}

TEST(Library, matrices) {
    const std::string pins = "[Number Of Pins] 5\n[Pin Numbers]\nA\nB\nC\nD\nE\n[Model Data]\n";
    const std::string text = whole(
        "m.pkg",
        "[Define Package Model] M\n[Manufacturer] Ours\n[OEM] Others\n[Description] five\n" + pins +
            "[Resistance Matrix] Banded_matrix\n[Bandwidth] 1\n[Row] A\n1 2\n[Row] B\n3 4\n[Row] C\n5 6\n[Row] D\n7 8\n"
            "[Row] E\n9 10\n" // a ring: behind E comes A
            "[Inductance Matrix] Sparse_matrix\n[Row] A\nA 1n\nD 2n\n[Row] B\nB 1n\n[Row] C\nC 1n\n[Row] D\nD 1n\n"
            "[Row] E\nE 1n\n"
            "[Capacitance Matrix] Full_matrix\n[Row] A\n1 2 3 4 5\n[Row] B\n6 7 8 9\n[Row] Z\n1 1 1\n[Row] D\n1 2\n"
            "[Row] E\n1\n[End Model Data]\n[End Package Model]\n");
    const File file = readText("m.pkg", text);
    const PackageModel model = file.packageModel("M").value();
    EXPECT_EQ(model.oem, "Others");
    EXPECT_EQ(model.file, "m.pkg");
    ASSERT_EQ(model.pins.size(), 5U);
    EXPECT_EQ(model.pins[4], "E");
    const auto columns = [](const MatrixRow& row) {
        std::string all(row.pin);
        for (const MatrixEntry& entry : row.entries)
            all += " " + std::to_string(entry.column) + ":" + std::to_string(static_cast<int>(entry.value * 1e9 + 0.5));
        return all;
    };
    EXPECT_EQ(model.inductance.kind, "Sparse_matrix");
    EXPECT_EQ(columns(model.inductance.rows[0]), "A 0:1 3:2");
    const List<MatrixRow> ring = model.resistance.rows;
    ASSERT_EQ(ring.size(), 5U);
    EXPECT_EQ(ring[4].entries[0].column, 4U);
    EXPECT_EQ(ring[4].entries[1].column, 0U);
    EXPECT_EQ(ring[4].entries[1].value, 10);
    const List<MatrixRow> full = model.capacitance.rows;
    EXPECT_EQ(full[1].entries[3].column, 4U);
    EXPECT_EQ(full[1].entries[3].value, 9);
    EXPECT_EQ(full[2].pin, "Z"); // none of the pins: it has no place
    EXPECT_TRUE(full[2].entries.empty());
}

/// Companions in memory, and how often each was asked for.
struct Companions {
    std::map<std::string, std::string> files;
    std::map<std::string, int> asked{};

    [[nodiscard]] Options options() {
        Options options;
        options.companion = [this](std::string_view path) -> std::optional<std::string> {
            ++asked[std::string(path)];
            const auto file = files.find(std::string(path));
            return file == files.end() ? std::nullopt : std::optional(file->second);
        };
        options.list = [this](std::string_view folder) {
            std::vector<std::string> names;
            for (const auto& [path, text] : files)
                if (path.starts_with(folder)) names.push_back(path.substr(folder.size()));
            return names;
        };
        return options;
    }
};

TEST(Library, packageModelsOfCompanions) {
    const std::string text =
        whole("a.ibs", kComponent + "[Package Model] Two\n[Pin] signal_name model_name\n1 A NC\n2 B NC\n");
    Companions companions{{{"lib/x.pkg", whole("x.pkg", package("Two"))}, {"lib/notes.txt", "none"}}};
    const File file = readText("lib/a.ibs", text, companions.options());
    EXPECT_TRUE(file.hasPassed()) << walk(file);
    ASSERT_EQ(file.packageModels().size(), 1U);
    EXPECT_EQ(file.packageModels()[0].file, "lib/x.pkg");
    EXPECT_EQ(file.component("Chip")->package_model, "Two");
    EXPECT_EQ(companions.asked, (std::map<std::string, int>{{"lib/x.pkg", 1}}));

    // Without a list there are none to look through, whatever is on the disk.
    Options options = companions.options();
    options.list = nullptr;
    EXPECT_TRUE(has(places(readText("lib/a.ibs", text, options)), "error 516 lib/a.ibs:5 component Chip"));
}

TEST(Library, otherCompanions) {
    const std::string text = whole(
        "a.ibs", kComponent +
                     "[Pin] signal_name model_name\n1 A rx\n"
                     "[Model] rx\nModel_type Input\nVinl=0.8\nVinh=2\nC_comp 3p 2p 4p\n[Voltage Range] 3.3 3 3.6\n"
                     "[Algorithmic Model]\nExecutable linux_gcc_64 rx.so rx.ami\n"
                     "Executable linux_gcc_32 rx.so ../up.ami\n[End Algorithmic Model]\n");
    Companions companions{{{"rx.ami", "(rx (Reserved_Parameters (Init_Returns_Impulse"}, {"../up.ami", "(up)"}}};
    const std::vector<std::string> found = places(readText("a.ibs", text, companions.options()));
    // Brackets that are open at the end of the parameter file; a file outside of the folder is not asked for.
    EXPECT_TRUE(std::ranges::any_of(found, [](const std::string& one) {
        return one.starts_with("error") && one.find("rx.ami:1") != std::string::npos;
    }));
    EXPECT_EQ(companions.asked["rx.ami"], 1);
    EXPECT_FALSE(companions.asked.contains("../up.ami"));

    companions = {};
    EXPECT_TRUE(has(places(readText("a.ibs", text, companions.options())), "warning 4610 a.ibs:13 model rx"));

    const std::string board =
        whole("b.ebd",
              "[Begin Board Description] B\n[Manufacturer] Ours\n[Number Of Pins] 1\n"
              "[Pin List] signal_name\nJ1 S\n[Path Description] S\nPin J1\nLen=0 L=1n /\nNode U1.1\n"
              "[Reference Designator Map]\nU1 a.ibs Chip\n[End Board Description]\n");
    companions.files["sub/a.ibs"] = whole("a.ibs", kComponent + "[Pin] signal_name model_name\n1 A NC\n");
    EXPECT_TRUE(readText("sub/b.ebd", board, companions.options()).hasPassed());
    EXPECT_EQ(companions.asked["sub/a.ibs"], 1);
    companions.files.clear();
    EXPECT_FALSE(readText("sub/b.ebd", board, companions.options()).hasPassed());

    // The named file comes from the disk, and what it leads to does not: examples/module.ebd has its parts beside it.
    const std::string examples = KESTREL_EXAMPLES_DIR;
    EXPECT_TRUE(read(examples + "/module.ebd").hasPassed());
    const File alone = read(examples + "/module.ebd", companions.options());
    EXPECT_TRUE(alone.isChecked());
    EXPECT_FALSE(alone.hasPassed());
    EXPECT_EQ(companions.asked[examples + "/board.ibs"], 1);
    EXPECT_FALSE(companions.asked.contains(examples + "/module.ebd"));
}

TEST(Library, callersThatThrow) {
    const std::string text = whole("a.ibs", kComponent + "[Package Model] Two\n[Pin] signal_name model_name\n1 A NC\n");
    Companions companions{{{"x.pkg", whole("x.pkg", package("Two"))}}};
    Options options = companions.options();
    options.companion = [](std::string_view) -> std::optional<std::string> { throw std::domain_error("mine"); };
    EXPECT_THROW(static_cast<void>(readText("a.ibs", text, options)), std::domain_error);
    // Memory that runs out in the caller's function is not taken for that of the check.
    options.companion = [](std::string_view) -> std::optional<std::string> { throw std::bad_alloc(); };
    EXPECT_THROW(static_cast<void>(readText("a.ibs", text, options)), std::bad_alloc);
    options = companions.options();
    options.list = [](std::string_view) -> std::vector<std::string> { throw 7; };
    EXPECT_THROW(static_cast<void>(readText("a.ibs", text, options)), int);
    EXPECT_TRUE(readText("a.ibs", text, companions.options()).packageModel("Two").has_value());
}

// Any one request for memory may be refused: that is thrown, or found, and nothing worse.
TEST(Library, memoryThatRunsOut) {
    const std::string text =
        whole("a.ibs", kComponent +
                           "[Package Model] Two\n[Pin] signal_name model_name\n1 A m\n2 B m\n[Model] m\n"
                           "Model_type Output\n[Pulldown]\n0 0 0 0\n1 1 1 1\n");
    const Companions companions{{{"x.pkg", whole("x.pkg", package("Two"))}}};
    const std::string complete = walk(readText("a.ibs", text, Companions(companions).options()));
    std::size_t thrown = 0;
    std::size_t found = 0;
    bool granted = false;
    for (long request = 0; !granted && request < 100'000; ++request) {
        Companions own = companions;
        const Options options = own.options();
        std::string copy = text;
        try {
            requests_left = request;
            const File file = readText("a.ibs", std::move(copy), options);
            granted = requests_left > 0;
            requests_left = -1;
            const bool says_so = std::ranges::any_of(file.findings(), [](const Finding& one) {
                return one.code == "1906" || one.code == "1908"; // of the root record, and of all others
            });
            if (says_so) {
                ++found;
            } else {
                EXPECT_EQ(walk(file), complete) << request;
            }
        } catch (const std::bad_alloc&) {
            ++thrown;
        }
    }
    EXPECT_TRUE(granted);
    EXPECT_GT(thrown, 5U);
    EXPECT_GT(found, 5U);
}

TEST(Library, whatCannotBeChecked) {
    const auto only = [](const File& file) {
        EXPECT_EQ(file.findings().size(), 1U);
        EXPECT_FALSE(file.hasPassed());
        EXPECT_TRUE(file.models().empty());
        EXPECT_EQ(file.header().date, "");
        return std::string(file.findings().empty() ? "" : file.findings()[0].text);
    };
    EXPECT_EQ(only(readText("a.ibs", "")), "The file is empty.");
    EXPECT_FALSE(readText("a.ibs", "").isRead());
    EXPECT_EQ(only(readText("a.pkg", "")), "The file is empty.");
    EXPECT_FALSE(read("no/such/file.ibs").isRead());
    EXPECT_FALSE(read(KESTREL_EXAMPLES_DIR).isRead()); // a folder
    const File refused = readText("a.ibs", "no version\n");
    EXPECT_TRUE(refused.isRead());
    EXPECT_FALSE(refused.isChecked());
    EXPECT_FALSE(readText("a.txt", whole("a.txt", kComponent)).isRead()); // a wrong ending
    EXPECT_FALSE(readText("", whole("x", kComponent)).hasPassed());
    EXPECT_EQ(only(readText(std::string(5000, 'n') + ".ami", "(n)")), "The name of the file is too long.");
    // More white space than a line may have gives the file up where it is.
    const File given_up = readText(
        "a.ibs", whole("a.ibs", kComponent + "[Pin] signal_name model_name\n1 A" + std::string(200, ' ') + "NC\n"));
    EXPECT_FALSE(given_up.hasPassed());
    EXPECT_EQ(place(given_up.findings().back()), "error  a.ibs:12! component Chip");
    EXPECT_EQ(given_up.components().size(), 1U);
}

TEST(Library, hostileTexts) {
    const std::string good =
        whole("a.ibs",
              kComponent + "[Pin] signal_name model_name\n1 A m\n[Model] m\nModel_type Output\n[Pulldown]\n0 0 0 0\n");
    std::size_t failed = 0;
    for (std::size_t cut = 0; cut < good.size(); cut += 3) {
        for (const char c : {'\0', '[', '\xff', '\n', '|'}) {
            std::string text = good.substr(0, cut) + std::string(1 + cut % 5, c) + good.substr(cut);
            if (c == '|') text.resize(cut);
            const File file = readText("a.ibs", text, {.advice = true, .cautions = true});
            if (!file.hasPassed()) ++failed;
            EXPECT_EQ(walk(file).empty(), file.findings().empty() && file.components().empty());
        }
    }
    EXPECT_GT(failed, good.size() / 3); // and none of them ended the test
    const std::string huge =
        "[IBIS Ver] 5.1\n[Component] " + std::string(1U << 20, 'c') + "\n" + std::string(1000, '\0');
    EXPECT_FALSE(readText("a.ibs", huge).hasPassed());
}

TEST(Library, options) {
    const auto levels = [](const std::string& text, const Options& options) {
        std::map<Level, int> count;
        const File file = readText("a.ibs", text, options);
        for (const Finding& finding : file.findings())
            ++count[finding.level];
        return count;
    };
    const std::string later = whole("a.ibs", kComponent + "[Pin] signal_name model_name\n1 A NC\n", "7.1");
    EXPECT_EQ(levels(later, {}), (std::map<Level, int>{{Level::note, 1}}));
    EXPECT_FALSE(readText("a.ibs", later, {.later_versions = false}).isChecked());

    // A die of 3 F is no error; neither is a capacitance of a structure beside that of the whole.
    const std::string odd =
        whole("a.ibs", "[Source] ours\n" + kComponent +
                           "[Pin] signal_name model_name\n1 A in\n[Model] in\nModel_type Input\nVinl=0.8\nVinh=2\n"
                           "C_comp 3 3 3\n[Voltage Range] 3.3 3 3.6\n[C Comp Corner]\nC_comp 4 4 4\n");
    EXPECT_FALSE(levels(odd, {}).contains(Level::advice));
    EXPECT_FALSE(levels(odd, {}).contains(Level::caution));
    EXPECT_TRUE(levels(odd, {.cautions = true}).contains(Level::caution));
    const File advised = readText("a.ibs", odd, {.advice = true});
    const auto about_die =
        std::ranges::find_if(advised.findings(), [](const Finding& one) { return one.code == "Q101"; });
    ASSERT_NE(about_die, advised.findings().end());
    EXPECT_EQ(about_die->level, Level::advice);
    EXPECT_EQ(about_die->subject, "in");
}

TEST(Library, viewsLiveAsLongAsACopy) {
    std::string name = "board.ibs";
    std::optional<File> file = read(std::string(KESTREL_EXAMPLES_DIR) + "/" + name);
    const File copy = *file;
    const List<Model> models = file->models();
    const Table table = models[1].pulldown;
    const std::string_view type = models[1].type;
    file.reset();
    EXPECT_EQ(type, "I/O");
    EXPECT_DOUBLE_EQ(table[5][1], 20.9e-3);
    EXPECT_EQ(models[2].name, "irq_od");
    EXPECT_EQ(std::ranges::distance(models.begin(), models.end()), 3);
    File other = copy;
    other = readText("a.ibs", "");
    EXPECT_EQ(copy.models().size(), 3U);
    EXPECT_TRUE(other.models().empty());
}

TEST(Library, runsAtOnce) {
    const std::string sample = std::string(KESTREL_EXAMPLES_DIR) + "/board.ibs";
    const std::string board = std::string(KESTREL_EXAMPLES_DIR) + "/module.ebd";
    const std::string faulty =
        whole("a.ibs", kComponent + "[Package Model] Two\n[Pin] signal_name model_name\n1 A m\n");
    Companions companions{{{"x.pkg", whole("x.pkg", package("Two"))}}};
    const std::string first = walk(read(sample, {.advice = true}));
    const std::string second = walk(read(board));
    const std::string third = walk(readText("a.ibs", faulty, companions.options()));
    EXPECT_NE(first, third);
    const File shared = read(sample, {.advice = true});
    std::atomic<int> wrong = 0;
    const auto work = [&] {
        for (int round = 0; round < 10; ++round) {
            Companions own{companions.files};
            if (walk(read(sample, {.advice = true})) != first) ++wrong;
            if (walk(read(board)) != second) ++wrong;
            if (walk(readText("a.ibs", faulty, own.options())) != third) ++wrong;
            if (walk(File(shared)) != first) ++wrong;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(Library, version) { EXPECT_EQ(version(), KESTREL_VERSION); }

} // namespace
