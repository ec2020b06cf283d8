#include "base/output.hpp"
#include "main/counted_new.hpp"
#include "main/verimark.hpp"

#include <csignal>
#include <cstdio>
#include <new>
#include <string_view>
#include <vector>

int main(int count, char** values) try {
    const std::vector<std::string_view> arguments(values + (count > 0 ? 1 : 0), values + count);
    // The output notices.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    kestrel::Output out(stdout);
    kestrel::Output errors(stderr);
    const kestrel::MemoryCounting counting{kestrel::chargeTo, kestrel::beginCounting};
    return kestrel::runVerimark(out, errors, arguments, stdin, &counting);
} catch (const std::bad_alloc&) { // before there is an output
    std::fputs("verimark: out of memory\n", stderr);
    return static_cast<int>(kestrel::kTrouble);
}
