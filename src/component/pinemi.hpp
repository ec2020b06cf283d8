#pragma once

#include "base/row_index.hpp"

#include <string>
#include <string_view>

namespace kestrel {

struct Run;
struct Cmpnt;
struct CmpntEmi;

/// One row of "[Pin EMI]".
struct PinEmi {
    std::string pin;
    std::string domain;     ///< empty for a pin without one of its own
    double clock_div = 1.0; ///< of the component's clock
    bool repeated = false;  ///< reported as a pin used before
};

/// One row of "[Pin Domain EMI]".
struct PinDomainEmi {
    std::string name;
    double percentage = 0.0; ///< of the component's power
};

/// Find the rows by their pins and by their names.
using PinEmiIndex = RowIndex<PinEmi, &PinEmi::pin>;
using PinDomainEmiIndex = RowIndex<PinDomainEmi, &PinDomainEmi::name>;

/// Read the header words behind the keywords. Report 528 to 530, 4714, 4901 and 4911.
void pinEmiHeader(Run& run, Cmpnt& component, std::string_view text);
void pinDomainEmiHeader(Run& run, Cmpnt& component, std::string_view text);

/// Reads one row of "[Pin EMI]". Reports 4902 to 4905.
void pinEmiLine(Run& run, Cmpnt& component, std::string_view text);

/// Reads one row of "[Pin Domain EMI]". Reports 4902, 4904, 4906 and 4907.
void pinDomainEmiLine(Run& run, Cmpnt& component, std::string_view text);

/// At the end of the block: the domains take no more power than there is (4910, no line), told once.
void checkDomainPercentages(Run& run, Cmpnt& component);

/// Compares the pins with the component's, and their domains with those listed. Reports 4908 and 4909 (no line).
void checkPinEmi(Run& run, const Cmpnt& component);

} // namespace kestrel
