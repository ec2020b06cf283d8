#include "reader/names.hpp"

namespace kestrel {

bool storeName(Diagnostics& diagnostics, std::string& name, std::string_view text, int limit,
               CheckedMessage<ArgKind::text, ArgKind::integer> too_long) {
    const auto room = static_cast<std::size_t>(limit);
    name = text.substr(0, room);
    if (text.size() <= room) return true;
    errorAtLine(diagnostics, too_long, text, limit);
    return false;
}

} // namespace kestrel
