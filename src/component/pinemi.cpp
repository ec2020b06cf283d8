#include "component/pinemi.hpp"

#include "ibis/run.hpp"

#include <array>
#include <span>
#include <unordered_set>

namespace kestrel {

namespace {

constexpr std::array<std::string_view, 2> kPinHeaders{"domain_name", "clock_div"};
constexpr std::array<std::string_view, 1> kDomainHeaders{"percentage"};

/// A table that stands in an EMI block only; every row has a column for each header and one ahead of them.
struct EmiTable {
    std::string_view keyword; ///< as messages about the keyword line name it
    std::string_view name;    ///< as messages about its rows do
    std::span<const std::string_view> headers;
    TableColumns CmpntEmi::*columns;
    int column_count;
};
constexpr EmiTable kPinTable{"Pin_EMI", "Pin EMI", kPinHeaders, &CmpntEmi::pin_columns, 1 + kPinHeaders.size()};
constexpr EmiTable kDomainTable{"Pin_Domain_EMI", "Pin Domain EMI", kDomainHeaders, &CmpntEmi::domain_columns,
                                1 + kDomainHeaders.size()};

constexpr double kMostPercent = 100.0;

/// The record that a table belongs to, null outside the block.
CmpntEmi* openEmi(const Run& run, Cmpnt& component) {
    return run.cmpnt.block == &kEmiComponent ? &*component.emi : nullptr;
}

void readHeader(Run& run, Cmpnt& component, const EmiTable& table, std::string_view text) {
    CmpntEmi* const emi = openEmi(run, component);
    if (emi == nullptr) {
        errorAtLine(run.diagnostics, 4714, table.keyword);
        return;
    }
    TableColumns& columns = emi->*table.columns;
    if (columns.seen()) {
        errorAtLine(run.diagnostics, 4901, table.keyword);
        return;
    }
    const ItemList words = readHeaderWords(run, table.keyword, columns, text, table.column_count);
    if (words.kept == 0) return;
    columns.count = 1 + words.count;
    if (columns.count != table.column_count) {
        errorAtLine(run.diagnostics, 4911, table.keyword, table.column_count, columns.count);
        columns.faulty = true;
    }
    const int headers = table.column_count - 1;
    expectHeaders(run, columns, words, table.headers, headers, WrongHeaders::each);
    expectNoMoreHeaders(run, columns, words, headers);
}

/// Under a good header line every row has all columns.
bool hasAllColumns(Run& run, const EmiTable& table, const TableColumns& columns, int count) {
    if (fitRow(columns, std::array{table.column_count}, count) == RowFit::fits) return true;
    errorAtLine(run.diagnostics, 4902, table.name, count, table.column_count);
    return false;
}

void readClockDiv(Run& run, PinEmi& row, std::string_view text) {
    constexpr std::string_view kName = "clock_div";
    double value = 0.0;
    bool na = false;
    if (readValueOrNa(text, value, na) == ReadResult::noNumber) {
        errorAtLine(run.diagnostics, 4904, kName, text);
        return;
    }
    if (na) return;
    row.clock_div = value;
    if (value <= 0.0) errorAtLine(run.diagnostics, 4905, kName, row.pin);
}

/// False when the value was reported.
bool readPercentage(Run& run, PinDomainEmi& row, std::string_view text) {
    if (readScaled(text, row.percentage) == ReadResult::noNumber) {
        errorAtLine(run.diagnostics, 4904, "percentage", text);
        return false;
    }
    if (row.percentage >= 0.0 && row.percentage <= kMostPercent) return true;
    errorAtLine(run.diagnostics, 4906, row.name);
    return false;
}

void checkPins(Run& run, const Cmpnt& component, const CmpntEmi& emi) {
    for (const PinEmi& row : emi.pins) {
        if (row.repeated || isKnownPin(component, listedPinName(component, row.pin))) continue;
        error(run.diagnostics, 4908, row.pin, component.name);
    }
}

void checkDomains(Run& run, const Cmpnt& component, const CmpntEmi& emi) {
    std::unordered_set<std::string_view> reported;
    for (const PinEmi& row : emi.pins) {
        if (row.domain.empty() || emi.domain_index.find(emi.pin_domains, row.domain) != nullptr) continue;
        if (emi.dropped_domains.contains(row.domain) || !reported.insert(row.domain).second) continue;
        warning(run.diagnostics, 4909, row.domain, component.name);
    }
}

} // namespace

void pinEmiHeader(Run& run, Cmpnt& component, std::string_view text) { readHeader(run, component, kPinTable, text); }

void pinDomainEmiHeader(Run& run, Cmpnt& component, std::string_view text) {
    readHeader(run, component, kDomainTable, text);
}

void pinEmiLine(Run& run, Cmpnt& component, std::string_view text) {
    CmpntEmi* const emi = openEmi(run, component);
    if (emi == nullptr) return;
    const ItemList items = splitItems(run, text, kPinTable.column_count);
    if (!hasAllColumns(run, kPinTable, emi->pin_columns, items.count)) return;
    PinEmi& row = emi->pins.emplace_back();
    row.pin = listedPinName(component, items[0]);
    row.repeated = !emi->pin_index.enterLast(emi->pins);
    if (row.repeated) errorAtLine(run.diagnostics, 4903, row.pin);
    if (!equalsNoCase(items[1], "NA")) row.domain = items[1];
    if (items.has(2)) readClockDiv(run, row, items[2]);
}

void pinDomainEmiLine(Run& run, Cmpnt& component, std::string_view text) {
    CmpntEmi* const emi = openEmi(run, component);
    if (emi == nullptr) return;
    const ItemList items = splitItems(run, text, kDomainTable.column_count);
    if (!hasAllColumns(run, kDomainTable, emi->domain_columns, items.count)) {
        emi->dropped_domains.emplace(items[0]);
        return;
    }
    PinDomainEmi& row = emi->pin_domains.emplace_back();
    row.name = items[0];
    const bool is_new = emi->domain_index.enterLast(emi->pin_domains);
    if (!is_new) errorAtLine(run.diagnostics, 4907, row.name);
    if (items.has(1) && readPercentage(run, row, items[1]) && is_new) emi->percentages += row.percentage;
}

void checkDomainPercentages(Run& run, Cmpnt& component) {
    constexpr double kRounding = 1e-6; // of percentages that were meant to make 100
    CmpntEmi& emi = *component.emi;
    if (emi.percentages_reported || emi.percentages <= kMostPercent + kRounding) return;
    warning(run.diagnostics, 4910, component.name);
    emi.percentages_reported = true;
}

void checkPinEmi(Run& run, const Cmpnt& component) {
    if (!component.emi) return;
    if (!component.pins.empty()) checkPins(run, component, *component.emi);
    if (component.emi->domain_columns.seen()) checkDomains(run, component, *component.emi);
}

} // namespace kestrel
