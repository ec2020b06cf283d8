#include "ami/leaf.hpp"

#include "ami/words.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <functional>
#include <span>

namespace kestrel {

namespace {

constexpr std::array<EnumerationRow<AmiUsage>, 4> kUsages{{
    {"In", AmiUsage::in},
    {"Out", AmiUsage::out},
    {"Info", AmiUsage::info},
    {"InOut", AmiUsage::inOut},
}};

constexpr std::string_view nameOf(AmiPart part) { return kAmiParts[static_cast<std::size_t>(part)].text; }

bool isFormatWord(const AmiItem& node) { return lookUpAmiWord<kAmiFormats>(node.text).row != nullptr; }

/// The code of the word that gives a part; one that is not in the table is reported.
template <const auto& kRows> auto readWord(AmiCheck& check, AmiLeaf& leaf, AmiPart part, const AmiItem& word) {
    using Code = CodeOf<decltype(kRows)>;
    const auto hit = lookUpAmiWord<kRows>(word.text);
    if (hit.exact) return std::optional(hit.row->code);
    if (hit.row != nullptr) {
        errorAtLine(at(check, word), 4636, leaf.name(), nameOf(part), shown(word.text), hit.row->text);
    } else if (!check.rules.later) {
        errorAtLine(at(check, word), 4635, leaf.name(), nameOf(part), shown(word.text));
    }
    return std::optional<Code>();
}

/// Whether a part holds one word or may hold several.
enum class Words : bool { one, several };

/// Finds the first word of a part; what else is there is reported.
void findWord(AmiCheck& check, AmiLeaf& leaf, AmiPart part, const AmiItem& child, Words words) {
    AmiLeaf::Given& given = leaf[part];
    bool has_nodes = false;
    for (const AmiItem& item : itemsOf(child)) {
        if (item.is_node != 0) {
            has_nodes = true;
            reportUnknownAmiItem(check, leaf, item);
        } else if (given.word == nullptr) {
            given.word = &item;
        } else if (words == Words::one) {
            reportAmiText(check, item, child);
        }
    }
    // In a later version such nodes pass without a word, so what is missing is still to be reported.
    if (has_nodes && given.word == nullptr && !check.rules.later) given.reported = true;
}

void readUsage(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    findWord(check, leaf, AmiPart::usage, child, Words::one);
    const AmiItem* const word = leaf[AmiPart::usage].word;
    if (word == nullptr) return;
    if (check.rules.first_version && word->text == "Inout") { // which spelled it in both ways
        leaf.usage = AmiUsage::inOut;
    } else {
        leaf.usage = readWord<kUsages>(check, leaf, AmiPart::usage, *word);
    }
}

/// How many types a parameter may have: the columns of a table may have their own, and who knows what a format needs
/// that cannot be read.
Words typeWords(const AmiItem& node) {
    for (const AmiItem& child : itemsOf(node)) {
        if (child.is_node == 0) continue;
        const AmiItem* word = &child;
        if (equalsNoCase(child.text, nameOf(AmiPart::format))) {
            if (child.size == 1 || itemsOf(child).front().is_node != 0) return Words::several;
            word = &itemsOf(child).front();
        } else if (!isFormatWord(child)) {
            continue;
        }
        const auto format = lookUpAmiWord<kAmiFormats>(word->text);
        return format.row == nullptr || format.row->code == AmiFormat::table ? Words::several : Words::one;
    }
    return Words::one;
}

void readType(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    const Words words = child.size > 2 ? typeWords(*leaf.node) : Words::one;
    findWord(check, leaf, AmiPart::type, child, words);
    const AmiItem* const first = leaf[AmiPart::type].word;
    if (first == nullptr) return;
    leaf.type_words = 1;
    leaf.type = readWord<kAmiTypes>(check, leaf, AmiPart::type, *first);
    if (words == Words::one) return;
    bool all_known = leaf.type.has_value();
    for (const AmiItem& word : itemsOf(child)) {
        if (word.is_node != 0 || &word == first) continue;
        ++leaf.type_words;
        if (leaf.type) leaf.column_types.push_back({*leaf.type, first});
        leaf.type.reset();
        const std::optional<AmiType> type = readWord<kAmiTypes>(check, leaf, AmiPart::type, word);
        if (type) leaf.column_types.push_back({*type, &word});
        all_known = all_known && type;
    }
    if (!all_known) leaf.column_types.clear();
}

/// Reads "(Format Range 1 0 2)" or "(Range 1 0 2)".
void readFormat(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    AmiLeaf::Given& format = leaf[AmiPart::format];
    leaf.values = itemsOf(child);
    if (!sameWord(child.text, nameOf(AmiPart::format))) {
        format.word = &child;
    } else if (!leaf.values.empty() && leaf.values.front().is_node == 0) {
        format.word = &leaf.values.front();
        leaf.values = leaf.values.withoutFirst();
    } else {
        if (check.rules.later) return;
        errorAtLine(at(check, child), 4635, leaf.name(), nameOf(AmiPart::format), std::string_view());
        return;
    }
    leaf.format = readWord<kAmiFormats>(check, leaf, AmiPart::format, *format.word);
}

void readDefault(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    findWord(check, leaf, AmiPart::initial, child, Words::one);
    if (child.size > 1) return; // a node in place of the word was reported
    errorAtLine(at(check, child), 4637, leaf.name(), nameOf(AmiPart::initial), 0, 1);
}

/// Reads the texts that a later version has for the members of a list.
void readListTip(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    if (!check.rules.later) warningAtLine(at(check, child), 4651, nameOf(AmiPart::listTip));
    for (const AmiItem& item : itemsOf(child)) {
        if (item.is_node != 0) reportUnknownAmiItem(check, leaf, item);
    }
    leaf.list_tip = &child;
}

void readPart(AmiCheck& check, AmiLeaf& leaf, AmiPart part, const AmiItem& child) {
    if (std::exchange(leaf[part].met, true)) {
        errorAtLine(at(check, child), 4634, leaf.name(), nameOf(part));
        return;
    }
    switch (part) {
    case AmiPart::usage: readUsage(check, leaf, child); break;
    case AmiPart::type: readType(check, leaf, child); break;
    case AmiPart::format: readFormat(check, leaf, child); break;
    case AmiPart::initial: readDefault(check, leaf, child); break;
    case AmiPart::description: checkAmiDescription(check, child, *leaf.node); break;
    case AmiPart::listTip: readListTip(check, leaf, child); break;
    }
}

/// Reads a node in a parameter.
void readChild(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    if (isFormatWord(child)) { // in the right case or not
        readPart(check, leaf, AmiPart::format, child);
        return;
    }
    const auto part = lookUpAmiWord<kAmiParts>(child.text);
    if (part.exact) {
        readPart(check, leaf, part.row->code, child);
        return;
    }
    reportUnknownAmiItem(check, leaf, child);
    if (part.row != nullptr && !check.rules.later) leaf[part.row->code].reported = true;
}

void checkRequired(AmiCheck& check, const AmiLeaf& leaf) {
    for (const AmiPart part : {AmiPart::usage, AmiPart::type}) {
        if (leaf[part].word != nullptr || leaf[part].reported) continue;
        if (part == AmiPart::usage && check.rules.first_version) {
            warningAtLine(at(check, *leaf.node), 4633, leaf.name(), nameOf(part));
        } else {
            errorAtLine(at(check, *leaf.node), 4633, leaf.name(), nameOf(part));
        }
    }
    for (const AmiPart part : {AmiPart::format, AmiPart::initial}) {
        if (leaf[part].met || leaf[part].reported) return;
    }
    // What the usage is may not be known, having been reported.
    const AmiLeaf::Given& usage = leaf[AmiPart::usage];
    const bool may_be_out = leaf.usage ? leaf.usage == AmiUsage::out : usage.word != nullptr || usage.reported;
    if (!may_be_out) warningAtLine(at(check, *leaf.node), 4641, leaf.name());
}

/// The parts that nothing but a parameter has.
constexpr EnumSet<AmiPart> kMarks{AmiPart::usage, AmiPart::type, AmiPart::format, AmiPart::initial};

bool namesPart(const AmiItem& node) {
    const auto part = lookUpAmiWord<kAmiParts>(node.text);
    if (part.exact) return kMarks.has(part.row->code);
    return lookUpAmiWord<kAmiFormats>(node.text).exact;
}

bool holdsOnlyTexts(const AmiItem& node) {
    return std::ranges::none_of(itemsOf(node), [](const AmiItem& item) { return item.is_node != 0; });
}

bool isOneString(AmiItems items) {
    return !items.empty() && items.withoutFirst().empty() && items.front().is_node == 0 && items.front().quoted != 0;
}

/// True of a table that holds nothing but rows, whether its columns fit or not; false of a parameter or a branch that
/// is called so.
bool holdsOnlyRows(const AmiItem& table) {
    return std::ranges::all_of(itemsOf(table), [](const AmiItem& item) {
        const bool describes = sameWord(item.text, nameOf(AmiPart::description)) && isOneString(itemsOf(item));
        return item.is_node == 0 || (!namesPart(item) && holdsOnlyTexts(item) && !describes);
    });
}

/// True when what holds this child can only be a parameter. A child that holds named nodes is a parameter or a branch
/// itself.
bool marksLeaf(const AmiItem& child) {
    if (child.is_node == 0 || child.size == 1 || !namesPart(child)) return false;
    return holdsOnlyTexts(child) || (isAmiTable(child) && holdsOnlyRows(child));
}

/// True when nodes in this one hold nodes again for certain, so that it is neither a word's nor a table's and need not
/// be read.
bool holdsLongNodes(const AmiNode& node) {
    return std::ranges::any_of(std::span(&node, node.size).subspan(1), std::not_fn(&AmiNode::isFolded));
}

} // namespace

AtLine at(AmiCheck& check, const AmiItem& item) { return {check.context.diagnostics, check.lines.lineOf(item.text)}; }

void reportAmiText(AmiCheck& check, const AmiItem& text, const AmiItem& place) {
    errorAtLine(at(check, text), 4630, shown(text.text), shown(place.text));
}

void reportUnknownAmiItem(AmiCheck& check, const AmiLeaf& leaf, const AmiItem& item) {
    if (!check.rules.later) errorAtLine(at(check, item), 4645, leaf.name(), shown(item.text));
}

void checkAmiDescription(AmiCheck& check, const AmiItem& description, const AmiItem& owner) {
    if (!isOneString(itemsOf(description))) errorAtLine(at(check, description), 4631, shown(owner.text));
}

bool isAmiLeaf(const AmiItem& node) { return std::ranges::any_of(itemsOf(node), marksLeaf); }

bool isAmiLeaf(const AmiNode& node) {
    std::vector<AmiItem> items;
    return std::ranges::any_of(itemsOf(node), [&](const OutlineItem& child) {
        if (child.is_node == 0 || !namesPart(child) || holdsLongNodes(*child.node)) return false;
        readAmiItems(child.node->text, items);
        return marksLeaf(items.front());
    });
}

bool isAmiTable(const AmiItem& node) {
    constexpr std::string_view kTable = kAmiFormats[static_cast<std::size_t>(AmiFormat::table)].text;
    if (sameWord(node.text, kTable)) return true;
    if (!sameWord(node.text, nameOf(AmiPart::format)) || node.size == 1) return false;
    const AmiItem& first = itemsOf(node).front();
    return first.is_node == 0 && first.text == kTable;
}

std::optional<AmiLeaf::ColumnType> firstTypeOutside(const AmiLeaf& leaf, AmiTypeSet types) {
    if (leaf.type && !types.has(*leaf.type)) return AmiLeaf::ColumnType{*leaf.type, leaf[AmiPart::type].word};
    for (const AmiLeaf::ColumnType& column : leaf.column_types) {
        if (!types.has(column.type)) return column;
    }
    return std::nullopt;
}

const AmiItem* firstValue(const AmiLeaf& leaf) {
    if (leaf.format != AmiFormat::value || !leaf.good_values) return nullptr;
    for (const AmiItem& item : leaf.values) {
        if (item.is_node == 0) return &item;
    }
    return nullptr;
}

const AmiItem* defaultValue(const AmiLeaf& leaf) {
    return leaf.good_default && !leaf.default_outside ? leaf[AmiPart::initial].word : nullptr;
}

const AmiItem* singleValue(const AmiLeaf& leaf) {
    return leaf.format == AmiFormat::value ? firstValue(leaf) : defaultValue(leaf);
}

AmiLeaf checkAmiLeaf(AmiCheck& check, const AmiItem& node) {
    AmiLeaf leaf;
    leaf.node = &node;
    for (const AmiItem& item : itemsOf(node)) {
        if (item.is_node != 0) {
            readChild(check, leaf, item);
        } else {
            reportAmiText(check, item, node);
        }
    }
    checkRequired(check, leaf);
    checkAmiValues(check, leaf);
    return leaf;
}

} // namespace kestrel
