#pragma once

#include "package/sect.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

struct Context;

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

/// Reads a line of a path: pins, nodes, sections, forks and "NC". `cursor` goes on in the path's chain.
void pathLine(Context& context, EbdPath& path, ChainCursor& cursor, std::string_view text);

} // namespace kestrel
