#include "base/output.hpp"
#include "main/driver.hpp"

#include <string_view>
#include <vector>

int main(int count, char** values) {
    const std::vector<std::string_view> arguments(values + (count > 0 ? 1 : 0), values + count);
    kestrel::Output out(stdout);
    kestrel::Output errors(stderr);
    return kestrel::runKestrel(out, errors, arguments);
}
