#pragma once

#include "package/sect.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Run;

/// A pin of a mounted component.
struct EbdNode {
    std::string designator; ///< at most 10 characters
    std::string pin;        ///< at most 8 characters
};

/// One "[Path Description]".
struct EbdPath {
    std::string name; ///< at most 40 characters
    Chain chain;
    std::vector<std::string> pins; ///< payload of the pin elements, in reading order; at most 8 characters each
    std::vector<EbdNode> nodes;    ///< payload of the node elements, in reading order
};

/// Reads a line of a path: pins, nodes, sections, forks and "NC". Reports 4340 to 4373 (4368 to 4370 without line) and
/// what readSection reports.
void pathLine(Run& run, EbdPath& path, std::string_view text);

} // namespace kestrel
