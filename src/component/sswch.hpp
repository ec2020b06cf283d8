#pragma once

#include "base/text_hash.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;
struct Cmpnt;

/// One state of "[Series Switch Groups]"; groups in neither list are in the other position.
struct SwitchState {
    std::vector<std::string> on;
    std::vector<std::string> off;
};

/// The state being read. Nothing of it outlives the keyword's lines.
struct SwitchReader {
    enum class List : std::uint8_t { none, on, off };

    List list = List::none; ///< where names go; none between states
    TextMap<List> groups;   ///< the names of the state that fit and where each stood first; none once it was told
};

/// Opens the table at "[Series Switch Groups]". Reports 2501 and 2502.
void switchGroupsHeader(Run& run, Cmpnt& component, std::string_view text);

/// Reads one line of states, which may end in the middle of one: the reader is then told that a keyword may not follow.
/// Reports 2503 and 2505 to 2507.
void switchGroupsLine(Run& run, Cmpnt& component, std::string_view text);

/// Reports groups of states that no row of "[Series Pin Mapping]" has (2508, no line), each once.
void checkSwitchGroups(Run& run, const Cmpnt& component);

} // namespace kestrel
