// Files of later versions: which are taken, which keywords are passed over, and which rules of 5.1 they are let off.

#include "files.hpp"
#include "reader/source.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

constexpr std::string_view kPart =
    "[Component] Part\n[Manufacturer] Maker\n[Package]\nR_pkg 0 NA NA\nL_pkg 0 NA NA\nC_pkg 0 NA NA\n"
    "[Pin] signal_name model_name\n1 VDD POWER\n";

/// Each code once.
std::string distinct(const std::string& codes) {
    std::istringstream words(codes);
    const std::set<std::string> sorted{std::istream_iterator<std::string>(words), {}};
    std::string text;
    for (const std::string& code : sorted)
        text.append(text.empty() ? "" : " ").append(code);
    return text;
}

/// A file of the cases as one of version 5.1, which reads no more than 120 blanks in a row.
std::string asVersion51(const std::string& name) {
    std::ifstream file(std::filesystem::path(KESTREL_CASES_DIR) / "verimark" / "later" / name);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    text.replace(text.find_first_of("67"), 3, "5.1");
    for (const std::string blanks(30, ' '); text.find(blanks) != std::string::npos;)
        text.erase(text.find(blanks), blanks.size() - 1);
    return text;
}

TEST(Later, theScanAndTheHeaderTakeTheSameVersions) {
    struct Row {
        std::string_view text;
        IbisVersion version; ///< as found by a run that takes later ones
    };
    constexpr Row kRows[] = {
        {"6.0", IbisVersion::later},    {"7.9 | a comment", IbisVersion::later},
        {"  7.1|", IbisVersion::later}, {"5.1", IbisVersion::v5},
        {"5.2", IbisVersion::v5},       {"6", IbisVersion::none},
        {"7.", IbisVersion::none},      {"7.12", IbisVersion::none},
        {"7,1", IbisVersion::none},     {"7.1 draft", IbisVersion::none},
        {"8.0", IbisVersion::none},     {"0.9", IbisVersion::none},
        {"", IbisVersion::none},
    };
    for (const Row& row : kRows) {
        const std::string text = "[IBIS Ver] " + std::string(row.text) + "\n[File Name] a.ibs\n[File Rev] 1\n" +
                                 std::string(kPart) + "[End]\n";
        for (const bool takes : {true, false}) {
            Files files(true);
            files.put("a.ibs", text);
            files.run.parse.takes_later = takes;
            std::uint32_t lines = 0;
            const bool is_later = row.version == IbisVersion::later;
            EXPECT_EQ(scanVersion(files.run, "a", FileKind::ibs, lines),
                      takes || !is_later ? row.version : IbisVersion::none)
                << row.text;
            if (!takes || row.version == IbisVersion::none) continue;
            files.check("a.ibs");
            EXPECT_EQ(files.run.parse.version == IbisVersion::later, is_later) << row.text;
            EXPECT_EQ(files.codes(), row.text == "5.2" ? "E1008@" : "") << row.text;
        }
    }
}

TEST(Later, eachKeywordIsPassedOverHoweverItIsWritten) {
    struct Row {
        std::string_view keyword;
        std::string_view shown;
    };
    constexpr Row kRows[] = {
        {"Initial Delay", "Initial_delay"},
        {"Repeater Pin", "Repeater_pin"},
        {"Bus Label", "Bus_label"},
        {"Die Supply Pads", "Die_supply_pads"},
        {"Interconnect Model Group", "Interconnect_model_group"},
        {"End Interconnect Model Group", "End_interconnect_model_group"},
        {"Begin Interconnect Model Set", "Begin_interconnect_model_set"},
        {"Interconnect Model Set", "Interconnect_model_set"},
        {"End Interconnect Model Set", "End_interconnect_model_set"},
        {"Interconnect Model", "Interconnect_model"},
        {"End Interconnect Model", "End_interconnect_model"},
        {"C Comp Model", "C_comp_model"},
        {"End C Comp Model", "End_C_comp_model"},
        {"Clock Pins", "Clock_pins"},
        {"PSIJ Sensitivity", "PSIJ_sensitivity"},
        {"PSIJ Sensitivity Numeric", "PSIJ_sensitivity_numeric"},
        {"PSIJ Sensitivity Algebraic", "PSIJ_sensitivity_algebraic"},
    };
    static_assert(std::size(kRows) == kLaterKeywordCount);
    for (const Row& row : kRows) {
        std::string underscored(row.keyword);
        std::ranges::replace(underscored, ' ', '_');
        std::string upper(row.keyword);
        upperCase(upper);
        std::string lower(row.keyword);
        lowerCase(lower);
        for (const std::string& name : {std::string(row.keyword), underscored, upper, lower}) {
            // The component, and its list of pins, go on behind it.
            const std::string text = std::string(kPart) + "[" + name +
                                     "] X = 1 / 2 \"3\n1 2 3 4 5 6 7 8 9 10\nR_pkg\n" +
                                     "[Pin Mapping] pulldown_ref pullup_ref\n1 NC VDD\n";
            Files later;
            std::vector<std::string> found;
            later.run.diagnostics.sink = [&found](const Finding& finding) {
                found.push_back(std::string(finding.file) + ":" + std::to_string(finding.line) + ": " +
                                std::string(finding.text));
            };
            later.add("a.ibs", text, "7.1").check("a.ibs");
            const std::vector<std::string> notes{
                "a.ibs:1: Version 7.1 is read by the rules of 5.1",
                "a.ibs:18: Passed over: 1 keyword of later versions: " + std::string(row.shown)};
            EXPECT_EQ(found, notes);
            // Of 5.1 it is none: it and each of its lines are wrong.
            Files before(true);
            before.add("a.ibs", text, "5.1").check("a.ibs");
            EXPECT_EQ(before.codes(), "E0916@ E0907@ E0907@");
        }
    }
}

TEST(Later, blocksOfLaterVersionsHoldKeywordsOf51) {
    const std::string inner = "[Manufacturer] Maker\nof it\n[Description] Text\nof it\n";
    const std::string sets = "[Begin Interconnect Model Set] S\n" + inner + "[Interconnect Model] I\n" + inner +
                             "1 pin_i/o pin_name 1\n[End Interconnect Model]\n" + inner +
                             "[End Interconnect Model Set]\n";
    const std::string group = "[Interconnect Model Group] G\n" + inner + "[End Interconnect Model Group]\n";
    const auto codes = [](std::string text, std::string_view version) {
        return Files(true).add("a.ibs", text, version).check("a.ibs");
    };
    const std::string head = "[Component] Part\n";
    const std::string rest(kPart.substr(head.size()));
    for (const std::string& text : {std::string(kPart) + sets + group, sets + std::string(kPart) + group,
                                    head + group + rest, std::string(kPart) + "[Interconnect Model Set] S\n" + inner}) {
        EXPECT_EQ(codesOf(codes(text, "7.1")), "") << text;
        EXPECT_NE(codesOf(codes(text, "5.1")), "") << text;
    }
    // Behind the end of a block, and behind any other keyword of 5.1, they are what they were.
    EXPECT_EQ(codesOf(codes(std::string(kPart) + group + "[Description] D\n", "7.1")),
              codesOf(codes(std::string(kPart) + "[Description] D\n", "5.1")));
    EXPECT_EQ(
        codesOf(codes(std::string(kPart) + "[Interconnect Model Set] S\n[Disclaimer] D\n[Description] D\n", "7.1")),
        codesOf(codes(std::string(kPart) + "[Disclaimer] D\n[Description] D\n", "5.1")));
}

TEST(Later, version51ForbidsWhatLaterOnesAreLetOff) {
    const std::string part = "Long_Names_of_a_part_that_has_many_words_in_its_name.ibs";
    Files long_names(true);
    long_names.put(part, asVersion51(part)).check(part);
    EXPECT_EQ(distinct(long_names.codes()),
              "E0129@ E0212@ E0535@ E0604@ E0605@ E0606@ E0706@ E0707@ E0805@ E0905@ E1010@ E1804@ E1912@ E1914@ "
              "E2207@ E2220@ E2307@ E2316@ E2412@ E2506@ E2605@ E2606@ E2607@ "
              "E3100@ E3117@ E3121@ E3432@ " // the second and third since the pins are cut to different names
              "E4012@ E4017@ E4019@ E4212@");

    Files board(true);
    board.put("Module.ebd", asVersion51("Module.ebd")).add("Chip.ibs", kPart, "5.1").check("Module.ebd");
    // 4322, 4330 and 4390 since the pins are cut to one name, and the component's to another.
    EXPECT_EQ(distinct(board.codes()),
              "E0916@ E1010@ E1912@ E4317@ E4322@ E4324@ E4330 E4361@ E4369 E4370 E4375@ E4380@ E4385@ E4386@ E4390");
}

TEST(Later, executablesMayHaveADirection) {
    const auto codes = [](std::string_view version) {
        const std::string text =
            "[Model] m\nModel_type I/O\n[Algorithmic Model]\nExecutable_Tx Linux_gcc_64 a.so a.ami\n"
            "Executable_Rx Linux_gcc_64 b.so a.ami\nExecutable_Tx Linux_gcc_64 c.so a.ami\n"
            "Executable_Up Linux_gcc_64 c.so a.ami\n[End Algorithmic Model]\n";
        const std::string all = Files(true).add("a.ibs", text, version).put("a.ami", "(").check("a.ibs");
        std::string found;
        for (const std::string_view code : {"E4603 ", "W4605 ", "E4608 ", "E4624 "})
            for (std::size_t at = all.find(code); at != std::string::npos; at = all.find(code, at + 1))
                found.append(code);
        return found;
    };
    EXPECT_EQ(codes("5.1"), "E4603 E4603 E4603 E4603 E4608 ");
    EXPECT_EQ(codes("7.1"), "E4603 W4605 E4624 ");
}

TEST(Later, aFileIsReadByTheRulesOfItsOwnVersion) {
    const std::string part = std::string(kPart) + "[Package Model] Box\n";
    const std::string box =
        "| " + std::string(130, '-') +
        "\n[Define Package Model] Box\n[Manufacturer] M\n[OEM] O\n[Description] D\n[Number Of Pins] 1\n[Pin Numbers]\n1\n"
        "[Model Data]\n[Inductance Matrix] Sparse_matrix\n[Row] 1\n1 1n\n[Capacitance Matrix] Sparse_matrix\n[Row] 1\n"
        "1 1p\n[End Model Data]\n[End Package Model]\n[Bus Label]\n";
    const auto codes = [&](std::string_view part_version, std::string_view box_version) {
        Files files(true);
        files.add("a.ibs", part, part_version).add("box.pkg", box, box_version).check("a.ibs");
        return files.codes();
    };
    EXPECT_EQ(codes("7.1", "7.0"), "");
    EXPECT_EQ(codes("5.1", "7.0"), "");
    EXPECT_EQ(codes("7.1", "5.1"), "E0905@ E0916@");
    EXPECT_EQ(codes("7.1", "5.7"), "E1008@ E0905@ E0916@");
}

TEST(Later, parameterFilesNameTheirVersionThemselves) {
    const auto codes = [](std::string_view version, bool takes) {
        Files files(true);
        files.put("a.ami", "(a (Reserved_Parameters (AMI_Version (Usage Info) (Type String) (Value \"" +
                               std::string(version) +
                               "\"))\n(Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True))\n"
                               "(GetWave_Exists (Usage Info) (Type Boolean) (Value True))\n"
                               "(Unknown (part (Usage In) (Type Integer) (Range 1 0 2)))\n"
                               "(Ignore_Bits (part (Usage In) (Type Integer) (Range 1 0 2)))))\n");
        files.run.parse.takes_later = takes;
        checkFile(files.run, "a.ami", FileKind::ami);
        return files.codes();
    };
    EXPECT_EQ(codes("5.1", true), "E4649@ E4649@");
    EXPECT_EQ(codes("7.1", true), "E4649@"); // a parameter that 5.1 knows is no branch
    EXPECT_EQ(codes("8.0", true), "W4657@ E4649@");
    EXPECT_EQ(codes("7.1", false), "W4657@ E4649@ E4649@");
}

} // namespace
} // namespace kestrel
