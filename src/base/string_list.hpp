#pragma once

#include <initializer_list>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kestrel {

/// A list of distinct texts that belong to somebody else; compared exactly. The newest stands last in `texts`.
struct StringList {
    std::vector<std::string_view> texts;
    std::unordered_set<std::string_view> index;
};

/// Adds `text` unless it is there; true when it was added.
bool addUnique(StringList& list, std::string_view text);

/// Adds each text that is not there yet.
void addSeveral(StringList& list, std::initializer_list<std::string_view> texts);

} // namespace kestrel
