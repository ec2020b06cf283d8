// How the text of a parameter file is taken apart: what is quick reads the same as what is plain, and what is long the
// same as what is short.

#include "ami/char_classes.hpp"
#include "ami/check.hpp"
#include "ami/leaf.hpp"
#include "ami/outline.hpp"
#include "ami/words.hpp"
#include "files.hpp"

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t bound) { return random() % bound; }

/// A text of exactly this many bytes of its own, so that a sanitizer sees what reads beyond it.
std::vector<char> exactly(std::string_view text) { return {text.begin(), text.end()}; }

TEST(AmiCharClasses, areTheSameInBothForms) {
    for (int c = 0; c < 256; ++c) {
        std::array<char, kBlock> block;
        block.fill(static_cast<char>(c));
        EXPECT_EQ(charClasses(block.data()), plainCharClasses(block.data())) << c;
    }
    Random random(1);
    for (int round = 0; round < 2000; ++round) {
        std::array<char, kBlock> block;
        for (char& c : block)
            c = round % 2 == 0 ? static_cast<char>(random()) : "()\" \n\t\x0ex'!*"[below(random, 11)];
        EXPECT_EQ(charClasses(block.data()), plainCharClasses(block.data())) << round;
    }
}

TEST(AmiCharClasses, ofTheLastBlockDoNotReadBeyondTheText) {
    for (std::size_t size = 1; size <= 2 * kBlock; ++size) {
        const std::vector<char> text(size, '(');
        const std::size_t begin = (size - 1) / kBlock * kBlock;
        const CharClasses classes = charClassesAt({text.data(), size}, begin);
        const std::uint64_t all = ~std::uint64_t{0} >> (kBlock - (size - begin));
        EXPECT_EQ(classes.brackets, all);
        EXPECT_EQ(classes.blanks, ~all);
        EXPECT_EQ(classes.quotes, 0U);
    }
}

TEST(AmiCharClasses, stringsGoOnFromBlockToBlock) {
    Random random(2);
    StringFinder strings;
    bool inside = false;
    for (int round = 0; round < 200; ++round) {
        const std::uint64_t quotes = (std::uint64_t{random()} << 32 | random()) & (round % 3 == 0 ? 0 : random());
        std::uint64_t wanted = 0;
        for (std::size_t i = 0; i < kBlock; ++i) {
            inside = inside != ((quotes >> i & 1) != 0);
            wanted |= std::uint64_t{inside ? 1U : 0U} << i;
        }
        EXPECT_EQ(strings.inStrings(quotes), wanted);
    }
}

/// The items of a node, token by token: the plain form of readAmiItems().
class PlainItems {
public:
    explicit PlainItems(std::string_view node) : scanner_(node) {
        scanner_.next();
        readNode(node.data());
    }

    std::vector<AmiItem> items;

private:
    void readNode(const char* bracket) {
        const std::size_t place = items.size();
        Token token = scanner_.next();
        items.push_back({.text = {bracket, 0}, .size = 1, .is_node = 1, .quoted = 0});
        if (token.isText()) {
            items.back().text = token.text;
            items.back().quoted = token.kind == TokenKind::string ? 1 : 0;
            token = scanner_.next();
        }
        for (; token.kind != TokenKind::close; token = scanner_.next()) {
            if (token.kind == TokenKind::open) {
                readNode(token.text.data());
            } else if (token.kind == TokenKind::string) {
                items.push_back({.text = token.text, .size = 1, .is_node = 0, .quoted = 1});
            } else {
                items.push_back({.text = token.text, .size = 1, .is_node = 0, .quoted = 0});
            }
        }
        items[place].size = (items.size() - place) & (SIZE_MAX >> 2);
    }

    Scanner scanner_;
};

void expectSame(const std::vector<AmiItem>& items, const std::vector<AmiItem>& wanted, std::string_view text) {
    ASSERT_EQ(items.size(), wanted.size()) << text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const bool same = items[i].text.data() == wanted[i].text.data() && items[i].text == wanted[i].text &&
                          items[i].size == wanted[i].size && items[i].is_node == wanted[i].is_node &&
                          items[i].quoted == wanted[i].quoted;
        ASSERT_TRUE(same) << i << " '" << items[i].text << "' '" << wanted[i].text << "' in " << text;
    }
}

/// A node of words, strings and nodes, close to each other or not.
std::string randomNode(Random& random, std::size_t depth, bool all_named) {
    std::string text("(");
    const std::size_t count = below(random, 8) + (all_named ? 1 : 0);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t kind = below(random, 6);
        if (kind == 0 && depth > 0 && !(all_named && i == 0)) {
            text.append(randomNode(random, depth - 1, all_named));
        } else if (kind == 1) {
            text.append("\"").append(below(random, 90), "(x)\n |"[below(random, 6)]).append("\"");
        } else {
            text.append(1 + below(random, below(random, 9) == 0 ? 150 : 6), "aZ.|\x80"[below(random, 5)]);
        }
        if (below(random, 3) != 0)
            text.append(below(random, below(random, 9) == 0 ? 150 : 3), " \n\t"[below(random, 3)]);
    }
    return text.append(")");
}

TEST(AmiItemList, isTheSameAsTokenByToken) {
    Random random(3);
    std::vector<AmiItem> items;
    for (int round = 0; round < 3000; ++round) {
        const std::vector<char> text = exactly(randomNode(random, 6, false));
        const std::string_view node(text.data(), text.size());
        readAmiItems(node, items);
        expectSame(items, PlainItems(node).items, node);
    }
}

/// All items below a node of the outline, with folded nodes read when they are met.
std::vector<AmiItem> flattened(const AmiNode& root) {
    std::vector<AmiItem> all{headOf(root)};
    std::vector<AmiItem> folded;
    OutlineReader reader(root);
    for (std::size_t depth = 1; depth > 0;) {
        const std::optional<OutlineItem> item = reader.next();
        if (!item) {
            --depth;
        } else if (item->is_node == 0) {
            all.push_back(*item);
        } else if (item->node->isFolded()) {
            readAmiItems(item->node->text, folded);
            all.insert(all.end(), folded.begin(), folded.end());
        } else {
            all.push_back(*item);
            reader.enter(*item->node);
            ++depth;
        }
    }
    return all;
}

TEST(AmiOutlines, leadToAllItems) {
    Random random(4);
    int long_nodes = 0;
    for (int round = 0; round < 60; ++round) {
        std::string text("\n (root ");
        for (int i = 0; i < 30; ++i)
            text.append(randomNode(random, 60, true));
        text.append("\"in the root\")\n");
        const std::vector<char> exact = exactly(text);
        TestRun test;
        const AmiOutline outline = readAmiOutline(test.run, {exact.data(), exact.size()});
        ASSERT_FALSE(outline.nodes.empty()) << text;
        EXPECT_EQ(test.out.text(), "");
        std::vector<AmiItem> wanted = PlainItems(outline.nodes.front().text).items;
        const std::vector<AmiItem> items = flattened(outline.nodes.front());
        for (AmiItem& item : wanted)
            item.size = 1;
        std::vector<AmiItem> sizeless = items;
        for (AmiItem& item : sizeless)
            item.size = 1;
        expectSame(sizeless, wanted, text);
        EXPECT_EQ(outline.nodes.front().size, outline.nodes.size());
        long_nodes += static_cast<int>(std::ranges::count_if(
            outline.nodes, [](const AmiNode& node) { return !node.isFolded() && node.text.size() > 4096; }));
    }
    EXPECT_GT(long_nodes, 60);
}

std::string printedFor(std::string_view text) {
    TestRun test(true);
    const std::vector<char> exact = exactly(text);
    checkAmi(test.run, {exact.data(), exact.size()});
    return test.out.text();
}

/// Of several thousand characters on one line, white space changes nothing but how long the nodes around it are.
TEST(AmiOutlines, longNodesAreReportedAsShortOnes) {
    constexpr std::string_view kReserved =
        "(m word (Description \"d\" 1)\n"
        " (Reserved_Parameters\n"
        "  (AMI_Version (Usage Info) (Type String) (Value \"5.1\") (Description \"d\"))\n"
        "  (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True))\n"
        "  (getwave_exists (Usage Info) (Type Boolean) (Value False) (Value True))\n"
        "  (Tx_Jitter (Usage Info) (Type Float) (Table (1 0.1) (2 0.2 0.3) (3 x)) stray)\n"
        "  (Ignore_Bits (b (Usage In))) (Tx_DCD (Usage In) (Type Float) (Range 1 3 2)))\n";
    constexpr std::string_view kNamed =
        " (Model_Specific text\n"
        "  (a (Usage In) (Type Float) (List 1 2 x) (Default 2))\n"
        "  (branch (Description \"d\") (Description \"e\") word\n"
        "   (a (Usage Out) (Type Integer) (Format Steps 1 0 2 -1) (Default 7))\n"
        "   (Table (Usage In) (Type Tap) (Range 1 0 2)) (\"a\" (Type String) (Usage In (x)) (Value \"v\"))\n"
        "   (Usage (x (Usage In))) (empty)))\n"
        " (Other) (Description \"second\"))\n";
    constexpr std::string_view kNameless =
        " (Model_Specific\n"
        "  (t (Usage In) (Type Float Integer) (Table (Labels p q) ((1)) () (1 2)))\n"
        "  (u (Table () (Table ())) (Format Table ()) (Usage (a))))\n)\n";
    constexpr std::string_view kRows =
        " (Model_Specific (b (t (Usage In) (Type Float Integer)\n"
        "  (Table (Labels p q) (\"\" 1)\n (\n1 2.5) () ((x) 2 3) (4 5 6)))))\n)\n";
    for (const std::string_view specific : {kNamed, kNameless, kRows}) {
        const std::string text = std::string(kReserved).append(specific);
        const std::string wanted = printedFor(text);
        EXPECT_GT(std::ranges::count(wanted, '\n'), specific == kNameless ? 0 : 10) << wanted;
        bool in_string = false;
        for (std::size_t place = 0; place < text.size(); ++place) {
            if (text[place] == '"') in_string = !in_string;
            if (in_string || (text[place] != ' ' && text[place] != ')')) continue;
            std::string padded(text);
            padded.insert(place, 5000, ' ');
            EXPECT_EQ(printedFor(padded), wanted) << place;
        }
    }
}

TEST(AmiOutlines, longNamesAndGapsTakeNoLonger) {
    // Of what is in a node, nothing may cost a look at all of its name or of the blanks ahead of it.
    const std::string blanks(200000, ' ');
    std::string rows;
    for (int i = 0; i < 20000; ++i)
        rows.append("(()) word\n");
    EXPECT_FALSE(printedFor("(m (s (p (" + blanks + "Table " + rows + "))))").empty());
    EXPECT_FALSE(printedFor("(m (Model_Specific (p (" + std::string(200000, 'n') + " " + rows + "))))").empty());
}

template <const auto& kRows> void expectSameHits() {
    for (const auto& row : kRows) {
        for (std::size_t place = 0; place <= row.text.size(); ++place) {
            for (const char c : std::string_view("aZ@`_-\x80 ")) {
                std::string word(row.text);
                const auto expect_same = [&] {
                    const auto hit = lookUpAmiWord<kRows>(word);
                    const auto wanted = lookUpEnumeration(kRows, word);
                    EXPECT_EQ(hit.row, wanted.row) << word;
                    EXPECT_EQ(hit.exact, wanted.exact) << word;
                };
                expect_same();
                if (place < word.size()) {
                    word[place] = isLower(word[place]) ? toUpper(word[place]) : toLower(word[place]);
                    expect_same();
                    word[place] = c;
                    expect_same();
                }
                word.resize(place);
                expect_same();
                word.push_back(c);
                expect_same();
            }
        }
    }
}

TEST(AmiWords, areFoundAsByAWalk) {
    expectSameHits<kAmiFormats>();
    expectSameHits<kAmiParts>();
    expectSameHits<kAmiTypes>();
}

TEST(AmiWords, areTheSameOnlyIfEveryCharacterIs) {
    for (std::size_t size = 0; size <= 40; ++size) {
        const std::vector<char> word(size, 'x');
        EXPECT_TRUE(sameWord({word.data(), size}, std::string(size, 'x')));
        EXPECT_FALSE(sameWord({word.data(), size}, std::string(size + 1, 'x')));
        for (std::size_t place = 0; place < size; ++place) {
            std::vector<char> other = word;
            other[place] = 'y';
            EXPECT_FALSE(sameWord({word.data(), size}, {other.data(), size})) << size << " " << place;
        }
    }
}

TEST(AmiComments, areCutOutsideOfStrings) {
    Random random(5);
    for (int round = 0; round < 500; ++round) {
        std::string text;
        for (std::size_t i = below(random, 400); i > 0; --i)
            text.push_back("\"|\n xyz()|abcdefgh      "[below(random, round % 2 == 0 ? 8 : 23)]);
        std::string wanted;
        bool in_string = false;
        bool in_comment = false;
        for (const char c : text) {
            if (c == '\n') in_comment = false;
            if (c == '"' && !in_comment) in_string = !in_string;
            if (c == '|' && !in_string) in_comment = true;
            if (!in_comment) wanted.push_back(c);
        }
        if (!text.empty() && text.back() != '\n') wanted.push_back('\n');
        TestRun test;
        test.run.sources.texts["p.ami"] = std::make_shared<const std::string>(text);
        std::optional<Source> source = openSource(test.run, "p.ami", FileKind::ami);
        ASSERT_TRUE(source.has_value());
        EXPECT_EQ(collectAmi(test.run, *source), wanted) << text;
        EXPECT_EQ(!test.out.text().empty(), in_string) << text;
    }
}

} // namespace
} // namespace kestrel
