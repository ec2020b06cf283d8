#include "reader/values.hpp"

#include "ami/leaf.hpp"
#include "ami/words.hpp"
#include "reader/context.hpp"

#include <algorithm>
#include <cmath>

namespace kestrel {

namespace {

constexpr std::array<EnumerationRow<bool>, 2> kBooleans{{{"True", true}, {"False", false}}};

const AmiFormatRow& rowOf(AmiFormat format) { return kAmiFormats[static_cast<std::size_t>(format)]; }

std::string_view nameOf(AmiType type) { return kAmiTypes[static_cast<std::size_t>(type)].text; }

constexpr std::string_view kDefault = kAmiParts[static_cast<std::size_t>(AmiPart::initial)].text;

bool isWholeNumber(std::string_view text) {
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
    return !text.empty() && std::ranges::all_of(text, isDigit);
}

/// What is in some items, taken together.
struct Contents {
    int texts = 0;
    bool has_nodes = false;
};

Contents contentsOf(AmiItems items) {
    Contents contents;
    for (const AmiItem& item : items) {
        if (item.is_node != 0) {
            contents.has_nodes = true;
        } else {
            ++contents.texts;
        }
    }
    return contents;
}

void reportNodes(AmiCheck& check, const AmiLeaf& leaf, AmiItems items) {
    for (const AmiItem& item : items) {
        if (item.is_node != 0) reportUnknownAmiItem(check, leaf, item);
    }
}

/// A value that was checked to be a number.
double numberOf(const AmiItem& value) {
    double number = 0.0;
    return readScaled(value.text, number) == ReadResult::number ? number : 0.0;
}

/// True when `value` is one of the type; otherwise it is reported. `part` is where it was given. A number is put into
/// `number`; a whole one only if that is `wanted`, as its digits say that it is right.
bool checkValue(AmiCheck& check, const AmiLeaf& leaf, AmiType type, const AmiItem& value, std::string_view part,
                double& number, bool wanted) {
    switch (type) {
    case AmiType::text: return true;
    case AmiType::boolean: {
        const auto hit = lookUpAmiWord<kBooleans>(value.text);
        if (value.quoted != 0 || hit.row == nullptr) break;
        if (hit.exact) return true;
        errorAtLine(at(check, value), 4636, leaf.name(), part, shown(value.text), hit.row->text);
        return false;
    }
    case AmiType::integer:
        if (value.quoted != 0 || !isWholeNumber(value.text)) break;
        if (wanted) number = numberOf(value);
        return true;
    case AmiType::real:
    case AmiType::tap:
    case AmiType::unitInterval:
        if (value.quoted == 0 && readScaled(value.text, number) == ReadResult::number) return true;
        break;
    }
    errorAtLine(at(check, value), 4638, leaf.name(), shown(value.text), nameOf(type));
    return false;
}

/// Compares numbers that may have been scaled: "3n" reads as a bit more than "3e-9". Whole numbers read as they are.
bool atMost(double low, double high) {
    constexpr double kTolerance = 1e-14;
    if (low <= high) return true;
    const bool whole = std::trunc(low) == low && std::trunc(high) == high;
    return !whole && low - high <= kTolerance * std::min(std::abs(low), std::abs(high));
}

/// The columns of a table and what they hold.
class Table {
public:
    explicit Table(const AmiLeaf& leaf) : leaf_(leaf), columns_(leaf.type_words > 1 ? leaf.type_words : 0) {
        for (const AmiItem& row : leaf.values) {
            if (row.is_node == 0) continue;
            if (first_ == nullptr) first_ = &row;
            if (isLabels(row)) continue;
            const Contents contents = contentsOfRow(row);
            if (columns_ == 0 && !contents.has_nodes) columns_ = contents.texts;
            if (contents.texts > 0 || contents.has_nodes) ++rows_;
        }
    }

    /// Rows with values; the labels are none.
    [[nodiscard]] int rows() const { return rows_; }

    void checkCounts(AmiCheck& check) const {
        for (const AmiItem& row : leaf_.values) {
            if (row.is_node == 0) {
                reportAmiText(check, row, *leaf_[AmiPart::format].word);
                continue;
            }
            const Contents contents = contentsOfRow(row);
            if (contents.has_nodes) reportNodes(check, leaf_, itemsOf(row));
            const int columns = contents.texts - (isLabels(row) ? 1 : 0);
            if (contents.has_nodes || columns == columns_ || columns_ == 0) continue;
            errorAtLine(at(check, row), 4646, leaf_.name(), columns, columns_);
        }
    }

    [[nodiscard]] bool checkValues(AmiCheck& check) const {
        return std::ranges::all_of(leaf_.values, [&](const AmiItem& row) {
            return row.is_node == 0 || isLabels(row) || checkRow(check, row);
        });
    }

private:
    /// The first row may name the columns.
    [[nodiscard]] bool isLabels(const AmiItem& row) const {
        return &row == first_ && row.text == "Labels" && row.quoted == 0;
    }

    /// The name of a row is its first column.
    static Contents contentsOfRow(const AmiItem& row) {
        Contents contents = contentsOf(itemsOf(row));
        if (row.hasName()) ++contents.texts;
        return contents;
    }

    [[nodiscard]] bool checkRow(AmiCheck& check, const AmiItem& row) const {
        std::size_t column = 0;
        const auto check_cell = [&](const AmiItem& cell) {
            const std::optional<AmiType> type = typeOf(column++);
            double number = 0.0;
            return !type || checkValue(check, leaf_, *type, cell, rowOf(AmiFormat::table).text, number, false);
        };
        if (row.hasName() && !check_cell(row)) return false;
        return std::ranges::all_of(itemsOf(row),
                                   [&](const AmiItem& cell) { return cell.is_node != 0 || check_cell(cell); });
    }

    /// None for a column of unknown type, nor for one too many, which was reported.
    [[nodiscard]] std::optional<AmiType> typeOf(std::size_t column) const {
        if (leaf_.column_types.empty()) return leaf_.type;
        return column < leaf_.column_types.size() ? std::optional(leaf_.column_types[column].type) : std::nullopt;
    }

    const AmiLeaf& leaf_;
    const AmiItem* first_ = nullptr; ///< of the rows
    int columns_;                    ///< 0: not known from any row
    int rows_ = 0;
};

/// True when the format may have values of the type; a parameter without one of the two counts as right.
bool checkFormatType(AmiCheck& check, const AmiLeaf& leaf) {
    if (!leaf.format) return true;
    const AmiFormatRow& row = rowOf(*leaf.format);
    const auto unfit = firstTypeOutside(leaf, row.types);
    if (unfit) errorAtLine(at(check, *leaf[AmiPart::format].word), 4639, leaf.name(), row.text, nameOf(unfit->type));
    return !unfit;
}

/// True when the format has as many values as it needs; `table` is there if that is a table.
bool checkValueCount(AmiCheck& check, const AmiLeaf& leaf, const std::optional<Table>& table) {
    if (!leaf.format) return false;
    const AmiFormatRow& row = rowOf(*leaf.format);
    Contents contents;
    if (table) {
        table->checkCounts(check);
        contents.texts = table->rows();
    } else {
        contents = contentsOf(leaf.values);
        if (contents.has_nodes) {
            reportNodes(check, leaf, leaf.values);
            return false;
        }
    }
    const bool at_least = table || *leaf.format == AmiFormat::list;
    const bool pair = *leaf.format == AmiFormat::corner && check.rules.first_version && contents.texts == 2;
    if (pair || contents.texts == row.values || (at_least && contents.texts > row.values)) return true;
    errorAtLine(at(check, *leaf[AmiPart::format].word), 4637, leaf.name(), row.text, contents.texts, row.values);
    return false;
}

/// The formats that begin with typical value, minimum and maximum.
constexpr AmiFormatSet kOrdered{AmiFormat::range, AmiFormat::increment, AmiFormat::steps};

/// The values of such a format: typical value, minimum, maximum and, but for a range, one more.
using Numbers = std::array<double, 4>;

/// Stops at the first value that is none of the type. The numbers of an ordered format are kept for checkOrder().
bool checkFormatValues(AmiCheck& check, const AmiLeaf& leaf, const std::optional<Table>& table, Numbers& numbers) {
    if (table) return table->checkValues(check);
    if (!leaf.format || !leaf.type) return true;
    const bool ordered = kOrdered.has(*leaf.format);
    std::size_t place = 0;
    for (const AmiItem& value : leaf.values) {
        if (value.is_node != 0) continue;
        double number = 0.0;
        if (!checkValue(check, leaf, *leaf.type, value, rowOf(*leaf.format).text, number, ordered)) return false;
        if (place < numbers.size()) numbers[place++] = number;
    }
    return true;
}

struct Bounds {
    double min;
    double max;
};

/// Checks the order of a complete list of numbers; without a fault in it, returns the bounds.
std::optional<Bounds> checkOrder(AmiCheck& check, const AmiLeaf& leaf, const Numbers& numbers) {
    const auto [typ, min, max, last] = numbers;
    const std::string_view format = rowOf(*leaf.format).text;
    const bool ordered = atMost(min, typ) && atMost(typ, max);
    if (!ordered) errorAtLine(at(check, *leaf[AmiPart::format].word), 4643, leaf.name(), format);
    if (leaf.format != AmiFormat::range && last <= 0.0) {
        const std::string_view what = leaf.format == AmiFormat::steps ? "count" : "delta";
        const AmiItem& value = *std::ranges::next(leaf.values.begin(), std::ssize(numbers) - 1);
        errorAtLine(at(check, value), 4644, leaf.name(), what, format);
    }
    return ordered ? std::optional(Bounds{min, max}) : std::nullopt;
}

/// `number` is what the value reads as, if it is one.
bool isMember(const AmiLeaf& leaf, const AmiItem& value, double number) {
    const bool numbers = kAmiNumbers.has(*leaf.type);
    return std::ranges::any_of(leaf.values, [&](const AmiItem& item) {
        if (!numbers) return item.text == value.text;
        const double member = numberOf(item);
        return atMost(member, number) && atMost(number, member);
    });
}

/// Each member of a list has its text, if they have any.
void checkListTip(AmiCheck& check, const AmiLeaf& leaf) {
    if (leaf.list_tip == nullptr || leaf.format != AmiFormat::list) return;
    const Contents tips = contentsOf(itemsOf(*leaf.list_tip));
    const Contents members = contentsOf(leaf.values);
    if (tips.has_nodes || members.has_nodes || members.texts == 0 || tips.texts == members.texts) return;
    constexpr std::string_view kListTip = kAmiParts[static_cast<std::size_t>(AmiPart::listTip)].text;
    errorAtLine(at(check, *leaf.list_tip), 4637, leaf.name(), kListTip, tips.texts, members.texts);
}

} // namespace

void checkAmiValues(AmiCheck& check, AmiLeaf& leaf) {
    std::optional<Table> table;
    if (leaf.format == AmiFormat::table) table.emplace(leaf);

    leaf.format_fits = checkFormatType(check, leaf);
    const bool complete = checkValueCount(check, leaf, table) && leaf.format_fits;
    checkListTip(check, leaf);
    Numbers numbers{};
    leaf.good_values = !leaf.format_fits || checkFormatValues(check, leaf, table, numbers);

    const bool has_numbers = complete && leaf.good_values && leaf.type && kAmiNumbers.has(*leaf.type);
    std::optional<Bounds> bounds;
    if (has_numbers && kOrdered.has(*leaf.format)) bounds = checkOrder(check, leaf, numbers);

    const AmiItem* const initial = leaf[AmiPart::initial].word;
    if (initial == nullptr) return;
    if (leaf.format == AmiFormat::value && !check.rules.first_version) {
        warningAtLine(at(check, *initial), 4648, leaf.name());
    }
    if (!leaf.good_values || !leaf.type) return;
    double number = 0.0;
    leaf.good_default = checkValue(check, leaf, *leaf.type, *initial, kDefault, number, true);
    if (!leaf.good_default) return;
    const bool outside = (bounds && !(atMost(bounds->min, number) && atMost(number, bounds->max))) ||
                         (complete && leaf.format == AmiFormat::list && !isMember(leaf, *initial, number));
    leaf.default_outside = outside;
    if (outside) warningAtLine(at(check, *initial), 4642, leaf.name(), shown(initial->text), rowOf(*leaf.format).text);
}

} // namespace kestrel
