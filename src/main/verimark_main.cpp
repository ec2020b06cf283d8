#include "base/output.hpp"
#include "main/counted_new.hpp"
#include "main/verimark.hpp"

#include <csignal>
#include <cstdio>
#include <string_view>
#include <vector>

int main(int count, char** values) {
    const std::vector<std::string_view> arguments(values + (count > 0 ? 1 : 0), values + count);
    // The output notices.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    kestrel::Output out(stdout);
    kestrel::Output errors(stderr);
    const kestrel::MemoryCounting counting{kestrel::chargeTo, kestrel::beginCounting};
    return kestrel::runVerimark(out, errors, arguments, stdin, &counting);
}
