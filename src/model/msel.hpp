#pragma once

#include "reader/keyword.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kestrel {

struct Run;

/// One entry of a selector.
struct MSelEntry {
    std::string model_name; ///< at most 20 or 40 characters, by version
    std::string description;
};

/// One "[Model Selector]".
struct MSel {
    std::string name;                 ///< at most 20 or 40 characters, by version
    std::vector<MSelEntry> entries;   ///< in file order
    std::optional<bool> single_ended; ///< kind of the first entry, set by the final checks
};

/// The selector being read, null outside one, and what is remembered of it.
struct MSelState {
    MSel* current = nullptr;
    std::unordered_set<std::string> entry_names; ///< of the current one, for the test of repeated names
};

/// Opens a selector at "[Model Selector]".
void openMSel(Run& run);

/// Told of every keyword: any of them closes the selector and reports one without entries (4005) or with one (4006), no
/// line.
void mselKeywordSeen(Run& run, KeywordCode code);

/// Reads the keyword line or an entry.
void mselLine(Run& run, const Line& line);

/// Checks every selector once the file is read: clash with a model (4021), use (4026), entries (4022 to 4024); no line.
void checkMSels(Run& run);

} // namespace kestrel
