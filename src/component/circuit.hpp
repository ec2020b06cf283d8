#pragma once

#include <string>

namespace kestrel {

/// One "[External Circuit]".
struct ExtCkt {
    std::string name;
};

} // namespace kestrel
