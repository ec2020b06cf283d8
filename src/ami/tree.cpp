#include "ami/tree.hpp"

#include "base/make_room.hpp"
#include "base/text.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <array>

namespace kestrel {

namespace {

enum class TokenKind : std::uint8_t { open, close, word, string, end };

struct Token {
    TokenKind kind;
    std::string_view text; ///< of a string: what is between its quotes
};

constexpr bool endsWord(char c) { return isSpace(c) || c == '(' || c == ')' || c == '"'; }

constexpr std::array<bool, 256> kEndsWord = [] {
    std::array<bool, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = endsWord(static_cast<char>(i));
    }
    return table;
}();

std::size_t wordLength(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && !kEndsWord[static_cast<unsigned char>(text[length])]) {
        ++length;
    }
    return length;
}

/// Cuts a text into tokens.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    Token next() {
        std::size_t blanks = 0;
        while (blanks < rest_.size() && isSpace(rest_[blanks])) {
            ++blanks;
        }
        take(blanks);
        if (rest_.empty()) return {TokenKind::end, rest_};
        switch (rest_.front()) {
        case '(': return {TokenKind::open, take(1)};
        case ')': return {TokenKind::close, take(1)};
        case '"': {
            take(1);
            const std::string_view text = take(std::min(rest_.find('"'), rest_.size()));
            take(std::min<std::size_t>(1, rest_.size())); // a string that is left open has no second quote
            return {TokenKind::string, text};
        }
        default: return {TokenKind::word, take(wordLength(rest_))};
        }
    }

private:
    std::string_view take(std::size_t count) {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

    std::string_view rest_;
};

constexpr bool isText(const Token& token) { return token.kind == TokenKind::word || token.kind == TokenKind::string; }

/// Builds the list of items. However deep the nodes are nested, the open ones need no room of their own: until it is
/// closed, a node's size holds the place of the node that it is in.
class TreeBuilder {
public:
    TreeBuilder(Context& context, std::string_view text) : context_(context), scanner_(text), lines_(text) {
        constexpr std::size_t kUsualItem = 8; // characters, white space and brackets included
        makeRoom(items_, text.size() / kUsualItem);
    }

    std::vector<AmiItem> build() {
        Token token = scanner_.next();
        if (token.kind == TokenKind::end) {
            error(context_.diagnostics, 4620);
            return {};
        }
        if (token.kind != TokenKind::open) {
            errorAtLine(at(token), 4621, shown(token.text));
            return {};
        }
        const Token first = token;
        do {
            switch (token.kind) {
            case TokenKind::open: token = openNode(token); continue;
            case TokenKind::close: closeNode(); break;
            case TokenKind::word:
            case TokenKind::string: add(token, false); break;
            case TokenKind::end:
                error(context_.diagnostics, 4624, depth_, static_cast<std::int64_t>(lines_.lineOf(first.text)));
                return {};
            }
            token = scanner_.next();
        } while (depth_ > 0);
        if (token.kind != TokenKind::end) {
            errorAtLine(at(token), 4625, shown(token.text));
            sound_ = false;
        }
        return sound_ ? std::move(items_) : std::vector<AmiItem>{};
    }

private:
    AtLine at(const Token& token) { return {context_.diagnostics, lines_.lineOf(token.text)}; }

    void add(const Token& token, bool is_node) {
        items_.push_back({.text = token.text,
                          .size = 1,
                          .is_node = is_node ? 1U : 0U,
                          .quoted = token.kind == TokenKind::string ? 1U : 0U});
    }

    /// Reads the name of a node, too, and returns the token behind.
    Token openNode(const Token& bracket) {
        const bool may_be_nameless = inTable();
        const std::size_t place = items_.size();
        const Token name = scanner_.next();
        if (isText(name)) {
            add(name, true);
        } else {
            add({TokenKind::open, bracket.text.substr(0, 0)}, true);
            if (name.kind != TokenKind::end && !may_be_nameless) {
                errorAtLine(at(bracket), 4622);
                sound_ = false;
            }
        }
        setSize(items_[place], open_);
        open_ = place;
        ++depth_;
        return isText(name) ? scanner_.next() : name;
    }

    void closeNode() {
        const std::size_t place = open_;
        open_ = items_[place].size;
        setSize(items_[place], items_.size() - place);
        --depth_;
    }

    static void setSize(AmiItem& node, std::size_t size) {
        constexpr std::size_t kMask = SIZE_MAX >> 2; // the bits that the field has
        node.size = size & kMask;
    }

    /// True right behind "(Table" and "(Format Table" of a parameter, and behind their rows.
    [[nodiscard]] bool inTable() const {
        constexpr std::string_view kTable = "Table";
        constexpr std::int64_t kLeastDepth = 4; // root, section, parameter and table
        if (depth_ < kLeastDepth) return false;
        if (items_[open_].text == kTable) return true;
        const std::size_t inside = open_ + 1;
        return items_[open_].text == "Format" && inside < items_.size() && items_[inside].is_node == 0 &&
               items_[inside].text == kTable;
    }

    Context& context_;
    Scanner scanner_;
    LineFinder lines_;
    std::vector<AmiItem> items_;
    std::size_t open_ = 0; ///< place of the innermost open node
    std::int64_t depth_ = 0;
    bool sound_ = true;
};

} // namespace

std::uint32_t LineFinder::lineOf(std::string_view part) {
    const char* const place = part.data();
    if (place >= last_) {
        line_ += static_cast<std::uint32_t>(std::count(last_, place, '\n'));
    } else {
        line_ -= static_cast<std::uint32_t>(std::count(place, last_, '\n'));
    }
    last_ = place;
    return line_;
}

std::string_view shown(std::string_view text) {
    constexpr std::size_t kMost = 120;
    text = text.substr(0, kMost);
    return text.substr(0, text.find('\n'));
}

std::vector<AmiItem> readAmiTree(Context& context, std::string_view text) { return TreeBuilder(context, text).build(); }

} // namespace kestrel
