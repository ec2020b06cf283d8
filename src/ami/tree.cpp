#include "ami/tree.hpp"

#include "ami/char_classes.hpp"
#include "ami/token.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace kestrel {

namespace {

/// Builds the list of a node's items. However deep the nodes are nested, the open ones need no room of their own: until
/// it is closed, a node's size holds the place of the node that it is in.
class ItemBuilder {
public:
    ItemBuilder(std::string_view text, std::vector<AmiItem>& items) : text_(text), items_(items) {}

    void build() {
        items_.clear();
        StringFinder strings;
        bool in_word = false;
        for (std::size_t block = 0; block < text_.size(); block += kBlock) {
            const CharClasses classes = charClassesAt(text_, block);
            const std::uint64_t in_strings = strings.inStrings(classes.quotes);
            const std::uint64_t words = ~(classes.blanks | classes.brackets | classes.quotes | in_strings);
            const std::uint64_t first_letters = words & ~(words << 1 | (in_word ? 1U : 0U));
            in_word = words >> (kBlock - 1) != 0;
            std::uint64_t begins = first_letters | (classes.brackets & ~in_strings) | (classes.quotes & in_strings);
            for (; begins != 0; begins &= begins - 1) {
                const int bit = std::countr_zero(begins);
                const std::size_t place = block + static_cast<std::size_t>(bit);
                switch (text_[place]) {
                case '(': openNode(place); break;
                case ')': closeNode(); break;
                case '"': addString(place + 1); break;
                default: addWord(place, std::countr_one(words >> bit), bit); break;
                }
            }
        }
    }

private:
    void openNode(std::size_t place) {
        items_.push_back({.text = text_.substr(place, 0), .size = 1, .is_node = 1, .quoted = 0});
        setSize(items_.back(), open_);
        open_ = items_.size() - 1;
        awaits_name_ = true;
    }

    void closeNode() {
        AmiItem& node = items_[open_];
        const std::size_t place = open_;
        open_ = node.size;
        setSize(node, items_.size() - place);
        awaits_name_ = false;
    }

    /// Of a word that goes on in the next block, `length` is not all.
    void addWord(std::size_t place, int length, int bit) {
        const bool goes_on = static_cast<std::size_t>(bit + length) == kBlock;
        addText(goes_on ? firstWord(text_.substr(place)) : text_.substr(place, static_cast<std::size_t>(length)),
                false);
    }

    void addString(std::size_t place) {
        const std::string_view rest = text_.substr(place);
        addText(rest.substr(0, rest.find('"')), true);
    }

    void addText(std::string_view text, bool quoted) {
        if (awaits_name_) {
            items_.back().text = text;
            items_.back().quoted = quoted ? 1U : 0U;
            awaits_name_ = false;
        } else {
            items_.push_back({.text = text, .size = 1, .is_node = 0, .quoted = quoted ? 1U : 0U});
        }
    }

    static void setSize(AmiItem& node, std::size_t size) {
        constexpr std::size_t kMask = SIZE_MAX >> 2; // the bits that the field has
        node.size = size & kMask;
    }

    std::string_view text_;
    std::vector<AmiItem>& items_;
    std::size_t open_ = 0;     ///< place of the innermost open node
    bool awaits_name_ = false; ///< the last item is a node whose name may follow
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

void readAmiItems(std::string_view node, std::vector<AmiItem>& items) { ItemBuilder(node, items).build(); }

} // namespace kestrel
