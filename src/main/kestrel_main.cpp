#include "base/output.hpp"
#include "ibis/run.hpp"
#include "main/driver.hpp"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

int main(int count, char** values) try {
    const std::vector<std::string_view> arguments(values + (count > 0 ? 1 : 0), values + count);
    kestrel::Output out(stdout);
    kestrel::Output errors(stderr);
    auto run = std::make_unique<kestrel::Run>(out);
    const int status = kestrel::runKestrel(*run, errors, arguments);
#if !defined(__SANITIZE_ADDRESS__) // which looks for leaks
    // The system takes the memory back whole, which takes a fiftieth of a large check less than record by record.
    static_cast<void>(run.release());
    std::_Exit(status);
#endif
    return status;
} catch (const std::bad_alloc&) { // before there is an output
    std::fputs("kestrel: out of memory\n", stderr);
    return EXIT_FAILURE;
}
