// Paths of boards: tokens, forks, what they hang together as.

#include "board/ebdpath.hpp"

#include "files.hpp"

#include <span>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

const std::string kBefore =
    "[Begin Board Description] B\n[Manufacturer] M\n[Number Of Pins] 1\n[Pin List] signal_name\n1 NC\n"
    "[Path Description] P\n";

std::string codesOfPath(std::string_view text) {
    return codesOfFile(kBefore + std::string(text) + "\n[End Board Description]", "b.ebd");
}

struct Row {
    std::string text;
    std::string codes;
};

void expectCodes(std::span<const Row> rows) {
    for (const Row& row : rows)
        EXPECT_EQ(codesOfPath(row.text), row.codes) << row.text;
}

TEST(Path, tokens) {
    const Row rows[] = {
        {"Pin 1 Len=0 L=1n C=1p/ NC", ""},
        {"\t Pin\t 1\n\n  NC", "W0921@"}, // the TAB is the reader's concern only
        {"", "E4356"},
        {"Pin", "E4349@ E4356"},
        {"Pin\n1", "E4349@ E4352@ E4356"},
        {"Pin 1 Node", "E4350@"},
        {"Node", "E4350@ E4356"},
        {"pin 1 PIN NODE nc Lengthy", "E4352@ E4352@ E4352@ E4352@ E4352@ E4352@ E4356"},
        {"Pin 1 = / Bogus NC/ NC", "E4340@ E4341@ E4352@ E4352@"},
        {"Pin=1 NC=", "E4340@ E4340@"},
        {"Pin /1=2", "E4341@ E4340@ E4352@"},
        {"Pin 1 Node U1=2", "E4368 E4340@ E4352@"},
        {"Pin 1 L=1n/", "E4352@ E4340@ E4352@"},
    };
    expectCodes(rows);
}

TEST(Path, beginsWithAPin) {
    const Row rows[] = {
        {"Fork\nPin 1\nEndfork", "E4345@ E4348@"},
        {"Endfork NC Node U.1 Pin 1", "E4346@ E4344@ E4351@"},
        {"Node a/b", "E4351@ E4356"}, // and no word about its name
        {"Len=0/ Pin 2 NC\nPin 1", "E4342@"},
    };
    expectCodes(rows);
}

TEST(Path, sections) {
    const Row rows[] = {
        {"Pin 1 Len = 0 / Len=1 L=1 C=1/\nLen=0/", ""},
        // Once begun, sections need no token of their own; anything else goes on with the path.
        {"Pin 1 Len=0/ R=1/ L=1 C=1/ / NC", "E3002@ E3005@ E3008@ E3011@"},
        {"Pin 1 Len=0/ Lengthy", "E4352@"},
        {"Pin 1 Len=1/ = NC", "E3012@ E4340@"},
        // A section that fails ends the line.
        {"Pin 1 Len=0/ Len Pin 2", "E1921@"},
        {"Pin 1 Len=0 Fork", "E1919@"},
        {"Pin 1 Len=0", "E3013@"},
        {"Pin 1 Len", "E1920@"},
    };
    expectCodes(rows);
}

TEST(Path, forks) {
    const Row rows[] = {
        {"Pin 1 Fork Fork Len=0/ Endfork NC Endfork NC", ""},
        {"Pin 1 Fork Endfork Endfork", "E4347@ E4348@"},
        {"Pin 1 Fork Fork Endfork Endfork", "E4347@"},
        {"Pin 1 Fork Len=0/", ""}, // still open when the board ends
        {"Pin 1 Fork\n[Path Description] Q\nPin 1\nEndfork", "E4303@ E4348@ E4330"},
    };
    expectCodes(rows);
}

TEST(Path, nothingFollowsNc) {
    const Row rows[] = {
        {"Pin 1 Fork NC Endfork NC", ""},
        {"Pin 1 NC NC", "E4357"},
        {"Pin 1 NC Node U.1 NC Len=0/", "E4357 E4359"}, // once per branch, ahead of what follows
        {"Pin 1 Fork NC Len=0/ Endfork Fork NC Fork NC NC Endfork Endfork NC", "E4357 E4357 E4357"},
        {"Pin 1 NC Fork NC Endfork", "E4357"},
        {"Pin 1 Fork NC\n[Path Description] Q\nPin 1 NC Len=0/", "E4303@ E4330 E4357"},
    };
    expectCodes(rows);
}

TEST(Path, namesOfPinsAndNodes) {
    const Row rows[] = {
        {"Pin 123456789", "E4361@ E4358"},  {"Pin 1/2", "W4362@ E4358"},
        {"Pin Endfork", "W4364@ E4358"},    {"Pin 1 Node U1.1 Node U1.2", "E4359 E4359"},
        {"Pin 1 Node U1", "E4368"},         {"Pin 1 Node R", "E4368 W4373@"},
        {"Pin 1 Node U/1", "E4368 W4372@"}, {"Pin 1 Node U/1.1", "W4372@ E4359"},
        {"Pin 1 Node U1.C", "E4359"},       {"Pin 1 Node U1234567890.123456789", "E4369 E4370 E4359"},
    };
    expectCodes(rows);
}

/// The tree written out from its head: "s" a section, "(" a fork, ")" its end.
std::string writtenOut(const EbdPath& path, std::uint32_t at = 0) {
    std::string text;
    for (; at < path.chain.elements.size(); at = path.chain.elements[at].next) {
        const ChainElement& element = path.chain.elements[at];
        switch (element.kind) {
        case ElementKind::fork: text += "(" + writtenOut(path, element.payload) + ")"; break;
        case ElementKind::section: text += "s"; break;
        case ElementKind::pin: text += path.pins[element.payload]; break;
        case ElementKind::node:
            text += path.nodes[element.payload].designator + "." + path.nodes[element.payload].pin;
            break;
        case ElementKind::nc: text += "-"; break;
        }
    }
    return text;
}

TEST(Path, hangsTogetherAsWritten) {
    Files files;
    files.add("b.ebd", kBefore +
                           "Pin 123456789 Len=0/ Len=0/ Fork Node U.7\nFork NC\nEndfork Endfork\nFork\n"
                           "Pin 2 Endfork Node V.A NC\n[Path Description] Q\nPin 3");
    files.check("b.ebd");
    const EbdMdl& board = *files.root().board_descriptions.find("B");
    ASSERT_EQ(board.paths.size(), 2U);
    EXPECT_EQ(writtenOut(board.paths[0]), "12345678ss(U.7(-))(2)V.A-");
    EXPECT_EQ(writtenOut(board.paths[1]), "3");
}

TEST(Path, depthCostsNoStack) {
    constexpr int kDeep = 100'000;
    std::string text = "Pin 1\n";
    for (int i = 0; i < kDeep; ++i)
        text += "Fork\n";
    for (int i = 0; i < kDeep; ++i)
        text += "Endfork\n";
    EXPECT_EQ(codesOfPath(text), "E4347@"); // the innermost
}

} // namespace
} // namespace kestrel
