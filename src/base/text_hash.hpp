#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace kestrel {

/// Lets a hash map keyed by owned texts be asked with views.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

/// A hash map keyed by texts of its own.
template <class Value> using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

/// A set of texts of its own.
using TextSet = std::unordered_set<std::string, TextHash, std::equal_to<>>;

} // namespace kestrel
