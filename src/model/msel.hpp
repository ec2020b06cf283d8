#pragma once

#include "base/name_table.hpp"
#include "base/number_index.hpp"
#include "base/row_store.hpp"
#include "base/text_store.hpp"
#include "reader/sections.hpp"

#include <optional>

namespace kestrel {

/// One entry of a selector.
struct MSelEntry {
    Name model_name; ///< at most 20 or 40 characters, by version
    StoredText description;
};

/// One "[Model Selector]", whose name has at most 20 or 40 characters, by version.
struct MSel : RecordOf<SubjectKind::modelSelector> {
    Rows<MSelEntry> entries;          ///< in file order
    std::optional<bool> single_ended; ///< kind of the first entry, set by the final checks
};

/// The selector being read.
struct MSelState : RecordState<MSel> {
    NumberIndex entry_names; ///< for the test of repeated names, once there are many
};

/// Reads selectors. At the end of one its number of entries is checked.
extern const RecordModule<MSelState> kMSel;

} // namespace kestrel
