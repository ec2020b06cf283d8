#pragma once

#include "base/text_hash.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Names in file order, each once.
struct NameList {
    std::vector<std::string> names;
    TextSet index;

    /// False when the name is there already.
    bool add(std::string_view name) {
        if (!index.emplace(name).second) return false;
        names.emplace_back(name);
        return true;
    }
    [[nodiscard]] bool has(std::string_view name) const { return index.contains(name); }
};

} // namespace kestrel
