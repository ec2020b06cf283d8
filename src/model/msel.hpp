#pragma once

#include "base/text_hash.hpp"
#include "reader/sections.hpp"

#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// One entry of a selector.
struct MSelEntry {
    std::string model_name; ///< at most 20 or 40 characters, by version
    std::string description;
};

/// One "[Model Selector]", whose name has at most 20 or 40 characters, by version.
struct MSel : RecordOf<SubjectKind::modelSelector> {
    std::vector<MSelEntry> entries;   ///< in file order
    std::optional<bool> single_ended; ///< kind of the first entry, set by the final checks
};

/// The selector being read.
struct MSelState : RecordState<MSel> {
    TextSet entry_names; ///< for the test of repeated names
};

/// Reads selectors. At the end of one its number of entries is checked.
extern const RecordModule<MSelState> kMSel;

} // namespace kestrel
