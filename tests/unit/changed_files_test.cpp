// Files that are a little different: whatever is cut off or changed, the check comes to its end; what means nothing in
// the language changes nothing.

#include "base/text.hpp"
#include "files.hpp"
#include "findings/format.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

struct Sample {
    std::string_view name;
    std::string_view text;
};

// Short, so that every change can be tried, with as many forms of lines as fit.
constexpr Sample kIbs{"a.ibs",
                      "[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n[Component] A\n[Manufacturer] M\n"
                      "[Package]\nR_pkg 1m NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
                      "[Pin] signal_name model_name R_pin L_pin C_pin\n1 D d 1m 1n 1p\n2 V POWER\n"
                      "[Model] d\nModel_type Input | in\nVinl = 0.8V\nVinh = 2\nC_comp 1p 1p 2p\n"
                      "[Voltage Range] 3.3 3 3.6\n[GND Clamp]\n-3 -1.0 -1 -1\n0 0 0 0\n[End]\n"};
constexpr Sample kPkg{"a.pkg",
                      "[IBIS Ver] 4.2\n[File Name] a.pkg\n[File Rev] 1\n[Define Package Model] P\n"
                      "[Manufacturer] M\n[OEM] O\n[Description] D\n[Number Of Pins] 2\n[Pin Numbers]\n1\nB\n"
                      "[Model Data]\n[Resistance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] 1\n1m\n[Row] B\n1m\n"
                      "[Inductance Matrix] Full_matrix\n[Row] 1\n1n 2n\n[Row] B\n1n\n"
                      "[Capacitance Matrix] Sparse_matrix\n[Row] 1\n1 1p\n[Row] B\nB 1p\n[End Model Data]\n"
                      "[End Package Model]\n[End]\n"};
constexpr Sample kEbd{"a.ebd",
                      "[IBIS Ver] 4.2\n[File Name] a.ebd\n[File Rev] 1\n[Begin Board Description] B\n"
                      "[Manufacturer] M\n[Number Of Pins] 3\n[Pin List] signal_name\nA1 D\nA2 GND\nA3 NC\n"
                      "[Path Description] D\nPin A1\nLen=1 L=8n C=3.3p R=0.01/\nFork\nLen = 0 R=22/ | none\n"
                      "Node U1.1\nEndfork\nLen=1 L=8n C=0/ Node U1.2\n[Reference Designator Map]\nU1 a.ibs A\n"
                      "[End Board Description]\n[End]\n"};
constexpr Sample kAmi{"a.ami",
                      "(a (Description \"x y\")\n(Reserved_Parameters | of all\n"
                      " (AMI_Version (Usage Info) (Type String) (Value \"5.1\"))\n"
                      " (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True))\n"
                      " (GetWave_Exists (Usage Info) (Type Boolean) (Value False)))\n"
                      "(Model_Specific (t (Usage In) (Type Float) (Range 1 -0.5 2e0))\n"
                      " (l (Usage In) (Type Integer) (List 1 2) (List_Tip \"a\" \"b\") (Default 2))))\n"};

/// Checks the text and the file that a board refers to.
std::string checkSample(const Sample& sample, std::string_view text) {
    Files files;
    files.put("a.ibs",
              "[IBIS Ver] 4.2\n[File Name] a.ibs\n[File Rev] 1\n[Component] A\n[Manufacturer] M\n"
              "[Package]\nR_pkg 1m NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
              "[Pin] signal_name model_name R_pin L_pin C_pin\n1 D NC\n2 V POWER\n[End]\n");
    files.put(std::string(sample.name), text).check(std::string(sample.name));
    printSummary(files.run.diagnostics);
    return files.out.text();
}

bool isChecked(std::string_view printed) {
    return printed.ends_with("\nFile Passed\n") || printed.ends_with("\nFile Failed\n");
}

class EveryChange : public ::testing::TestWithParam<Sample> {};

TEST_P(EveryChange, ofASampleEndsInASummary) {
    const Sample& sample = GetParam();
    const std::string whole = checkSample(sample, sample.text);
    EXPECT_TRUE(whole.ends_with("\nFile Passed\n")) << whole;
    for (std::size_t size = 0; size < sample.text.size() && !HasFailure(); ++size) {
        const std::string printed = checkSample(sample, sample.text.substr(0, size));
        EXPECT_TRUE(isChecked(printed)) << size << printed;
    }
    std::string text(sample.text);
    for (std::size_t at = 0; at < text.size() && !HasFailure(); ++at) {
        const char before = text[at];
        for (int change = 1; change < 256; ++change) {
            text[at] = static_cast<char>(before ^ change);
            const std::string printed = checkSample(sample, text);
            EXPECT_TRUE(isChecked(printed)) << at << " " << change << printed;
        }
        text[at] = before;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryChange, ::testing::Values(kIbs, kPkg, kEbd, kAmi),
                         [](const auto& sample) { return std::string(sample.param.name.substr(2)); });

/// A finding as it has to be, wherever its line has gone.
struct Told {
    std::string text; ///< with its class, code and subject
    std::uint32_t line;

    auto operator<=>(const Told&) const = default;
};
void PrintTo(const Told& told, std::ostream* out) { *out << told.line << ": " << told.text; }

using Lines = std::vector<std::string>;

/// What is found in a file, in lower case and without blanks: some messages show the line.
std::vector<Told> tell(const std::string& name, const Lines& lines, std::string_view line_end = "\n") {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append(line_end);
    Files files;
    files.put(name, text);
    files.run.diagnostics.silence_cautions = false;
    files.run.diagnostics.on_assertion = OnAssertion::raise;
    std::vector<Told> told;
    std::string room;
    files.run.diagnostics.sink = [&](const Finding& finding) {
        std::string all(levelName(levelOf(finding.severity)));
        if (finding.code) all.append(CodeText(*finding.code).text());
        if (finding.subject != nullptr) all.append(" of ").append(finding.subject->name);
        all.append(": ").append(steadyMessageOf(finding, room));
        lowerCase(all);
        std::erase(all, ' ');
        told.push_back({std::move(all), finding.line});
    };
    try {
        files.check(name);
    } catch (const AssertionFailed& failure) {
        told.push_back({failure.text, failure.line});
    }
    return told;
}

struct CaseFile {
    std::string name;
    Lines lines;
};

/// The files of the cases.
std::vector<CaseFile> caseFiles() {
    std::vector<CaseFile> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(KESTREL_CASES_DIR)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || !kindOfName(name)) continue;
        CaseFile file{.name = name, .lines = {}};
        std::ifstream in(entry.path(), std::ios::binary);
        for (std::string line; std::getline(in, line);)
            file.lines.push_back(line);
        if (!file.lines.empty()) files.push_back(std::move(file));
    }
    return files;
}

template <class Change> Lines changed(const Lines& lines, const Change& change) {
    Lines result;
    for (const std::string& line : lines)
        change(result, line);
    return result;
}

/// The keyword of a line in lower case; empty on any other.
std::string keywordOf(const std::string& line) {
    if (!line.starts_with('[')) return {};
    std::string keyword = line.substr(1, line.find(']') - 1);
    lowerCase(keyword);
    std::ranges::replace(keyword, '_', ' ');
    return keyword;
}

/// A string of the file goes on in the next line.
bool hasLongString(const CaseFile& file) {
    return kindOfName(file.name) == FileKind::ami && std::ranges::any_of(file.lines, [](const std::string& line) {
               return std::ranges::count(line, '"') % 2 != 0;
           });
}

class SameMeaning : public ::testing::Test {
protected:
    const std::vector<CaseFile> files_ = caseFiles();
};

TEST_F(SameMeaning, ofOtherLineEnds) {
    for (const CaseFile& file : files_) {
        if (std::ranges::any_of(file.lines, [](const std::string& line) { return line.ends_with('\r'); })) continue;
        EXPECT_EQ(tell(file.name, file.lines), tell(file.name, file.lines, "\r\n")) << file.name;
    }
}

TEST_F(SameMeaning, ofBlanksAtTheEndsOfLines) {
    for (const CaseFile& file : files_) {
        const Lines indented = changed(file.lines, [](Lines& result, const std::string& line) {
            // Other lines may have to begin at once.
            const bool is_row = !line.empty() && line.size() < 76 && (isDigit(line[0]) || line[0] == '-');
            result.push_back(std::string(is_row ? "  " : "").append(line));
        });
        EXPECT_EQ(tell(file.name, file.lines), tell(file.name, indented)) << file.name;
        const Lines blanks = changed(file.lines, [](Lines& result, const std::string& line) {
            result.push_back(line.size() < 76 && !line.ends_with('\r') ? std::string(line).append("  ") : line);
        });
        EXPECT_EQ(tell(file.name, file.lines), tell(file.name, blanks)) << file.name;
    }
}

/// The line with more blanks between its items, if it has room for them.
std::string withMoreBlanks(const std::string& line) {
    const std::size_t end = std::min(line.find('|'), line.size());
    std::string result;
    for (std::size_t at = 0; at < line.size(); ++at) {
        result.push_back(line[at]);
        const bool is_between = at > 0 && at + 1 < end && line[at] == ' ' && line[at + 1] != ' ';
        if (is_between) result.append("  ");
    }
    return result.size() < 76 ? result : line;
}

TEST_F(SameMeaning, ofBlanksBetweenItems) {
    // What is under these is text, or names with blanks of their own.
    const std::set<std::string> kTexts{"source", "notes", "disclaimer", "copyright", "alternate package models"};
    std::size_t changed_lines = 0;
    for (const CaseFile& file : files_) {
        if (std::ranges::count(file.lines, "comment char", keywordOf) != 0) continue;
        std::string keyword;
        const Lines wider = changed(file.lines, [&](Lines& result, const std::string& line) {
            if (line.starts_with('[')) keyword = keywordOf(line);
            const bool has_text = line.find_first_of("[\"") != std::string::npos || kTexts.contains(keyword);
            result.push_back(has_text ? line : withMoreBlanks(line));
            if (result.back() != line) ++changed_lines;
        });
        EXPECT_EQ(tell(file.name, file.lines), tell(file.name, wider)) << file.name;
    }
    EXPECT_GT(changed_lines, 1000U);
}

TEST_F(SameMeaning, ofEmptyAndCommentLinesButForTheirNumbers) {
    for (const std::string_view added : {"", "| a [Comment]"}) {
        for (const CaseFile& file : files_) {
            const bool has_other_comments = std::ranges::count(file.lines, "comment char", keywordOf) != 0;
            if ((has_other_comments && !added.empty()) || hasLongString(file)) continue;
            std::vector<Told> expected = tell(file.name, file.lines);
            for (Told& told : expected)
                told.line = told.line * 2 - 1;
            Lines more = changed(file.lines, [&](Lines& result, const std::string& line) {
                result.push_back(line);
                result.emplace_back(added);
            });
            more.pop_back();
            EXPECT_EQ(expected, tell(file.name, more)) << file.name << added;
        }
    }
}

TEST_F(SameMeaning, ofKeywordsInOtherLetters) {
    for (const CaseFile& file : files_) {
        const Lines other = changed(file.lines, [](Lines& result, std::string line) {
            const std::size_t end = line.starts_with('[') ? line.find(']') : std::string::npos;
            for (std::size_t at = 0; end != std::string::npos && at < end; ++at) {
                char& c = line[at];
                c = c == ' ' ? '_' : c == '_' ? ' ' : isUpper(c) ? toLower(c) : toUpper(c);
            }
            result.push_back(line);
        });
        EXPECT_EQ(tell(file.name, file.lines), tell(file.name, other)) << file.name;
    }
}

/// The lines with the models in the opposite order, each where another was.
Lines withModelsReversed(const Lines& lines, std::size_t& swapped) {
    const std::set<std::string> kRecords{"component", "model selector",       "submodel",  "external circuit",
                                         "test data", "define package model", "test load", "end"};
    std::vector<Lines> pieces(1);
    std::vector<std::size_t> models;
    for (const std::string& line : lines) {
        const std::string keyword = keywordOf(line);
        if (keyword == "model") models.push_back(pieces.size());
        if (keyword == "model" || kRecords.contains(keyword)) pieces.emplace_back();
        pieces.back().push_back(line);
    }
    if (models.size() > 1) swapped += models.size();
    for (std::size_t i = 0; i < models.size() / 2; ++i)
        std::swap(pieces[models[i]], pieces[models[models.size() - 1 - i]]);
    Lines result;
    for (const Lines& piece : pieces)
        result.insert(result.end(), piece.begin(), piece.end());
    return result;
}

std::vector<std::string> toldInAnyOrder(const std::vector<Told>& told) {
    std::vector<std::string> texts;
    for (const Told& one : told) {
        // Only the first unused model is named.
        constexpr std::string_view kUnused = "warning219of";
        texts.push_back(one.text.starts_with(kUnused) ? std::string(kUnused) : one.text);
    }
    std::ranges::sort(texts);
    return texts;
}

TEST_F(SameMeaning, ofModelsInAnotherOrderButForLines) {
    std::size_t swapped = 0;
    for (const CaseFile& file : files_) {
        const std::vector<std::string> before = toldInAnyOrder(tell(file.name, file.lines));
        // Of models with equal names the first counts.
        if (std::ranges::any_of(before, [](std::string_view text) { return text.starts_with("error131of"); })) continue;
        EXPECT_EQ(before, toldInAnyOrder(tell(file.name, withModelsReversed(file.lines, swapped)))) << file.name;
    }
    EXPECT_GT(swapped, 100U);
}

} // namespace
} // namespace kestrel
