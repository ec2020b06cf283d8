#include "ami/check.hpp"

#include "ami/reserved.hpp"
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

/// The sections of a tree by what they hold, however their names are spelled.
struct Sections {
    std::vector<const AmiItem*> reserved;
    std::vector<const AmiItem*> specific;
};

Sections findSections(const AmiItem& root) {
    Sections sections;
    for (const AmiItem& item : itemsOf(root)) {
        const auto section = lookUpEnumeration(kSections, item.text);
        if (item.is_node == 0 || section.row == nullptr) continue;
        if (section.row->code == Section::reserved) sections.reserved.push_back(&item);
        if (section.row->code == Section::specific) sections.specific.push_back(&item);
    }
    return sections;
}

AmiRules chooseRules(AmiCheck& check, const Sections& sections) {
    for (const AmiItem* const section : sections.reserved) {
        for (const AmiItem& item : itemsOf(*section)) {
            const ReservedRow* const row = item.is_node != 0 ? reservedRow(item.text) : nullptr;
            if (row != nullptr && row->code == Reserved::amiVersion) return readAmiVersion(check, item);
        }
    }
    AmiRules rules;
    rules.first_version = true;
    return rules;
}

/// How names in a branch are compared.
enum class Names : bool { exact, reserved };

/// Checks a whole tree.
class TreeCheck {
public:
    TreeCheck(Context& context, std::string_view text, const AmiItem& root)
        : root_(root), sections_(findSections(root)), check_{context, LineFinder(text), {}} {
        check_.rules = chooseRules(check_, sections_);
    }

    void checkAll() {
        markRepeated(sections_.reserved, Names::reserved);
        markRepeated(sections_.specific, Names::exact);
        for (const AmiItem& item : itemsOf(root_)) {
            if (item.is_node != 0) {
                checkRootChild(item);
            } else {
                reportAmiText(check_, item, root_);
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

    void checkRootChild(const AmiItem& child) {
        const auto section = lookUpEnumeration(kSections, child.text);
        if (section.row == nullptr) {
            errorAtLine(at(check_, child), 4626, shown(child.text));
            return;
        }
        if (!section.exact) errorAtLine(at(check_, child), 4629, shown(child.text), section.row->text);
        bool& seen = section_seen_[static_cast<std::size_t>(section.row->code)];
        if (std::exchange(seen, true)) errorAtLine(at(check_, child), 4628, section.row->text);
        switch (section.row->code) {
        case Section::reserved: walk(child, Section::reserved); break;
        case Section::specific:
            checkSectionOrder(child);
            walk(child, Section::specific);
            break;
        case Section::description: checkAmiDescription(check_, child, root_); break;
        }
    }

    void checkSectionOrder(const AmiItem& specific) {
        const bool reserved_follows =
            !sections_.reserved.empty() && !section_seen_[static_cast<std::size_t>(Section::reserved)];
        if (check_.rules.first_version || !reserved_follows || &specific != sections_.specific.front()) return;
        errorAtLine(at(check_, specific), 4656, shown(check_.rules.version));
    }

    /// Walks a section and its branches. They may be nested as deep as the file is long.
    void walk(const AmiItem& top, Section section) {
        std::vector<const AmiItem*> open{&top};
        checkHoldsSomething(top);
        const AmiItem* const end = &top + top.size;
        for (const AmiItem* item = &top + 1; item != end;) {
            while (item == open.back() + open.back()->size) {
                open.pop_back();
            }
            if (item->is_node == 0) {
                reportAmiText(check_, *item, *open.back());
            } else if (item->text == kDescription) {
                reportRepeated(*item);
                checkAmiDescription(check_, *item, *open.back());
            } else {
                const bool direct = open.size() == 1;
                reportRepeated(*item);
                if (!isAmiLeaf(*item)) {
                    enterBranch(*item, section, direct);
                    open.push_back(item++);
                    continue;
                }
                checkParameter(*item, section, direct);
            }
            item += item->size;
        }
    }

    void enterBranch(const AmiItem& branch, Section section, bool direct) {
        if (section == Section::specific) {
            checkSpecificName(branch);
        } else if (direct) {
            errorAtLine(at(check_, branch), 4649, shown(branch.text));
            if (const ReservedRow* const row = reservedRow(branch.text)) give(*row, nullptr);
        }
        const AmiItem* const only = &branch;
        markRepeated(std::span(&only, 1), Names::exact);
        if (section == Section::specific || !direct) checkHoldsSomething(branch);
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

    void checkHoldsSomething(const AmiItem& branch) {
        const bool empty = std::ranges::all_of(
            itemsOf(branch), [](const AmiItem& item) { return item.is_node != 0 && item.text == kDescription; });
        if (empty) warningAtLine(at(check_, branch), 4647, shown(branch.text));
    }

    /// Finds names that are there twice among all that the branches hold, and second descriptions of one of them.
    void markRepeated(std::span<const AmiItem* const> branches, Names names) {
        names_.clear();
        for (const AmiItem* const branch : branches) {
            bool described = false;
            for (const AmiItem& item : itemsOf(*branch)) {
                if (item.is_node == 0) continue;
                if (item.text != kDescription) {
                    names_.emplace_back(nameMeant(item, names), &item);
                } else if (std::exchange(described, true)) {
                    repeated_.insert(&item);
                }
            }
        }
        // Of equal names the first in the file comes first.
        std::ranges::sort(names_);
        for (std::size_t i = 1; i < names_.size(); ++i) {
            if (names_[i].first == names_[i - 1].first) repeated_.insert(names_[i].second);
        }
    }

    /// A reserved parameter may be spelled in the wrong case.
    static std::string_view nameMeant(const AmiItem& item, Names names) {
        const ReservedRow* const row = names == Names::reserved ? reservedRow(item.text) : nullptr;
        return row == nullptr ? item.text : row->text;
    }

    void reportRepeated(const AmiItem& item) {
        if (!repeated_.contains(&item)) return;
        if (check_.rules.first_version) {
            warningAtLine(at(check_, item), 4632, shown(item.text));
        } else {
            errorAtLine(at(check_, item), 4632, shown(item.text));
        }
    }

    const AmiItem& root_;
    Sections sections_;
    AmiCheck check_;
    std::array<bool, kSections.size()> section_seen_{};
    std::unordered_set<const AmiItem*> repeated_;
    std::vector<std::pair<std::string_view, const AmiItem*>> names_; ///< of the branch just entered; kept for its room
    std::array<Given, kReservedCount> given_{};                      ///< by Reserved
};

/// A node being walked, in the test for names.
struct OpenNode {
    const AmiItem* node;
    bool holds_rows;               ///< it is the table of a parameter
    bool in_rows;                  ///< it is a row or in one, so that it is no parameter
    std::optional<bool> is_leaf{}; ///< looked up once
};

/// True when `item`, which is in `parent`, is the table of a parameter.
bool isTableOf(const AmiItem& item, OpenNode& parent) {
    if (!isAmiTable(item) || parent.holds_rows || parent.in_rows) return false;
    if (!parent.is_leaf) parent.is_leaf = isAmiLeaf(*parent.node);
    return *parent.is_leaf;
}

/// Only the rows of a table go without a name. What was taken for rows while the tree was read may be none.
bool allNamed(Context& context, std::string_view text, const std::vector<AmiItem>& tree) {
    if (std::ranges::all_of(tree, &AmiItem::hasName)) return true;
    LineFinder lines(text);
    bool all_named = true;
    std::vector<OpenNode> open{{.node = tree.data(), .holds_rows = false, .in_rows = false}};
    for (const AmiItem& item : std::span(tree).subspan(1)) {
        while (&item == open.back().node + open.back().node->size) {
            open.pop_back();
        }
        if (item.is_node == 0) continue;
        OpenNode& parent = open.back();
        if (!item.hasName() && !parent.holds_rows) {
            errorAtLine(AtLine(context.diagnostics, lines.lineOf(item.text)), 4622);
            all_named = false;
        }
        const bool in_rows = parent.holds_rows || parent.in_rows;
        open.push_back({.node = &item, .holds_rows = isTableOf(item, parent), .in_rows = in_rows});
    }
    return all_named;
}

} // namespace

void checkAmi(Context& context, std::string_view text) {
    const std::vector<AmiItem> tree = readAmiTree(context, text);
    if (!tree.empty() && allNamed(context, text, tree)) TreeCheck(context, text, tree.front()).checkAll();
}

} // namespace kestrel
