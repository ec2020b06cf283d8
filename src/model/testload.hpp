#pragma once

#include <string>

namespace kestrel {

/// One "[Test Load]".
struct TestLoad {
    std::string name;
};

} // namespace kestrel
