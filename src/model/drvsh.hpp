#pragma once

#include "model/dly.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;
struct Mdl;

/// One line of "[Driver Schedule]".
struct DrvShEntry {
    std::string model_name;    ///< at most 20 or 40 characters, by version
    std::optional<Dly> delays; ///< absent on a line without a name
};

/// "[Driver Schedule]": entries in file order; checks walk them from the last to the first.
struct DrvSh {
    std::vector<DrvShEntry> entries;
};

/// Opens a schedule at its keyword line. Reports 4200 (the old one is replaced) and 4204.
void openDrvSh(Run& run, Mdl& model, std::string_view text);

/// Reads one entry. Reports 4211 to 4214 and what the reader of its delays reports. A model may be scheduled more than
/// once.
void drvShLine(Run& run, Mdl& model, std::string_view text);

/// Reports a schedule without entries (4205) or with one (warning 4206), without line.
void closeDrvSh(Run& run, const Mdl& model);

/// Looks up every scheduled model once the file is read (4207 to 4209, no line) and marks it as referenced.
void checkDrvShs(Run& run);

} // namespace kestrel
