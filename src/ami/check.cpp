#include "ami/check.hpp"

#include "ami/outline.hpp"
#include "ami/reserved.hpp"
#include "ami/words.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <span>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kestrel {

namespace {

/// What may be in the root.
enum class Section : std::uint8_t { reserved, specific, description };

constexpr std::array<EnumerationRow<Section>, 3> kSections{{
    {"Reserved_Parameters", Section::reserved},
    {"Model_Specific", Section::specific},
    {"Description", Section::description},
}};
static_assert(standAtCodes(kSections));

constexpr std::string_view kDescription = kSections[static_cast<std::size_t>(Section::description)].text;

constexpr std::array<Reserved, 2> kRequired{Reserved::initReturnsImpulse, Reserved::getWaveExists};

/// The sections of a file by what they hold, however their names are spelled.
struct Sections {
    std::vector<const AmiNode*> reserved;
    std::vector<const AmiNode*> specific;
};

Sections findSections(const AmiNode& root) {
    Sections sections;
    for (const OutlineItem& item : itemsOf(root)) {
        const auto section = lookUpAmiWord<kSections>(item.text);
        if (item.is_node == 0 || section.row == nullptr) continue;
        if (section.row->code == Section::reserved) sections.reserved.push_back(item.node);
        if (section.row->code == Section::specific) sections.specific.push_back(item.node);
    }
    return sections;
}

AmiRules chooseRules(AmiCheck& check, const Sections& sections) {
    for (const AmiNode* const section : sections.reserved) {
        for (const OutlineItem& item : itemsOf(*section)) {
            const ReservedRow* const row = item.is_node != 0 ? reservedRow(item.text) : nullptr;
            if (row == nullptr || row->code != Reserved::amiVersion) continue;
            std::vector<AmiItem> items;
            readAmiItems(item.node->text, items);
            return readAmiVersion(check, items.front());
        }
    }
    AmiRules rules;
    rules.first_version = true;
    return rules;
}

/// How names in a branch are compared.
enum class Names : bool { exact, reserved };

/// Checks a whole file.
class TreeCheck {
public:
    TreeCheck(Context& context, std::string_view text, const AmiNode& root)
        : root_(root), root_head_(headOf(root)), sections_(findSections(root)), check_{context, LineFinder(text), {}} {
        check_.rules = chooseRules(check_, sections_);
    }

    void checkAll() {
        markRepeated(std::span<const AmiNode* const>(sections_.reserved), Names::reserved);
        markRepeated(std::span<const AmiNode* const>(sections_.specific), Names::exact);
        for (const OutlineItem& item : itemsOf(root_)) {
            if (item.is_node != 0) {
                checkRootChild(item);
            } else {
                reportAmiText(check_, item, root_head_);
            }
        }
        if (sections_.reserved.empty()) {
            error(check_.context.diagnostics, 4627);
        } else {
            checkRequired();
        }
    }

private:
    /// A reserved parameter of the file.
    struct Given {
        bool seen = false;
        bool is_false = false;
    };

    void checkRootChild(const OutlineItem& child) {
        const auto section = lookUpAmiWord<kSections>(child.text);
        if (section.row == nullptr) {
            errorAtLine(at(check_, child), 4626, shown(child.text));
            return;
        }
        if (!section.exact) errorAtLine(at(check_, child), 4629, shown(child.text), section.row->text);
        bool& seen = section_seen_[static_cast<std::size_t>(section.row->code)];
        if (std::exchange(seen, true)) errorAtLine(at(check_, child), 4628, section.row->text);
        switch (section.row->code) {
        case Section::reserved: walk(*child.node, Section::reserved); break;
        case Section::specific:
            checkSectionOrder(child);
            walk(*child.node, Section::specific);
            break;
        case Section::description:
            readAmiItems(child.node->text, items_);
            checkAmiDescription(check_, items_.front(), root_head_);
            break;
        }
    }

    void checkSectionOrder(const OutlineItem& specific) {
        const bool reserved_follows =
            !sections_.reserved.empty() && !section_seen_[static_cast<std::size_t>(Section::reserved)];
        if (check_.rules.first_version || !reserved_follows || specific.node != sections_.specific.front()) return;
        errorAtLine(at(check_, specific), 4656, shown(check_.rules.version));
    }

    /// Walks a section and its long branches. They may be nested as deep as the file is long.
    void walk(const AmiNode& top, Section section) {
        std::vector<OutlineItem> open{{headOf(top), &top}};
        checkHoldsSomething(open.front(), itemsOf(top));
        OutlineReader reader(top);
        while (!open.empty()) {
            const std::optional<OutlineItem> item = reader.next();
            const bool direct = open.size() == 1;
            if (!item) {
                open.pop_back();
            } else if (item->is_node == 0) {
                reportAmiText(check_, *item, open.back());
            } else if (isLongBranch(*item)) {
                reportRepeated(*item);
                enterBranch(*item, *item->node, section, direct);
                open.push_back(*item);
                reader.enter(*item->node);
            } else {
                readAmiItems(item->node->text, items_);
                walkItems(items_.front(), open.back(), section, direct);
            }
        }
    }

    /// True of a branch whose items are not to be read together.
    static bool isLongBranch(const OutlineItem& item) {
        return !item.node->isFolded() && !sameWord(item.text, kDescription) && !isAmiLeaf(*item.node);
    }

    /// Walks a parameter, a description or a branch, which is in `owner`; `is_direct` if that is a section.
    void walkItems(const AmiItem& top, const AmiItem& owner, Section section, bool is_direct) {
        open_.assign(1, &owner);
        const AmiItem* const end = &top + top.size;
        for (const AmiItem* item = &top; item != end;) {
            while (open_.size() > 1 && item == open_.back() + open_.back()->size) {
                open_.pop_back();
            }
            if (item->is_node == 0) {
                reportAmiText(check_, *item, *open_.back());
            } else if (sameWord(item->text, kDescription)) {
                reportRepeated(*item);
                checkAmiDescription(check_, *item, *open_.back());
            } else {
                const bool direct = is_direct && open_.size() == 1;
                reportRepeated(*item);
                if (!isAmiLeaf(*item)) {
                    enterBranch(*item, *item, section, direct);
                    open_.push_back(item++);
                    continue;
                }
                checkParameter(*item, section, direct);
            }
            item += item->size;
        }
    }

    /// `node` is what holds the branch's items.
    template <class Node> void enterBranch(const AmiItem& branch, const Node& node, Section section, bool direct) {
        if (section == Section::specific) {
            checkSpecificName(branch);
        } else if (direct) {
            const ReservedRow* const row = reservedRow(branch.text);
            // A later version may have branches of names that are not known here.
            const bool may_be = row == nullptr && check_.rules.later && check_.context.parse.takes_later;
            if (!may_be) errorAtLine(at(check_, branch), 4649, shown(branch.text));
            if (row != nullptr) give(*row, nullptr);
        }
        const Node* const only = &node;
        markRepeated(std::span(&only, 1), Names::exact);
        if (section == Section::specific || !direct) checkHoldsSomething(branch, itemsOf(node));
    }

    void checkParameter(const AmiItem& node, Section section, bool direct) {
        if (section == Section::specific) checkSpecificName(node);
        const ReservedRow* const row =
            section == Section::reserved && direct ? readReservedName(check_, node) : nullptr;
        const AmiLeaf leaf = checkAmiLeaf(check_, node);
        if (row == nullptr) return;
        give(*row, singleValue(leaf));
        checkReserved(check_, *row, leaf);
    }

    void checkSpecificName(const AmiItem& node) {
        const ReservedRow* const row = reservedRow(node.text);
        if (row != nullptr && row->text == node.text) warningAtLine(at(check_, node), 4660, shown(node.text));
    }

    /// Notes a reserved parameter; of several the first counts.
    void give(const ReservedRow& row, const AmiItem* value) {
        Given& given = given_[static_cast<std::size_t>(row.code)];
        if (std::exchange(given.seen, true)) return;
        given.is_false = value != nullptr && value->text == "False";
    }

    void checkRequired() {
        for (const Reserved name : kRequired) {
            if (given_[static_cast<std::size_t>(name)].seen) continue;
            error(check_.context.diagnostics, 4652, kReserved[static_cast<std::size_t>(name)].text);
        }
        const bool all_false = std::ranges::all_of(
            kRequired, [this](Reserved name) { return given_[static_cast<std::size_t>(name)].is_false; });
        if (all_false) warning(check_.context.diagnostics, 4659);
    }

    template <class Items> void checkHoldsSomething(const AmiItem& branch, const Items& items) {
        const bool empty = std::ranges::all_of(
            items, [](const AmiItem& item) { return item.is_node != 0 && sameWord(item.text, kDescription); });
        if (empty) warningAtLine(at(check_, branch), 4647, shown(branch.text));
    }

    /// Finds names that are there twice among all that the branches hold, and second descriptions of one of them.
    template <class Node> void markRepeated(std::span<const Node* const> branches, Names names) {
        names_.clear();
        for (const Node* const branch : branches) {
            bool described = false;
            for (const AmiItem& item : itemsOf(*branch)) {
                if (item.is_node == 0) continue;
                if (!sameWord(item.text, kDescription)) {
                    names_.emplace_back(nameMeant(item, names), item.text.data());
                } else if (std::exchange(described, true)) {
                    repeated_.insert(item.text.data());
                }
            }
        }
        // Of equal names the first in the file comes first. Many files have them in order.
        if (!std::ranges::is_sorted(names_)) std::ranges::sort(names_);
        for (std::size_t i = 1; i < names_.size(); ++i) {
            if (sameWord(names_[i].first, names_[i - 1].first)) repeated_.insert(names_[i].second);
        }
    }

    /// A reserved parameter may be spelled in the wrong case.
    static std::string_view nameMeant(const AmiItem& item, Names names) {
        const ReservedRow* const row = names == Names::reserved ? reservedRow(item.text) : nullptr;
        return row == nullptr ? item.text : row->text;
    }

    void reportRepeated(const AmiItem& item) {
        if (!repeated_.contains(item.text.data())) return;
        if (check_.rules.first_version) {
            warningAtLine(at(check_, item), 4632, shown(item.text));
        } else {
            errorAtLine(at(check_, item), 4632, shown(item.text));
        }
    }

    const AmiNode& root_;
    const AmiItem root_head_;
    Sections sections_;
    AmiCheck check_;
    std::array<bool, kSections.size()> section_seen_{};
    std::unordered_set<const char*> repeated_;                    ///< where their names are
    std::vector<std::pair<std::string_view, const char*>> names_; ///< in the branch just entered and where they are
    std::vector<AmiItem> items_;                                  ///< of what is being walked
    std::vector<const AmiItem*> open_;                            ///< in there
    std::array<Given, kReservedCount> given_{};                   ///< by Reserved
};

/// A node being walked, in the test for names.
template <class Node> struct OpenNode {
    const Node* node;
    bool holds_rows;               ///< it is the table of a parameter
    bool in_rows;                  ///< it is a row or in one, so that it is no parameter
    std::optional<bool> is_leaf{}; ///< looked up once
};

/// Only the rows of a table go without a name. What was taken for rows while the brackets were read may be none.
class NameCheck {
public:
    NameCheck(Context& context, std::string_view text) : context_(context), lines_(text) {}

    /// False if a name is missing, which is reported.
    bool allNamed(const AmiOutline& outline) {
        std::vector<OpenNode<AmiNode>> open{{.node = &outline.nodes.front(), .holds_rows = false, .in_rows = false}};
        for (const AmiNode& node : std::span(outline.nodes).subspan(1)) {
            while (&node == open.back().node + open.back().node->size) {
                open.pop_back();
            }
            if (node.isFolded()) {
                checkFolded(node, open.back());
            } else {
                open.push_back(enter(node, headOf(node), open.back()));
            }
        }
        return all_named_;
    }

private:
    void checkFolded(const AmiNode& folded, OpenNode<AmiNode>& parent) {
        readAmiItems(folded.text, items_);
        const AmiItem& top = items_.front();
        open_.assign(1, enter(top, top, parent));
        for (const AmiItem& item : std::span(items_).subspan(1)) {
            while (&item == open_.back().node + open_.back().node->size) {
                open_.pop_back();
            }
            if (item.is_node != 0) open_.push_back(enter(item, item, open_.back()));
        }
    }

    template <class Node, class Parent>
    OpenNode<Node> enter(const Node& node, const AmiItem& head, OpenNode<Parent>& parent) {
        if (!head.hasName() && !parent.holds_rows) {
            errorAtLine(AtLine(context_.diagnostics, lines_.lineOf(head.text)), 4622);
            all_named_ = false;
        }
        const bool in_rows = parent.holds_rows || parent.in_rows;
        return {.node = &node, .holds_rows = !in_rows && isTableOf(node, parent), .in_rows = in_rows};
    }

    /// True when `node`, which is in `parent`, is the table of a parameter.
    template <class Node, class Parent> static bool isTableOf(const Node& node, OpenNode<Parent>& parent) {
        if (!isAmiTable(node)) return false;
        if (!parent.is_leaf) parent.is_leaf = isAmiLeaf(*parent.node);
        return *parent.is_leaf;
    }

    Context& context_;
    LineFinder lines_;
    bool all_named_ = true;
    std::vector<AmiItem> items_;            ///< of the folded node being walked
    std::vector<OpenNode<AmiItem>> open_{}; ///< in there
};

} // namespace

void checkAmi(Context& context, std::string_view text) {
    const AmiOutline outline = readAmiOutline(context, text);
    if (outline.nodes.empty()) return;
    if (!outline.all_named && !NameCheck(context, text).allNamed(outline)) return;
    TreeCheck(context, text, outline.nodes.front()).checkAll();
}

} // namespace kestrel
