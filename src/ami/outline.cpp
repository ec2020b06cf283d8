#include "ami/outline.hpp"

#include "ami/char_classes.hpp"
#include "reader/context.hpp"

#include <bit>
#include <cstdint>
#include <utility>

namespace kestrel {

namespace {

/// A node that is not longer has its items read together when it is checked: they stay in the processor's cache, and
/// what nests so closely is cheap to look through again.
constexpr std::size_t kShort = 4096;

/// Nodes of the outline down to this depth, the root and the sections, are never folded.
constexpr std::int64_t kSectionDepth = 2;

/// Goes through the brackets of a file. However deep the nodes are nested, the open ones need no room of their own:
/// until it is closed, a node's size is the place of the node that it is in.
class OutlineBuilder {
public:
    OutlineBuilder(Context& context, std::string_view text) : context_(context), text_(text), lines_(text) {}

    AmiOutline build() {
        const Token first = Scanner(text_).next();
        if (first.kind == TokenKind::end) {
            error(context_.diagnostics, 4620);
            return {};
        }
        if (first.kind != TokenKind::open) {
            errorAtLine(at(first.text), 4621, shown(first.text));
            return {};
        }
        readBrackets();
        if (depth_ > 0) {
            const InLine in_line(context_.diagnostics, lines_.lineOf(first.text));
            error(context_.diagnostics, 4624, depth_, static_cast<std::int64_t>(lines_.lineOf(first.text)));
            return {};
        }
        const std::string_view root = outline_.nodes.front().text;
        const char* const end = text_.data() + text_.size();
        const Token behind = Scanner({root.data() + root.size(), end}).next();
        if (behind.kind != TokenKind::end) {
            errorAtLine(at(behind.text), 4625, shown(behind.text));
            sound_ = false;
        }
        return sound_ ? std::move(outline_) : AmiOutline{};
    }

private:
    AtLine at(std::string_view text) { return {context_.diagnostics, lines_.lineOf(text)}; }

    /// Stops where the root is closed.
    void readBrackets() {
        StringFinder strings;
        for (std::size_t block = 0; block < text_.size(); block += kBlock) {
            const CharClasses classes = charClassesAt(text_, block);
            std::uint64_t brackets = classes.brackets & ~strings.inStrings(classes.quotes);
            for (; brackets != 0; brackets &= brackets - 1) {
                const std::size_t place = block + static_cast<std::size_t>(std::countr_zero(brackets));
                if (text_[place] == '(') {
                    open(place);
                } else {
                    close(place);
                    if (depth_ == 0) return;
                }
            }
        }
    }

    void open(std::size_t place) {
        // Most names begin right behind the bracket.
        const bool may_be_nameless =
            place + 1 < text_.size() && kEndsWord[static_cast<unsigned char>(text_[place + 1])];
        if (may_be_nameless) checkName(place);
        outline_.nodes.push_back(AmiNode{.text = text_.substr(place)});
        setSize(outline_.nodes.back(), open_);
        open_ = outline_.nodes.size() - 1;
        ++depth_;
    }

    void close(std::size_t place) {
        AmiNode& node = outline_.nodes[open_];
        const std::size_t self = open_;
        open_ = node.size;
        const char* const end = text_.data() + place + 1;
        node.text = {node.text.data(), end};
        if (depth_ > kSectionDepth && node.text.size() <= kShort) outline_.nodes.resize(self + 1);
        setSize(node, outline_.nodes.size() - self);
        --depth_;
    }

    static void setSize(AmiNode& node, std::size_t size) {
        constexpr std::size_t kMask = SIZE_MAX >> 2; // the bits that the field has
        node.size = size & kMask;
    }

    void checkName(std::size_t place) {
        const Token name = Scanner(text_.substr(place + 1)).next();
        if (name.isText() || name.kind == TokenKind::end) return;
        outline_.all_named = false;
        if (inTable()) return;
        errorAtLine(at(text_.substr(place, 1)), 4622);
        sound_ = false;
    }

    /// True right behind "(Table" and "(Format Table" of a parameter, and behind their rows.
    [[nodiscard]] bool inTable() {
        using Table = AmiNode::Table;
        constexpr std::int64_t kLeastDepth = 4; // root, section, parameter and table
        if (depth_ < kLeastDepth) return false;
        AmiNode& node = outline_.nodes[open_];
        if (node.table == Table::unknown) node.table = isAmiTable(node) ? Table::yes : Table::no;
        return node.table == Table::yes;
    }

    Context& context_;
    std::string_view text_;
    LineFinder lines_;
    AmiOutline outline_;
    std::size_t open_ = 0; ///< place of the innermost open node
    std::int64_t depth_ = 0;
    bool sound_ = true;
};

} // namespace

AmiOutline readAmiOutline(Context& context, std::string_view text) { return OutlineBuilder(context, text).build(); }

bool isAmiTable(const AmiNode& node) {
    constexpr std::string_view kTable = "Table";
    Scanner scanner(node.text.substr(1));
    const Token name = scanner.next();
    if (!name.isText()) return false;
    if (name.text == kTable) return true;
    if (name.text != "Format") return false;
    const Token first = scanner.next();
    return first.isText() && first.text == kTable;
}

AmiItem headOf(const AmiNode& node) {
    const Token name = Scanner(node.text.substr(1)).next();
    return {.text = name.isText() ? name.text : node.text.substr(0, 0),
            .size = 1,
            .is_node = 1,
            .quoted = name.kind == TokenKind::string ? 1U : 0U};
}

void OutlineReader::enter(const AmiNode& node) {
    if (end_ == nullptr) end_ = node.text.data() + node.text.size();
    Scanner inside({node.text.data() + 1, end_});
    const Scanner at_name = inside;
    scanner_ = inside.next().isText() ? inside : at_name;
    next_ = &node + 1;
}

std::optional<OutlineItem> OutlineReader::next() {
    const Token token = scanner_.next();
    if (token.isText()) {
        const bool quoted = token.kind == TokenKind::string;
        return OutlineItem{{.text = token.text, .size = 1, .is_node = 0, .quoted = quoted ? 1U : 0U}, nullptr};
    }
    if (token.kind != TokenKind::open) return std::nullopt;
    const AmiNode& node = *next_;
    next_ += node.size;
    scanner_ = Scanner({node.text.data() + node.text.size(), end_});
    return OutlineItem{headOf(node), &node};
}

} // namespace kestrel
