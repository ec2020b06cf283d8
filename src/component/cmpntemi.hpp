#pragma once

#include "base/text_hash.hpp"
#include "component/pinemi.hpp"
#include "reader/block.hpp"
#include "reader/columns.hpp"
#include "reader/emi_domain.hpp"

#include <optional>
#include <vector>

namespace kestrel {

struct Run;
struct Cmpnt;

/// What "[Begin EMI Component]" gives. Farads; tables are in file order.
struct CmpntEmi {
    EmiDomain domain = EmiDomain::notGiven;
    std::optional<double> cpd; ///< the typical one of a range
    std::optional<double> c_heatsink_gnd;
    std::optional<double> c_heatsink_float;
    TableColumns pin_columns; ///< of "[Pin EMI]"
    std::vector<PinEmi> pins;
    PinEmiIndex pin_index;       ///< of their pins
    TableColumns domain_columns; ///< of "[Pin Domain EMI]"
    std::vector<PinDomainEmi> pin_domains;
    PinDomainEmiIndex domain_index;    ///< of their names
    TextSet dropped_domains;           ///< of rows that were reported and dropped
    double percentages = 0.0;          ///< sum of those that were not reported
    bool percentages_reported = false; ///< their sum was
};

/// "[Begin EMI Component]" to its end.
extern const Block<Cmpnt> kEmiComponent;

} // namespace kestrel
