// Every kind of argument that a message takes; the bad_ files beside this one are refused for their one fault.
#include "diagnostics/diagnostics.hpp"

#include <cstdint>
#include <string>
#include <string_view>

void report(kestrel::Diagnostics& diagnostics, const std::string& name, std::string_view view, std::uint32_t count) {
    kestrel::errorAtLine(diagnostics, 909);
    kestrel::errorAtLine(diagnostics, 916, name);
    kestrel::errorAtLine(diagnostics, 916, view);
    kestrel::errorAtLine(diagnostics, 916, "literal");
    kestrel::errorAtLine(diagnostics, 905, 80);
    kestrel::errorAtLine(diagnostics, 918, '#');
    kestrel::errorAtLine(diagnostics, 1403, 1.5F);
    kestrel::errorAtLine(diagnostics, 1912, name, view, count);
    kestrel::errorAtLine(diagnostics, 1917, "control", std::uint8_t{7}, "");
    constexpr kestrel::MessageCode kCode = 921;
    kestrel::warningAtLine(diagnostics, kCode);
    kestrel::noteText(diagnostics, "%s, %c, %d, %u, %x, %g, %e", name, 'c', -1, count, count, 1.0, 2.0);
}
