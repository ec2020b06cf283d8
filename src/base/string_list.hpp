#pragma once

#include "base/text_hash.hpp"

#include <string_view>
#include <vector>

namespace kestrel {

/// A list of distinct texts that belong to somebody else; compared exactly. The newest stands last in `texts`.
struct StringList {
    std::vector<std::string_view> texts;
    ViewSet index;
};

/// Adds `text` unless it is there; true when it was added.
bool addUnique(StringList& list, std::string_view text);

} // namespace kestrel
