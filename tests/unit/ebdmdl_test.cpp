// Board descriptions: keywords, pin list, map, completion, and following designators into other files.

#include "board/ebdmdl.hpp"

#include "files.hpp"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

struct Row {
    std::string text;
    std::string codes;
};

const std::string kStart = "[Begin Board Description] B\n[Manufacturer] M\n";
const std::string kPins = "[Number Of Pins] 1\n[Pin List] signal_name\n1 S\n";
const std::string kPath = "[Path Description] P\nPin 1\n";
const std::string kEnd = "\n[End Board Description]";

/// Checks boards that differ in the text between two others.
void expectCodes(const std::string& before, const std::string& behind, std::initializer_list<Row> rows,
                 std::string_view version = "4.2") {
    for (const Row& row : rows)
        EXPECT_EQ(codesOfFile(before + row.text + behind, "b.ebd", version), row.codes) << row.text;
}

TEST(Board, beginsAndEnds) {
    const std::string whole = kStart + kPins + kPath;
    expectCodes(
        "", "",
        {{whole + kEnd, ""},
         {"", ""},
         {"[Pin List] signal_name\n1 S", "E4301@ E4302@"},
         {"[Begin Board Description]", "E1913@ E4308 E4333 E4315 E4326 E4332 E4355"},
         {whole, "E4332"},
         {whole + kEnd + " x" + kEnd + "\n1 S", "E4335@ E4334@ E4302@"},
         {kStart + "x\n" + kPins + kPath + kEnd, "E4302@"},
         // The next board closes the one before; [Manufacturer] elsewhere is the component's and closes it, too.
         {whole + whole + kEnd, "E4332 E4306"},
         {kStart + kPins + "[Manufacturer] N\n" + kPath + kEnd, "E4328 E4332 E4355 E0912@ E4301@ E4302@ E4301@"},
         {kStart + "[Manufacturer] N\n" + kPins + kPath + kEnd, "E1911@"}});
}

TEST(Board, repeatedNamesAreToldOnceForEachRepetition) {
    const auto board = [](const std::string& name) {
        return "[Begin Board Description] " + name + "\n[Manufacturer] M\n" + kPins + kPath + kEnd + "\n";
    };
    expectCodes("", "", {{board("A") + board("B") + board("A") + board("A"), "E4306 E4306"}});
}

TEST(Board, numberOfPins) {
    expectCodes(kStart, "\n[Pin List] signal_name\n1 S\n2 GND\n" + kPath + kEnd,
                {{"[Number Of Pins] 2", ""},
                 {"", "E4318@ E4318@ E4315 E4358"},
                 {"[Number Of Pins]\n[Number Of Pins] abc\n[Number Of Pins] 0\n[Number Of Pins] 2x\n"
                  "[Number Of Pins] 3\n[Number Of Pins]",
                  "E4310@ E4309@ E4313@ E4309@ E4314@ E4309@ W4312@ E4309@ E4311@ E4309@ E4310@"},
                 {"[Number Of Pins] 1", "E4320@"},
                 {"[Number Of Pins] 4294967295", "E4331"}}); // and no room is kept for them
    expectCodes(kStart, kEnd, {{"[Number Of Pins] 4294967295\n[Pin List] signal_name", "E4327 E4355"}});
}

TEST(Board, pinList) {
    expectCodes(kStart + "[Number Of Pins] 1\n[Pin List]", "\n1 S\n" + kPath + kEnd,
                {{" SIGNAL_name", ""},
                 {"", "E4337@"},
                 {" name", "E4338@"},
                 {" name x", "E4338@ E4339@"},
                 {" signal_name x", "E4339@"},
                 {" signal_name\n[Pin List] signal_name", "E4336@"}});
    expectCodes(kStart + "[Number Of Pins] 3\n[Pin List] signal_name\n1 S\n", "\n" + kPath + kEnd,
                {{"2 GND\n3 GND", ""},
                 {"2 GND", "E4331"},
                 {"2 GND\n3 GND\n4 GND", "E4320@"},
                 {"2 GND\n1 GND", "E4322@ W4329"},
                 {"2\n3 GND x", "E4323@ E4325@ E4328"},
                 {"123456789 GND\n12345678 GNDxxxxxxxxxxxxxxxxxx", "E4317@ E4322@ E4324@"},
                 {"2 gndx\n3 PowerX", ""},
                 {"2 nc\n3 circuitCall", ""},
                 {"2 GN\n3 XGND", "E4328 E4328"}});
}

TEST(Board, pinsAgainstPaths) {
    expectCodes(kStart + "[Number Of Pins] 4\n[Pin List] signal_name\n1 S\n2 NC\n3 Gnd1\n4 GND\n[Path Description] P\n",
                kEnd,
                {{"Pin 1 Pin 2", ""},
                 {"Pin 2", "E4328"},
                 {"Pin 1 Pin 1", "E4330"},
                 {"Pin 1 Pin 2\n[Path Description] Q\nPin 2", "E4330"},
                 {"Pin 1 Pin 3 Pin 3", "W4329"},
                 {"Pin 1 Pin 5\n[Path Description] Q\nPin 5", "E4358 E4358"}});
}

TEST(Board, pathNames) {
    const std::string name(39, 'x');
    expectCodes(kStart + kPins, kEnd,
                {{"[Path Description] P\nPin 1\n[Path Description] p\n[Path Description] P", "E4354@ E4356 E4356"},
                 {"[Path Description]\nPin 1", "E1913@"},
                 // What the cut leaves is trimmed.
                 {"[Path Description] " + name + " y\nPin 1\n[Path Description] " + name, "E1912@ E4354@ E4356"}});
}

TEST(Board, mapRows) {
    const std::string before = kStart + kPins + kPath + "[Reference Designator Map]\n";
    const std::string name24 = std::string(20, 'a') + ".ibs";
    const std::string name44 = std::string(40, 'a') + ".ibs";
    const std::string name40(40, 'C');
    expectCodes(before, kEnd,
                {{"U1 a.ibs C\nU2 a.ebd " + name40, ""},
                 {"U1", "E4379@ E4383@"},
                 {"U1 a.ibs", "E4383@"},
                 {"U1 a.ibs C x", "E4382@"},
                 {"U1 a.ibs " + name40 + "C", "E4380@"},
                 {"U123456789 a.ibs C\nU1234567890 a.ibs C", "E4375@ E4376@"},
                 {"U1 a.ibs C\nu1 a.ibs C\nU1 b.ibs C\nU1 b.ibs C", "E4376@ E4376@"},
                 {"U1 " + name44 + " C", ""},
                 {"U1 a" + name44 + " C", "E4378@"},
                 {"U1 a C", "E4384@"},
                 {"U1 a.pkg C", "E4385@"},
                 {"U1 a. C", "E4385@"},
                 {"U1 aB.IBS C", "E4386@ E4386@ E4386@ E4386@"},
                 {"U1 a*b+_^$~!#%&-{}()@'`1.ebd C", "E4387@ E4387@"},
                 {"U1 a.b.c.ibs C", "E4388@"},
                 {"U1 A.b/C C", "E4385@ E4386@ E4387@ E4386@"},
                 {"U1 a.ibs C\n[Reference Designator Map]", "E4334@"}});
    expectCodes(before, kEnd, {{"U1 " + name24 + " C", ""}, {"U1 a" + name24 + " C", "E4378@"}}, "3.2");
}

/// A component with two pins, one of them 1.
std::string component(const std::string& name, const std::string& long_pin = "12345") {
    return "[Component] " + name +
           "\n[Manufacturer] M\n[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
           "[Pin] signal_name model_name\n1 A NC\n" +
           long_pin + " B NC\n";
}

/// A board of this name with one path, which uses the nodes, and the rows of its map.
std::string board(const std::string& name, const std::string& nodes, const std::string& rows) {
    return "[Begin Board Description] " + name + "\n[Manufacturer] M\n" + kPins + kPath + nodes +
           "\n[Reference Designator Map]\n" + rows + kEnd + "\n";
}

TEST(BoardReferences, componentsAndTheirPins) {
    const Row rows[] = {
        {board("B", "Node U1.1 Node U1.12345 Node U2.1", "U1 c.ibs C\nU2 c.ibs D"), ""},
        {board("B", "Node U1.2 Node U2.12345 Node U1.2", "U1 c.ibs C\nU2 c.ibs D"), "E4389"},
        {board("B", "Node U1.1 Node U2.1", "U1 c.ibs X\nU2 c.ibs c"), "E4390 E4390"},
        {board("B", "Node U1.1", "U1 c.ibs"), "E4383@"},
        // The limit is that of the file referred to.
        {board("B", "Node U1.123456", "U1 c.ibs C"), "E4393"},
        {board("B", "Node U1.123456 Node U1.1234567", "U1 five.ibs F"), "E4389"},
        // Of the entries of a designator the first is followed, whatever was wrong with it; an unused one is not.
        {board("B", "Node U1.9", "U1 c.ibs C\nU1 nosuch.ibs F\nU1 c.ibs C\nU2 nosuch.ibs C"), "E4376@ E4376@ E4389"},
        {board("B", "Node U1.9", "U1 c.ibs\nU1 c.ibs C"), "E4383@ E4376@"},
        {board("B", "Node U1.1 Node U2.1 Node U3.1", "U1 c.txt C\nU2 c C\nU3"), "E4385@ E4384@ E4379@ E4383@"},
        {board("B", "Node U1.1 Node U2.1", "U1 nosuch.ibs C\nU2 nosuch.ibs X"), "E1905 E0900"},
        {board("B", "Node U1.1", "U1 old.ibs X"), "E0900"},
    };
    for (const Row& row : rows) {
        Files files(true);
        files.add("c.ibs", component("C") + component("D")).add("five.ibs", component("F", "123456"), "5.1");
        files.add("old.ibs", component("X"), "1.1");
        EXPECT_EQ(codesOf(files.add("b.ebd", row.text).check("b.ebd")), row.codes) << row.text;
    }
}

TEST(BoardReferences, eachFileIsReadOnceAndTheReaderPutBack) {
    Files files(true);
    files.add("c.ibs", component("C") + component("D") + component("D") + "[Comment Char] #_char");
    files.add("d.ebd", board("D", "", ""));
    // The boards are checked from the last to the first. What a file is reported for comes with its first reading
    // (511), what a board refers to with each board.
    files.add("b.ebd",
              board("A", "Node U1.1 Node U2.9 Node U3.9 Node U4.1", "U1 c.ibs C\nU2 c.ibs D\nU3 d.ebd D\nU4 no.ibs X") +
                  board("B", "Node U.9 Node V.1 Node W.1 Node X.1", "U c.ibs C\nV c.ibs E\nW no.ibs X\nX d.ebd D"),
              "3.2");
    EXPECT_EQ(codesOf(files.check("b.ebd")), "E0511 E4389 E4390 E1905 E0900 E4389 E4389");
    EXPECT_EQ(files.timesRead("c.ibs"), 1);
    EXPECT_EQ(files.timesRead("d.ebd"), 1);
    EXPECT_EQ(files.run.parse.file_name, "b.ebd");
    EXPECT_EQ(files.run.parse.kind, FileKind::ebd);
    EXPECT_EQ(files.run.parse.comment, '|');
    EXPECT_EQ(files.run.parse.version, IbisVersion::v3);
    EXPECT_EQ(files.run.roots.size(), 1U);
    ASSERT_NE(files.root().board_descriptions.find("A"), nullptr);
}

TEST(BoardReferences, whatAFileIsReportedForCounts) {
    Files files(true);
    files.add("c.ibs", component("C") + component("C")); // 511, by the file's own final checks
    files.add("b.ebd", board("B", "Node U1.2 Node U2.1", "U1 c.ibs C\nU2 d.ebd D"));
    files.add("d.ebd", board("D", "", "") + board("D", "Node X.1", "X nosuch.ibs C"));
    EXPECT_EQ(codesOf(files.check("b.ebd")), "E0511 E4389 E4306");
    EXPECT_EQ(diagnosticCounts(files.run.diagnostics).errors, 3);
    EXPECT_EQ(files.timesRead("nosuch.ibs"), 0);
}

TEST(BoardReferences, boardsOnBoards) {
    const Row rows[] = {
        {board("A", "Node U1.1", "U1 b.ebd B"), ""},
        {board("A", "Node U1.2 Node U2.1", "U1 b.ebd B\nU2 b.ebd X"), "E4389 E4390"},
        // The board itself, in any spelling of the file; another board of the same file needs no reading.
        {board("A", "Node U1.1 Node U2.1", "U1 a.ebd A\nU2 A.ebd A"), "E4386@ E4381 E4381"},
        {board("A", "Node U1.1 Node U1.2 Node U2.1", "U1 a.ebd C\nU2 a.ebd X") + board("C", "", ""), "E4389 E4390"},
        // b refers to c, which is nobody's business here; back to a board of the calling file.
        {board("A", "Node U1.1", "U1 back.ebd B"), "E4394"},
        {board("A", "Node U1.1", "U1 back.ebd X"), "E4394 E4390"},
        // However many of its rows and of the boards here lead there: once for each board that is referred to.
        {board("A", "Node U1.1", "U1 back.ebd B") + board("N", "Node U1.1", "U1 back.ebd B"), "E4394 E4394"},
    };
    for (const Row& row : rows) {
        Files files(true);
        files.add("b.ebd", board("B", "Node U1.1", "U1 c.ebd C")).add("c.ebd", board("C", "Node U1.1", "U1 a.ebd A"));
        files.add("back.ebd", board("B", "Node U1.1 Node U2.1", "U1 a.ebd A\nU2 a.ebd N\nU3 a.ebd A"));
        EXPECT_EQ(codesOf(files.add("a.ebd", row.text).check("a.ebd")), row.codes) << row.text;
        EXPECT_EQ(files.timesRead("c.ebd"), 0);
        EXPECT_EQ(files.timesRead("a.ebd"), 1);
    }
}

} // namespace
} // namespace kestrel
