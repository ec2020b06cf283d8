#pragma once

#include "base/indexed_rows.hpp"
#include "base/text_hash.hpp"
#include "component/pin.hpp"
#include "reader/columns.hpp"

#include <string>
#include <string_view>

namespace kestrel {

/// One row of "[Pin EMI]".
struct PinEmi {
    std::string pin;
    std::string domain;     ///< empty for a pin without one of its own
    double clock_div = 1.0; ///< of the component's clock
    bool repeated = false;  ///< reported as a pin used before
};

/// "[Pin EMI]".
struct PinEmiTable {
    TableColumns columns;
    IndexedRows<PinEmi, &PinEmi::pin> rows;
};

/// One row of "[Pin Domain EMI]".
struct PinDomainEmi {
    std::string name;
    double percentage = 0.0; ///< of the component's power
};

/// "[Pin Domain EMI]".
struct PinDomainEmiTable {
    TableColumns columns;
    IndexedRows<PinDomainEmi, &PinDomainEmi::name> rows;
    TextSet dropped;                   ///< names of rows that were reported and dropped
    double percentages = 0.0;          ///< sum of those that were not reported
    bool percentages_reported = false; ///< their sum was
};

/// Read the header words behind the keywords; without a table the keyword is out of its place, which is reported.
void pinEmiHeader(Context& context, PinEmiTable* table, std::string_view text);
void pinDomainEmiHeader(Context& context, PinDomainEmiTable* table, std::string_view text);

/// Reads one row of "[Pin EMI]".
void pinEmiLine(Context& context, PinEmiTable& table, const PinList& pins, std::string_view text);

/// Reads one row of "[Pin Domain EMI]".
void pinDomainEmiLine(Context& context, PinDomainEmiTable& table, std::string_view text);

/// At the end of the block: the domains take no more power than there is, reported once.
void checkDomainPercentages(Context& context, PinDomainEmiTable& table, std::string_view component);

/// Compares the pins with the component's.
void checkEmiPins(Context& context, const PinEmiTable& table, const PinList& pins, std::string_view component);

/// Compares the domains of the pins with those listed.
void checkEmiDomains(Context& context, const PinEmiTable& table, const PinDomainEmiTable& domains,
                     std::string_view component);

} // namespace kestrel
