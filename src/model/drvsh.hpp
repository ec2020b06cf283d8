#pragma once

#include "base/name_table.hpp"
#include "base/row_store.hpp"
#include "reader/values.hpp"

#include <string_view>

namespace kestrel {

struct Context;

/// The four delays (seconds) of a scheduled driver; "NA" where not given.
struct Dly {
    Cell rise_on;
    Cell rise_off;
    Cell fall_on;
    Cell fall_off;
};

/// One line of "[Driver Schedule]", which may lack all that it gives.
struct DrvShEntry {
    Name model_name; ///< at most 20 or 40 characters, by version
    Dly delays;
};

/// "[Driver Schedule]": entries in file order; checks walk them from the last to the first.
struct DrvSh {
    bool given = false; ///< the keyword was there
    Rows<DrvShEntry> entries;

    explicit operator bool() const { return given; }
};

/// Opens a schedule at its keyword line. An old one is reported and replaced.
void openDrvSh(Context& context, DrvSh& schedule, std::string_view text);

/// Reads one entry of the schedule of this model. A model may be scheduled more than once.
void drvShLine(Context& context, DrvSh& schedule, std::string_view text, std::string_view model);

/// Reports a schedule without entries or with one only, without line.
void closeDrvSh(Context& context, const DrvSh& schedule, std::string_view model);

} // namespace kestrel
