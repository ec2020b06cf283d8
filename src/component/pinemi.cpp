#include "component/pinemi.hpp"

#include "base/text_hash.hpp"
#include "reader/context.hpp"
#include "reader/items.hpp"

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 2> kPinHeaders{"domain_name", "clock_div"};
constexpr std::array<std::string_view, 1> kDomainHeaders{"percentage"};

/// What messages call a table, and its columns: one for each header and one ahead of them.
struct EmiTable {
    std::string_view keyword; ///< in messages about the keyword line
    std::string_view name;    ///< in messages about rows
    std::span<const std::string_view> headers;

    [[nodiscard]] constexpr int columns() const { return 1 + static_cast<int>(headers.size()); }
};
constexpr EmiTable kPinTable{"Pin_EMI", "Pin EMI", kPinHeaders};
constexpr EmiTable kDomainTable{"Pin_Domain_EMI", "Pin Domain EMI", kDomainHeaders};

constexpr double kMostPercent = 100.0;

void readHeader(Context& context, const EmiTable& table, TableColumns* columns, std::string_view text) {
    if (columns == nullptr) {
        errorAtLine(context.diagnostics, 4714, table.keyword);
        return;
    }
    if (columns->seen()) {
        errorAtLine(context.diagnostics, 4901, table.keyword);
        return;
    }
    const ItemList words = readHeaderWords(context, table.keyword, *columns, text, table.columns());
    if (words.kept == 0) return;
    columns->count = 1 + words.count;
    if (columns->count != table.columns()) {
        errorAtLine(context.diagnostics, 4911, table.keyword, table.columns(), columns->count);
        columns->faulty = true;
    }
    const int headers = table.columns() - 1;
    expectHeaders(context, *columns, words, table.headers, headers, WrongHeaders::each);
    expectNoMoreHeaders(context, *columns, words, headers);
}

/// Under a good header line every row has all columns.
bool hasAllColumns(Context& context, const EmiTable& table, const TableColumns& columns, int count) {
    if (fitRow(columns, std::array{table.columns()}, count) == RowFit::fits) return true;
    errorAtLine(context.diagnostics, 4902, table.name, count, table.columns());
    return false;
}

void readClockDiv(Context& context, PinEmi& row, std::string_view text) {
    constexpr std::string_view kName = "clock_div";
    Cell cell;
    if (readCellText(text, cell) == ReadResult::noNumber) {
        errorAtLine(context.diagnostics, 4904, kName, text);
        return;
    }
    if (!cell.isNumber()) return;
    row.clock_div = cell.value();
    if (cell.value() <= 0.0) errorAtLine(context.diagnostics, 4905, kName, row.pin);
}

/// False when the value was reported.
bool readPercentage(Context& context, PinDomainEmi& row, std::string_view text) {
    if (readScaled(text, row.percentage) == ReadResult::noNumber) {
        errorAtLine(context.diagnostics, 4904, "percentage", text);
        return false;
    }
    if (row.percentage >= 0.0 && row.percentage <= kMostPercent) return true;
    errorAtLine(context.diagnostics, 4906, row.name);
    return false;
}

} // namespace

void pinEmiHeader(Context& context, PinEmiTable* table, std::string_view text) {
    readHeader(context, kPinTable, table == nullptr ? nullptr : &table->columns, text);
}

void pinDomainEmiHeader(Context& context, PinDomainEmiTable* table, std::string_view text) {
    readHeader(context, kDomainTable, table == nullptr ? nullptr : &table->columns, text);
}

void pinEmiLine(Context& context, PinEmiTable& table, const PinList& pins, std::string_view text) {
    const ItemList items = splitItems(context, text, kPinTable.columns());
    if (!hasAllColumns(context, kPinTable, table.columns, items.count)) return;
    PinEmi read;
    read.pin = listedPinName(pins, items[0]);
    const bool is_new = table.rows.add(std::move(read));
    PinEmi& row = table.rows.back();
    row.repeated = !is_new;
    if (row.repeated) errorAtLine(context.diagnostics, 4903, row.pin);
    if (!equalsNoCase(items[1], "NA")) row.domain = items[1];
    if (items.has(2)) readClockDiv(context, row, items[2]);
}

void pinDomainEmiLine(Context& context, PinDomainEmiTable& table, std::string_view text) {
    const ItemList items = splitItems(context, text, kDomainTable.columns());
    if (!hasAllColumns(context, kDomainTable, table.columns, items.count)) {
        table.dropped.emplace(items[0]);
        return;
    }
    const bool is_new = table.rows.add({.name = std::string(items[0])});
    PinDomainEmi& row = table.rows.back();
    if (!is_new) errorAtLine(context.diagnostics, 4907, row.name);
    if (items.has(1) && readPercentage(context, row, items[1]) && is_new) table.percentages += row.percentage;
}

void checkDomainPercentages(Context& context, PinDomainEmiTable& table, std::string_view component) {
    constexpr double kRounding = 1e-6; // of percentages that were meant to make 100
    if (table.percentages_reported || table.percentages <= kMostPercent + kRounding) return;
    warning(context.diagnostics, 4910, component);
    table.percentages_reported = true;
}

void checkEmiPins(Context& context, const PinEmiTable& table, const PinList& pins, std::string_view component) {
    for (const PinEmi& row : table.rows) {
        if (row.repeated || isKnownPin(pins, listedPinName(pins, row.pin))) continue;
        error(context.diagnostics, 4908, row.pin, component);
    }
}

void checkEmiDomains(Context& context, const PinEmiTable& table, const PinDomainEmiTable& domains,
                     std::string_view component) {
    ViewSet reported;
    for (const PinEmi& row : table.rows) {
        if (row.domain.empty() || domains.rows.has(row.domain) || domains.dropped.contains(row.domain)) continue;
        if (reported.insert(row.domain).second) warning(context.diagnostics, 4909, row.domain, component);
    }
}

} // namespace kestrel
