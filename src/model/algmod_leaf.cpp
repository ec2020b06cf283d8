#include "model/algmod_leaf.hpp"

#include "ibis/run.hpp"

#include <algorithm>

namespace kestrel {

namespace {

constexpr std::array<EnumerationRow<AmiUsage>, 4> kUsages{{
    {"In", AmiUsage::in},
    {"Out", AmiUsage::out},
    {"Info", AmiUsage::info},
    {"InOut", AmiUsage::inOut},
}};

constexpr std::string_view nameOf(AmiPart part) { return kAmiParts[static_cast<std::size_t>(part)].text; }

bool isFormatWord(const AmiItem& node) { return lookUpEnumeration(kAmiFormats, node.text).row != nullptr; }

/// The code of the word that gives a part; one that is not in the table is reported.
template <class Rows>
std::optional<CodeOf<Rows>> readWord(AmiCheck& check, AmiLeaf& leaf, AmiPart part, const Rows& rows,
                                     const AmiItem& word) {
    const auto hit = lookUpEnumeration(rows, word.text);
    if (hit.exact) return hit.row->code;
    leaf[part].refused = true;
    if (hit.row != nullptr) {
        errorAtLine(at(check, word), 4636, leaf.name(), nameOf(part), shown(word.text), hit.row->text);
    } else if (!check.rules.later) {
        errorAtLine(at(check, word), 4635, leaf.name(), nameOf(part), shown(word.text));
    }
    return std::nullopt;
}

/// Whether a part holds one word or may hold several.
enum class Words : bool { one, several };

/// The first word of a part; what else stands there is reported.
const AmiItem* firstWord(AmiCheck& check, AmiLeaf& leaf, AmiPart part, const AmiItem& child, Words words) {
    const AmiItem* first = nullptr;
    for (const AmiItem& item : itemsOf(child)) {
        if (item.is_node != 0) {
            leaf[part].refused = !check.rules.later; // then it is reported
            reportUnknownAmiItem(check, leaf, item);
        } else if (first == nullptr) {
            first = &item;
        } else if (words == Words::one) {
            reportAmiText(check, item, child);
        }
    }
    leaf[part].word = first;
    return first;
}

void readUsage(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    const AmiItem* const word = firstWord(check, leaf, AmiPart::usage, child, Words::one);
    if (word != nullptr) leaf.usage = readWord(check, leaf, AmiPart::usage, kUsages, *word);
}

/// How many types a parameter may have: the columns of a table may have their own, and who knows what a format that is
/// not known needs.
Words typeWords(const AmiItem& node) {
    for (const AmiItem& child : itemsOf(node)) {
        if (child.is_node == 0) continue;
        const AmiItem* word = &child;
        if (child.text == nameOf(AmiPart::format)) {
            if (child.size == 1) return Words::one;
            word = &itemsOf(child).front();
        } else if (!isFormatWord(child)) {
            continue;
        }
        const auto format = lookUpEnumeration(kAmiFormats, word->text);
        return format.row == nullptr || format.row->code == AmiFormat::table ? Words::several : Words::one;
    }
    return Words::one;
}

void readType(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    const Words words = typeWords(*leaf.node);
    const AmiItem* const first = firstWord(check, leaf, AmiPart::type, child, words);
    if (first == nullptr) return;
    if (words == Words::one) {
        leaf.types = {first, first + first->size};
        leaf.type = readWord(check, leaf, AmiPart::type, kAmiTypes, *first);
        return;
    }
    leaf.types = itemsOf(child);
    for (const AmiItem& word : leaf.types) {
        if (word.is_node != 0) continue;
        const std::optional<AmiType> type = readWord(check, leaf, AmiPart::type, kAmiTypes, word);
        leaf.type = &word == first ? type : std::nullopt;
    }
}

/// Reads "(Format Range 1 0 2)" or "(Range 1 0 2)".
void readFormat(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    AmiLeaf::Given& format = leaf[AmiPart::format];
    format.word = &child;
    leaf.values = itemsOf(child);
    if (child.text == nameOf(AmiPart::format)) {
        if (leaf.values.empty() || leaf.values.front().is_node != 0) {
            format.refused = true;
            if (!check.rules.later) {
                errorAtLine(at(check, child), 4635, leaf.name(), nameOf(AmiPart::format), std::string_view());
            }
            return;
        }
        format.word = &leaf.values.front();
        leaf.values = leaf.values.withoutFirst();
    }
    leaf.format = readWord(check, leaf, AmiPart::format, kAmiFormats, *format.word);
}

void readDefault(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    const AmiItem* const value = firstWord(check, leaf, AmiPart::initial, child, Words::one);
    AmiLeaf::Given& given = leaf[AmiPart::initial];
    if (value != nullptr || given.refused) return;
    given.refused = true;
    errorAtLine(at(check, child), 4637, leaf.name(), nameOf(AmiPart::initial), 0, 1);
}

void readPart(AmiCheck& check, AmiLeaf& leaf, AmiPart part, const AmiItem& child) {
    if (leaf[part].seen()) {
        errorAtLine(at(check, child), 4634, leaf.name(), nameOf(part));
        return;
    }
    switch (part) {
    case AmiPart::usage: readUsage(check, leaf, child); break;
    case AmiPart::type: readType(check, leaf, child); break;
    case AmiPart::format: readFormat(check, leaf, child); break;
    case AmiPart::initial: readDefault(check, leaf, child); break;
    case AmiPart::description:
        leaf[part].word = &child;
        checkAmiDescription(check, child, *leaf.node);
        break;
    }
}

/// Reads a node in a parameter.
void readChild(AmiCheck& check, AmiLeaf& leaf, const AmiItem& child) {
    if (isFormatWord(child)) { // in the right case or not
        readPart(check, leaf, AmiPart::format, child);
        return;
    }
    const auto part = lookUpEnumeration(kAmiParts, child.text);
    if (part.exact) {
        readPart(check, leaf, part.row->code, child);
        return;
    }
    if (part.row != nullptr) leaf[part.row->code].misspelled = !check.rules.later; // then it is reported
    reportUnknownAmiItem(check, leaf, child);
}

void checkRequired(AmiCheck& check, const AmiLeaf& leaf) {
    for (const AmiPart part : {AmiPart::usage, AmiPart::type}) {
        if (leaf[part].seen() || leaf[part].misspelled) continue;
        errorAtLine(at(check, *leaf.node), 4633, leaf.name(), nameOf(part));
    }
    for (const AmiPart part : {AmiPart::format, AmiPart::initial}) {
        if (leaf[part].seen() || leaf[part].misspelled) return;
    }
    if (leaf.usage == AmiUsage::out || leaf[AmiPart::usage].refused) return;
    warningAtLine(at(check, *leaf.node), 4641, leaf.name());
}

bool namesPart(const AmiItem& node) {
    const auto part = lookUpEnumeration(kAmiParts, node.text);
    if (part.exact) return part.row->code != AmiPart::description;
    return lookUpEnumeration(kAmiFormats, node.text).exact;
}

bool holdsOnlyTexts(const AmiItem& node) {
    return std::ranges::none_of(itemsOf(node), [](const AmiItem& item) { return item.is_node != 0; });
}

/// True when a table's nodes can be its rows; they are none in a parameter or a branch that is called so.
bool holdsRows(const AmiItem& table) {
    return std::ranges::all_of(itemsOf(table), [](const AmiItem& item) {
        return item.is_node == 0 || (!namesPart(item) && holdsOnlyTexts(item));
    });
}

/// True when what holds this child can only be a parameter. A child that holds named nodes is a parameter or a branch
/// itself.
bool marksLeaf(const AmiItem& child) {
    if (child.is_node == 0 || child.size == 1 || !namesPart(child)) return false;
    const AmiItem& first = itemsOf(child).front();
    if (child.text == nameOf(AmiPart::format) && first.is_node == 0) {
        return lookUpEnumeration(kAmiFormats, first.text).exact || holdsOnlyTexts(child);
    }
    constexpr std::string_view kTable = kAmiFormats[static_cast<std::size_t>(AmiFormat::table)].text;
    return child.text == kTable ? holdsRows(child) : holdsOnlyTexts(child);
}

} // namespace

Diagnostics& at(AmiCheck& check, const AmiItem& item) {
    check.run.parse.line = check.lines.lineOf(item.text);
    return check.run.diagnostics;
}

void reportAmiText(AmiCheck& check, const AmiItem& text, const AmiItem& place) {
    errorAtLine(at(check, text), 4630, shown(text.text), shown(place.text));
}

void reportUnknownAmiItem(AmiCheck& check, const AmiLeaf& leaf, const AmiItem& item) {
    if (!check.rules.later) errorAtLine(at(check, item), 4645, leaf.name(), shown(item.text));
}

void checkAmiDescription(AmiCheck& check, const AmiItem& description, const AmiItem& owner) {
    const AmiItems items = itemsOf(description);
    const bool one_string = description.size == 2 && items.front().is_node == 0 && items.front().quoted != 0;
    if (!one_string) errorAtLine(at(check, description), 4631, shown(owner.text));
}

bool isAmiLeaf(const AmiItem& node) { return std::ranges::any_of(itemsOf(node), marksLeaf); }

void reportNamelessAmiNode(AmiCheck& check, const AmiItem& node) { errorAtLine(at(check, node), 4622); }

AmiItems typesOf(const AmiLeaf& leaf) { return leaf[AmiPart::type].refused ? AmiItems{} : leaf.types; }

AmiType amiType(const AmiItem& word) {
    return std::ranges::find(kAmiTypes, word.text, &EnumerationRow<AmiType>::text)->code;
}

const AmiItem* singleValue(const AmiItem& node) {
    constexpr std::string_view kValue = kAmiFormats[static_cast<std::size_t>(AmiFormat::value)].text;
    const AmiItem* initial = nullptr;
    const AmiItem* format = nullptr; // of several the first counts
    for (const AmiItem& child : itemsOf(node)) {
        if (child.is_node == 0) continue;
        if (child.text == nameOf(AmiPart::initial)) {
            if (initial == nullptr) initial = &child;
        } else if (format == nullptr && (child.text == nameOf(AmiPart::format) || isFormatWord(child))) {
            format = &child;
        }
    }
    const auto first = [](AmiItems items) {
        return items.empty() || items.front().is_node != 0 ? nullptr : &items.front();
    };
    if (format != nullptr && format->text == kValue) return first(itemsOf(*format));
    const AmiItem* const word = format == nullptr ? nullptr : first(itemsOf(*format));
    if (word != nullptr && word->text == kValue && format->text == nameOf(AmiPart::format)) {
        return first(itemsOf(*format).withoutFirst());
    }
    return initial == nullptr ? nullptr : first(itemsOf(*initial));
}

AmiLeaf checkAmiLeaf(AmiCheck& check, const AmiItem& node) {
    AmiLeaf leaf;
    leaf.node = &node;
    for (const AmiItem& item : itemsOf(node)) {
        if (item.is_node == 0) {
            reportAmiText(check, item, node);
        } else if (!item.hasName()) {
            reportNamelessAmiNode(check, item);
        } else {
            readChild(check, leaf, item);
        }
    }
    checkRequired(check, leaf);
    checkAmiValues(check, leaf);
    return leaf;
}

} // namespace kestrel
