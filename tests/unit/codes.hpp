#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel {

/// The diagnostics of an output in the coded form, as "E1104@ W1113": class letter, number, and "@" for one at a line.
inline std::string codesOf(std::string_view output) {
    std::string codes;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        output.remove_prefix(line.size() == output.size() ? line.size() : line.size() + 1);
        const std::size_t end = line.find(' ');
        if (end != 5 || line.find_first_not_of("0123456789", 1) != end) continue;
        codes.append(codes.empty() ? "" : " ").append(line, 0, end);
        if (line.substr(end).starts_with(" (line")) codes.push_back('@');
    }
    return codes;
}

} // namespace kestrel
