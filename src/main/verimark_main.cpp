#include "base/output.hpp"
#include "main/verimark.hpp"

#include <csignal>
#include <string_view>
#include <vector>

int main(int count, char** values) {
    const std::vector<std::string_view> arguments(values + (count > 0 ? 1 : 0), values + count);
    std::signal(SIGPIPE, SIG_IGN); // the output notices
    kestrel::Output out(stdout);
    kestrel::Output errors(stderr);
    return kestrel::runVerimark(out, errors, arguments);
}
