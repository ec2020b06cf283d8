#pragma once

#include "base/text_hash.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Names in file order, each once.
template <class Name, class Index> struct DistinctNames {
    std::vector<Name> names;
    Index index;

    /// False when the name is there already.
    bool add(std::string_view name) {
        if (!index.emplace(name).second) return false;
        names.emplace_back(name);
        return true;
    }
    [[nodiscard]] bool has(std::string_view name) const { return index.contains(name); }
};

using NameList = DistinctNames<std::string, TextSet>;
using NameViews = DistinctNames<std::string_view, ViewSet>; ///< of names that belong to somebody else

} // namespace kestrel
