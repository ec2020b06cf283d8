#include "reader/names.hpp"

#include <array>
#include <span>

namespace kestrel {

bool storeName(Diagnostics& diagnostics, std::string& name, std::string_view text, int limit, NameTooLong too_long) {
    name = cutName(text, limit);
    if (name.size() == text.size()) return true;
    const std::array<Arg, 2> args{Arg(text), Arg(limit)};
    const std::size_t first = too_long.shows_name ? 0 : 1;
    const std::size_t end = too_long.shows_limit ? 2 : 1;
    reportRow(diagnostics, Severity::errorAtLine, too_long.row, std::span(args).subspan(first, end - first));
    return false;
}

} // namespace kestrel
