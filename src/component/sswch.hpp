#pragma once

#include "base/name_list.hpp"
#include "base/text_hash.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Context;

/// One state of "[Series Switch Groups]"; groups in neither list are in the other position.
struct SwitchState {
    std::vector<std::string> on;
    std::vector<std::string> off;
};

/// "[Series Switch Groups]".
struct SwitchGroups {
    std::vector<SwitchState> states; ///< in file order, the first is the default
    NameList groups;                 ///< those of the states, but for names that were reported as too long
    TextSet dropped;                 ///< those of lines that were reported and dropped
};

/// The state being read. Nothing of it outlives the keyword's lines.
struct SwitchReader {
    enum class List : std::uint8_t { none, on, off };

    List list = List::none; ///< where names go; none between states
    TextMap<List> groups;   ///< the names of the state that fit and where each was first; none once that was reported
};

/// Begins the table at its keyword, anew or once more.
void openSwitchGroups(Context& context, std::unique_ptr<SwitchGroups>& table, std::string_view text);

/// Reads one line of states, which may end in the middle of one: a keyword may then not follow.
void switchGroupsLine(Context& context, SwitchReader& reader, SwitchGroups& table, std::string_view text);

} // namespace kestrel
