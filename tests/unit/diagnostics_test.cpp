// The layout of diagnostics to the character, what silences and counts them, and the summary.

#include "diagnostics/diagnostics.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::string_literals;

struct Reporting {
    Output out;
    std::uint32_t line = 12;
    Diagnostics diagnostics{out, line};
};

std::string xs(std::size_t count) { return std::string(count, 'x'); }

TEST(Layout, wrapsTextsThatWouldEndJustPastColumn80) {
    struct Row {
        Severity severity;
        std::string_view prefix;
        std::size_t from; // shortest text on a line of its own, 0 for never
    };
    const Row rows[] = {
        {Severity::bug, "PROGRAM BUG", 0},
        {Severity::bugAtLine, "PROGRAM BUG (line   12)", 0},
        {Severity::error, "ERROR", 72},
        {Severity::errorAtLine, "ERROR (line   12)", 60},
        {Severity::warning, "WARNING", 70},
        {Severity::warningAtLine, "WARNING (line   12)", 58},
        {Severity::caution, "CAUTION", 70},
        {Severity::cautionAtLine, "CAUTION (line   12)", 58},
        {Severity::note, "NOTE", 73},
        {Severity::noteAtLine, "NOTE (line   12)", 61},
        {Severity::internalError, "INTERNAL ERROR", 0},
    };
    for (const Row& row : rows) {
        for (std::size_t length = 1; length <= 90; ++length) {
            Reporting test;
            test.diagnostics.silence_cautions = false;
            reportText(test.diagnostics, row.severity, xs(length), {});
            const bool own_line = row.from != 0 && length >= row.from && length <= 75;
            EXPECT_EQ(test.out.text(), std::string(row.prefix) + (own_line ? " -\n    " : " - ") + xs(length) + "\n")
                << length;
        }
    }
}

TEST(Layout, countsTheCharactersOfTheTextOnly) {
    const auto report = [](std::uint32_t line, auto&& print) {
        Reporting test;
        test.line = line;
        print(test.diagnostics);
        return test.out.text();
    };
    // A wide line number does not change which texts wrap.
    EXPECT_EQ(report(12345, [](auto& d) { errorTextAtLine(d, "%s", xs(59)); }),
              "ERROR (line 12345) - " + xs(59) + "\n");
    EXPECT_EQ(report(0, [](auto& d) { errorTextAtLine(d, "%s", xs(60)); }),
              "ERROR (line    0) -\n    " + xs(60) + "\n");
    // A line feed at the end is a character: 59 and one.
    EXPECT_EQ(report(9999, [](auto& d) { errorTextAtLine(d, "%s\n", xs(59)); }),
              "ERROR (line 9999) -\n    " + xs(59) + "\n\n");
    EXPECT_EQ(report(12, [](auto& d) { errorAtLine(d, 909); }),
              "ERROR (line   12) -\n"
              "    Previous keyword not terminated properly. Possibly missing a \"/\"\n"
              "\n");
    EXPECT_EQ(report(12, [](auto& d) { errorAtLine(d, 907, xs(34)); }),
              "ERROR (line   12) -\n    Data for unknown keyword.\n" + xs(34) + "\n");
    EXPECT_EQ(report(12, [](auto& d) { errorAtLine(d, 907, xs(33)); }),
              "ERROR (line   12) - Data for unknown keyword.\n" + xs(33) + "\n");
    // What stands behind a NUL is neither printed nor counted.
    EXPECT_EQ(report(12, [](auto& d) { errorTextAtLine(d, "%s%c and more", xs(59), '\0'); }),
              "ERROR (line   12) - " + xs(59) + "\n");
    EXPECT_EQ(report(12, [](auto& d) { errorAtLine(d, 3116, 2U, "A1", 1U, '\0'); }),
              "ERROR (line   12) - Expected 2 columns of Row data for [Row] A1 in Matrix ending previous to this line, "
              "found 1 column\n");
    EXPECT_EQ(report(12, [](auto& d) { errorAtLine(d, 3116, 3U, "A1", 2U, 's'); }),
              "ERROR (line   12) - Expected 3 columns of Row data for [Row] A1 in Matrix ending previous to this line, "
              "found 2 columns.\n");
}

TEST(Layout, convertsArguments) {
    Reporting test;
    const auto& d = test.diagnostics;
    errorText(test.diagnostics, "%d %d %u", std::numeric_limits<std::int32_t>::min(), 0, 4294967295U);
    errorText(test.diagnostics, "<%s|%s|%c>", "", "a%sb%"s, '%');
    errorText(test.diagnostics, "%x %x", 233U, std::uint8_t{26});
    errorText(test.diagnostics, "%g %g %g %g %g", 0.1, 100000.0, 1e6, 123456.7, 1e-5);
    errorText(test.diagnostics, "%g %g %g %g", 0.0001, 3.0f, -0.0, 2.0 / 3.0);
    errorText(test.diagnostics, "%e %e %e", 1.0, -3.3e-9, 1.23456789e300);
    EXPECT_EQ(test.out.text(),
              "ERROR - -2147483648 0 4294967295\n"
              "ERROR - <|a%sb%|%>\n"
              "ERROR - e9 1a\n"
              "ERROR - 0.1 100000 1e+06 123457 1e-05\n"
              "ERROR - 0.0001 3 -0 0.666667\n"
              "ERROR - 1.000000e+00 -3.300000e-09 1.234568e+300\n");
    EXPECT_EQ(d.errors, 6);
}

/// One report of each class, coded and free.
void reportAll(Diagnostics& d) {
    programBug(d, 1000);
    programBugAtLine(d, 904);
    programBugText(d, "b");
    programBugTextAtLine(d, "b");
    error(d, 903);
    errorAtLine(d, 905, 80);
    errorText(d, "e");
    errorTextAtLine(d, "e");
    warning(d, 921);
    warningAtLine(d, 921);
    warningText(d, "w");
    warningTextAtLine(d, "w");
    caution(d, 921);
    cautionText(d, "c");
    cautionTextAtLine(d, "c");
    note(d, 910);
    noteAtLine(d, 910);
    noteText(d, "n");
    noteTextAtLine(d, "n");
}

constexpr std::string_view kBugs =
    "PROGRAM BUG - Unable to get ptr to IBIS struct?\n"
    "PROGRAM BUG (line   12) - Unknown enumerated keyword code.\n"
    "PROGRAM BUG - b\n"
    "PROGRAM BUG (line   12) - b\n";
constexpr std::string_view kErrors =
    "ERROR - Required keyword 'End' not found.\n"
    "ERROR (line   12) - Exceeds 80 chararacters.\n"
    "ERROR - e\n"
    "ERROR (line   12) - e\n";
constexpr std::string_view kWarnings =
    "WARNING - IBIS files should not contain tab characters.\n"
    "WARNING (line   12) - IBIS files should not contain tab characters.\n"
    "WARNING - w\n"
    "WARNING (line   12) - w\n";
constexpr std::string_view kNotes =
    "NOTE - Duplicate IBIS_Ver keyword.\n"
    "NOTE (line   12) - Duplicate IBIS_Ver keyword.\n"
    "NOTE - n\n"
    "NOTE (line   12) - n\n";

TEST(Silence, holdsBackItsClassAlone) {
    for (unsigned mask = 0; mask < 8; ++mask) {
        SCOPED_TRACE(mask);
        Reporting test;
        test.diagnostics.silence_bugs = (mask & 1U) != 0;
        test.diagnostics.silence_errors = (mask & 2U) != 0;
        test.diagnostics.silence_warnings = (mask & 4U) != 0;
        reportAll(test.diagnostics);
        std::string expected;
        expected += (mask & 1U) != 0 ? "" : kBugs;
        expected += (mask & 2U) != 0 ? "" : kErrors;
        expected += (mask & 4U) != 0 ? "" : kWarnings;
        expected += kNotes;
        EXPECT_EQ(test.out.text(), expected);
        const FindingCounts counts = diagnosticCounts(test.diagnostics);
        EXPECT_EQ(counts.bugs, (mask & 1U) != 0 ? 0 : 4);
        EXPECT_EQ(counts.errors, (mask & 2U) != 0 ? 0 : 4);
        EXPECT_EQ(counts.warnings, (mask & 4U) != 0 ? 0 : 4);
        EXPECT_EQ(test.diagnostics.cautions, 0);
        EXPECT_EQ(failureCount(test.diagnostics), counts.bugs + counts.errors);
    }
}

TEST(RunTimeCodes, unknownOnesAreInternalErrorsThatNothingSilences) {
    Reporting test;
    test.diagnostics.silence_errors = true;
    test.diagnostics.silence_warnings = true;
    for (const MessageCode code : {1U, 99U, 925U, 5013U, 4294967295U}) {
        const std::size_t before = test.out.text().size();
        reportCode(test.diagnostics, Severity::warningAtLine, code, {});
        EXPECT_EQ(test.out.text().substr(before), "INTERNAL ERROR - Error code doesn't exist.\n") << code;
    }
    const std::size_t before = test.out.text().size();
    reportCode(test.diagnostics, Severity::errorAtLine, 903, {});
    EXPECT_EQ(test.out.text().size(), before);
    const Arg name(std::string_view("demo.ibs"));
    reportCode(test.diagnostics, Severity::note, 900, {&name, 1});
    EXPECT_EQ(test.out.text().substr(before), "NOTE - Could not determine Version for file demo.ibs\n");
    EXPECT_EQ(failureCount(test.diagnostics), 0);
    EXPECT_EQ(test.diagnostics.warnings, 0);
}

TEST(CodedForm, showsTheCodeInPlaceOfTheClass) {
    Reporting test;
    test.diagnostics.coded_form = true;
    test.diagnostics.silence_cautions = false;
    test.line = 12345;
    programBug(test.diagnostics, 1000);
    errorAtLine(test.diagnostics, 905, 80);
    errorAtLine(test.diagnostics, 909);
    warningAtLine(test.diagnostics, 921);
    caution(test.diagnostics, 921);
    note(test.diagnostics, 910);
    errorTextAtLine(test.diagnostics, "free");
    reportCode(test.diagnostics, Severity::error, 1, {});
    EXPECT_EQ(test.out.text(),
              "B1000 - Unable to get ptr to IBIS struct?\n"
              "E0905 (line 12345) - Exceeds 80 chararacters.\n"
              "E0909 (line 12345) -\n"
              "    Previous keyword not terminated properly. Possibly missing a \"/\"\n"
              "\n"
              "W0921 (line 12345) - IBIS files should not contain tab characters.\n"
              "C0921 - IBIS files should not contain tab characters.\n"
              "N0910 - Duplicate IBIS_Ver keyword.\n"
              "ERROR (line 12345) - free\n"
              "I0000 - Error code doesn't exist.\n");
}

TEST(Summary, namesTheCountsAndTheVerdict) {
    struct Row {
        std::int32_t bugs, errors, warnings, cautions;
        std::string_view expected;
    };
    const Row rows[] = {
        {0, 0, 0, 0, "Errors  : 0\n\nFile Passed\n"},
        {0, 0, 3, 0, "\nErrors  : 0\nWarnings: 3\n\nFile Passed\n"},
        {0, 2, 0, 0, "\nErrors  : 2\n\nFile Failed\n"},
        {1, 0, 0, 0, "\nBugs    : 1\nErrors  : 0\n\nFile Failed\n"},
        {0, 0, 0, 4, "Errors  : 0\nCautions: 4\n\nFile Passed\n"},
        {1, 20, 300, 4, "\nBugs    : 1\nErrors  : 20\nWarnings: 300\nCautions: 4\n\nFile Failed\n"},
    };
    for (const Row& row : rows) {
        Reporting test;
        test.diagnostics.bugs = row.bugs;
        test.diagnostics.errors = row.errors;
        test.diagnostics.warnings = row.warnings;
        test.diagnostics.cautions = row.cautions;
        printSummary(test.diagnostics);
        EXPECT_EQ(test.out.text(), row.expected);
    }
}

TEST(Reset, clearsAllButTheCautions) {
    Reporting test;
    test.diagnostics.silence_cautions = false;
    reportAll(test.diagnostics);
    setContext(test.diagnostics, "board");
    EXPECT_EQ(test.diagnostics.context, "board");
    EXPECT_EQ(test.diagnostics.cautions, 3);
    resetCounts(test.diagnostics);
    EXPECT_EQ(test.diagnostics.bugs, 0);
    EXPECT_EQ(failureCount(test.diagnostics), 0);
    EXPECT_EQ(test.diagnostics.warnings, 0);
    EXPECT_EQ(test.diagnostics.cautions, 3);
    EXPECT_EQ(test.diagnostics.context, "");
}

TEST(Places, aLineIsShownWhileItsScopeLasts) {
    Reporting test;
    Diagnostics& d = test.diagnostics;
    errorAtLine(AtLine(d, 7), 905, 80);
    {
        const AtLine outer(d, 8);
        noteAtLine(AtLine(d, 9), 910);
        noteAtLine(d, 910);
    }
    test.line = 13; // the reader goes on
    noteAtLine(d, 910);
    EXPECT_EQ(test.out.text(),
              "ERROR (line    7) - Exceeds 80 chararacters.\n"
              "NOTE (line    9) - Duplicate IBIS_Ver keyword.\n"
              "NOTE (line    8) - Duplicate IBIS_Ver keyword.\n"
              "NOTE (line   13) - Duplicate IBIS_Ver keyword.\n");
}

TEST(Places, aFindingKnowsItsRecord) {
    Reporting test;
    Diagnostics& d = test.diagnostics;
    std::string found;
    d.sink = [&found](const Finding& finding) {
        found.append(finding.code ? std::string(CodeText(finding.code).text()) : "free")
            .append(finding.exact ? " at " : " about ");
        found.append(std::to_string(finding.line)).append(" in ").append(finding.file).append(" ");
        found.append(finding.subject != nullptr ? finding.subject->name.view() : "nothing").append("\n");
    };
    const std::string pkg = "far.pkg";
    NameTable names;
    const Subject model{SubjectKind::model, 4, names.enter("buf"), &pkg};
    const Subject component{SubjectKind::component, 2, names.enter("chip"), nullptr};
    nameFile(d, "chip.ibs");
    error(d, 903);
    {
        const About about(d, component);
        errorAtLine(d, 905, 80);
        {
            const About inner(d, model);
            warningText(d, "w");
            caution(d, 921); // silenced
        }
        error(d, 903);
    }
    {
        const OtherFile other(d);
        nameFile(d, "pins.pkg");
        error(d, 903);
    }
    test.line = 0;
    errorAtLine(d, 905, 80);
    EXPECT_EQ(found,
              "903 about 1 in chip.ibs nothing\n"
              "905 at 12 in chip.ibs chip\n"
              "free about 4 in far.pkg buf\n"
              "903 about 2 in chip.ibs chip\n"
              "903 about 1 in pins.pkg nothing\n"
              "905 at 1 in chip.ibs nothing\n");
    EXPECT_EQ(test.out.text(), "");
    EXPECT_EQ(d.errors, 5);
    EXPECT_EQ(d.warnings, 1);
}

TEST(Summary, countsBeyond32Bits) {
    Reporting test;
    test.diagnostics.errors = 4294967296;
    printSummary(test.diagnostics);
    EXPECT_EQ(test.out.text(), "\nErrors  : 4294967296\n\nFile Failed\n");
}

TEST(OutputToAStream, passesEverythingOnInOrder) {
    std::FILE* stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    std::string expected;
    {
        Output out(stream);
        for (int i = 0; i < 30000; ++i) {
            std::string piece;
            appendInteger(piece, i, 6);
            out.write(piece);
            expected += piece;
        }
        EXPECT_LT(out.text().size(), expected.size());
    }
    std::rewind(stream);
    std::string written(expected.size() + 1, '\0');
    written.resize(std::fread(written.data(), 1, written.size(), stream));
    std::fclose(stream);
    EXPECT_TRUE(written == expected) << written.size();
}

TEST(OutputToATerminal, isNotSteeredByTexts) {
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_NE(controller, -1);
    ASSERT_EQ(grantpt(controller), 0);
    ASSERT_EQ(unlockpt(controller), 0);
    std::FILE* const stream = std::fopen(ptsname(controller), "w");
    ASSERT_NE(stream, nullptr);
    {
        Output out(stream);
        EXPECT_TRUE(out.isTerminal());
        // An escape sequence, one that begins with U+009B, a lone byte of it, DEL, what is not UTF-8, and what is.
        out.write("a\x1b[2J\tb\u009b2J\x9b\x7f\xff\u00e9\r\n");
        out.writeControl("\x1b[0m");
    }
    // What was written may come in pieces.
    std::string text;
    pollfd ready{controller, POLLIN, 0};
    while (!text.ends_with("\x1b[0m") && poll(&ready, 1, 10000) == 1) {
        std::array<char, 256> seen{};
        const ssize_t length = read(controller, seen.data(), seen.size());
        if (length <= 0) break;
        text.append(seen.data(), static_cast<std::size_t>(length));
    }
    // The terminal itself puts a carriage return ahead of a line feed and expands TABs or leaves them.
    std::fclose(stream);
    close(controller);
    if (const std::size_t tab = text.find('\t'); tab != std::string::npos) text.erase(tab, 1);
    std::erase(text, ' ');
    EXPECT_EQ(text, "a?[2Jb?2J???\u00e9?\r\n\x1b[0m");
}

} // namespace
} // namespace kestrel
