#include "entry.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace kestrel::fuzz {

std::span<const Entry> entries() {
    static constexpr std::array<Entry, 7> kEntries{{{"ibs", tryIbs},
                                                    {"pkg", tryPkg},
                                                    {"ebd", tryEbd},
                                                    {"ami", tryAmi},
                                                    {"compare", tryCompare},
                                                    {"calls", tryCalls},
                                                    {"texts", tryTexts}}};
    return kEntries;
}

void fault(std::string_view what, std::string_view text) {
    const std::string message = std::string(text).append("\nWrong: ").append(what).append("\n");
    std::fwrite(message.data(), 1, message.size(), stderr);
    std::abort();
}

} // namespace kestrel::fuzz
