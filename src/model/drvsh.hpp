#pragma once

#include "reader/values.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Context;

/// The four delays (seconds) of a scheduled driver; "NA" where not given.
struct Dly {
    Cell rise_on;
    Cell rise_off;
    Cell fall_on;
    Cell fall_off;
};

/// One line of "[Driver Schedule]".
struct DrvShEntry {
    std::string model_name;    ///< at most 20 or 40 characters, by version
    std::optional<Dly> delays; ///< absent on a line without a name
};

/// "[Driver Schedule]": entries in file order; checks walk them from the last to the first.
struct DrvSh {
    std::vector<DrvShEntry> entries;
};

/// Opens a schedule at its keyword line. An old one is reported and replaced.
void openDrvSh(Context& context, std::unique_ptr<DrvSh>& slot, std::string_view text);

/// Reads one entry of the schedule of this model. A model may be scheduled more than once.
void drvShLine(Context& context, DrvSh& schedule, std::string_view text, std::string_view model);

/// Reports a schedule without entries or with one only, without line.
void closeDrvSh(Context& context, const DrvSh& schedule, std::string_view model);

} // namespace kestrel
