#pragma once

#include <string>

namespace kestrel {

/// One "[Test Data]".
struct TestData {
    std::string name;
};

} // namespace kestrel
