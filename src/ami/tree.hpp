#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kestrel {

/// One item of a parameter file. The items that a node holds follow it in the list. Texts view the file's text,
/// also those that are empty.
struct AmiItem {
    std::string_view text;   ///< a word, a string without its quotes, or a node's name
    std::size_t size : 62;   ///< items of the list that this one is made of, itself included
    std::size_t is_node : 1; ///< "(" name item... ")"; only the rows of a table may go without a name
    std::size_t quoted : 1;  ///< the word or name is in quotes

    [[nodiscard]] bool hasName() const { return quoted != 0 || !text.empty(); }
};
static_assert(sizeof(AmiItem) == sizeof(std::string_view) + sizeof(std::size_t));

/// The items directly in a node, or some of them that follow each other.
class AmiItems {
public:
    AmiItems() = default;
    AmiItems(const AmiItem* first, const AmiItem* last) : first_(first), last_(last) {}

    class Iterator {
    public:
        using value_type = AmiItem;             // NOLINT(readability-identifier-naming): the library's name
        using difference_type = std::ptrdiff_t; // NOLINT(readability-identifier-naming): the library's name

        Iterator() = default;
        explicit Iterator(const AmiItem* at) : at_(at) {}
        const AmiItem& operator*() const { return *at_; }
        Iterator& operator++() {
            at_ += at_->size;
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const { return at_ == other.at_; }

    private:
        const AmiItem* at_ = nullptr;
    };

    [[nodiscard]] Iterator begin() const { return Iterator(first_); }
    [[nodiscard]] Iterator end() const { return Iterator(last_); }
    [[nodiscard]] bool empty() const { return first_ == last_; }
    [[nodiscard]] const AmiItem& front() const { return *first_; }
    [[nodiscard]] AmiItems withoutFirst() const { return {first_ + first_->size, last_}; }

private:
    const AmiItem* first_ = nullptr;
    const AmiItem* last_ = nullptr;
};

/// What is in a node behind its name.
[[nodiscard]] inline AmiItems itemsOf(const AmiItem& node) { return {&node + 1, &node + node.size}; }

/// Finds the line of a text on which a place in it lies; quick as long as the places lie close to each other.
class LineFinder {
public:
    explicit LineFinder(std::string_view text) : last_(text.data()) {}
    /// Counted from 1.
    [[nodiscard]] std::uint32_t lineOf(std::string_view part);

private:
    const char* last_;
    std::uint32_t line_ = 1;
};

/// A text of a parameter file as messages show it: as far as its line goes, and of one that is very long the beginning.
[[nodiscard]] std::string_view shown(std::string_view text);

/// Reads the items of a node into a list, in place of what is in there; the node is the first. `node` begins with its
/// "(" and ends with its ")"; the brackets in it are known to match. The text has to outlive the list.
void readAmiItems(std::string_view node, std::vector<AmiItem>& items);

} // namespace kestrel
