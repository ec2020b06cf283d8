#include "base/output.hpp"
#include "ibis/run.hpp"
#include "main/driver.hpp"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>
#include <vector>

int main(int count, char** values) try {
    const std::vector<std::string_view> arguments(values + (count > 0 ? 1 : 0), values + count);
    kestrel::Output out(stdout);
    kestrel::Output errors(stderr);
    // Never destroyed: the system takes the memory back whole, which saves a fiftieth of the time of a large check.
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): static, so that it does not look like a leak
    static kestrel::Run& run = *new kestrel::Run(out);
    return kestrel::runKestrel(run, errors, arguments);
} catch (const std::bad_alloc&) { // before there is an output
    std::fputs("kestrel: out of memory\n", stderr);
    return EXIT_FAILURE;
}
