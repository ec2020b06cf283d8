#pragma once

#include "ami/token.hpp"
#include "ami/tree.hpp"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

struct Context;

/// A node in the outline of a parameter file. The nodes that it holds follow it in the list, unless it is folded: what
/// is in a short node, or in one that holds texts only, is read when it is asked for, by readAmiItems().
struct AmiNode {
    /// Whether the node begins as a table does.
    enum class Table : std::uint8_t { unknown, no, yes };

    std::string_view text;            ///< from its "(" to its ")"
    std::size_t size : 62 = 1;        ///< nodes of the outline that this one is made of, itself included
    Table table : 2 = Table::unknown; ///< looked up when a node in this one has no name

    [[nodiscard]] bool isFolded() const { return size == 1; }
};

/// The nodes of a parameter file. Short ones below the sections are folded into the one that holds them, so that the
/// list is small beside the file.
struct AmiOutline {
    std::vector<AmiNode> nodes; ///< the root is the first; none if the brackets were reported
    bool all_named = true;      ///< false when there are nodes without names, where rows of a table may be
};

/// Reads the outline of a parameter file. `text` has to outlive it. A fault in the brackets is reported.
[[nodiscard]] AmiOutline readAmiOutline(Context& context, std::string_view text);

/// A node by its name, without what it holds.
[[nodiscard]] AmiItem headOf(const AmiNode& node);

/// True of "(Table ..." and "(Format Table ...".
[[nodiscard]] bool isAmiTable(const AmiNode& node);

/// An item directly in a node of the outline; a node is there by its name, without what it holds.
struct OutlineItem : AmiItem {
    const AmiNode* node; ///< null for a text
};

/// Reads the items of an outline's node one by one. The nodes among them are passed over, unless they are entered.
class OutlineReader {
public:
    OutlineReader() = default;
    explicit OutlineReader(const AmiNode& node) { enter(node); }

    /// The next item; nothing at the end of the node, behind which the reader then is.
    [[nodiscard]] std::optional<OutlineItem> next();

    /// Goes on inside of the node that next() returned.
    void enter(const AmiNode& node);

private:
    Scanner scanner_;
    const char* end_ = nullptr;     ///< of the text of the outermost node
    const AmiNode* next_ = nullptr; ///< the next node in the outline
};

/// The items directly in a node of the outline, to be walked once.
class OutlineItems {
public:
    class Iterator {
    public:
        using value_type = OutlineItem;         // NOLINT(readability-identifier-naming): the library's name
        using difference_type = std::ptrdiff_t; // NOLINT(readability-identifier-naming): the library's name

        explicit Iterator(const AmiNode& node) : reader_(node), item_(reader_.next()) {}
        const OutlineItem& operator*() const { return *item_; }
        Iterator& operator++() {
            item_ = reader_.next();
            return *this;
        }
        void operator++(int) { ++*this; }
        bool operator==(std::default_sentinel_t) const { return !item_; }

    private:
        OutlineReader reader_;
        std::optional<OutlineItem> item_;
    };

    explicit OutlineItems(const AmiNode& node) : node_(node) {}
    [[nodiscard]] Iterator begin() const { return Iterator(node_); }
    [[nodiscard]] static std::default_sentinel_t end() { return {}; }

private:
    const AmiNode& node_;
};

[[nodiscard]] inline OutlineItems itemsOf(const AmiNode& node) { return OutlineItems(node); }

} // namespace kestrel
