#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

/// Hash containers of names. Names come from files, and a file may be made so that its names collide under a hash that
/// is known; so every container has a seed of its own, which nobody outside of the process can know.
namespace kestrel {

/// What a container's hashes depend on. A new one is taken from where this process happens to lie in memory.
class HashSeed {
public:
    HashSeed();

    /// The hash of a text under this seed.
    [[nodiscard]] std::uint64_t hashOf(std::string_view text) const;

    /// The seed itself, an odd number.
    [[nodiscard]] std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_;
};

/// Hash of texts for the standard containers, which may be asked with views.
class TextHash {
public:
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return static_cast<std::size_t>(seed_.hashOf(text)); }

private:
    HashSeed seed_;
};

/// A hash map keyed by texts of its own, and a set of such.
template <class Value> using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;
using TextSet = std::unordered_set<std::string, TextHash, std::equal_to<>>;

/// The same over texts that belong to somebody else and outlive the container.
template <class Value> using ViewMap = std::unordered_map<std::string_view, Value, TextHash, std::equal_to<>>;
using ViewSet = std::unordered_set<std::string_view, TextHash, std::equal_to<>>;

} // namespace kestrel
