#include "reader/record_name.hpp"

namespace kestrel {

bool readNewName(Context& context, std::string_view text, const RecordNameRules& rules, Name& name) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, 1);
    if (items.count == 0 && rules.missing.index() != 0) {
        if (const auto* const bare = std::get_if<CheckedMessage<>>(&rules.missing)) {
            errorAtLine(diagnostics, *bare);
        } else {
            errorAtLine(diagnostics, std::get<CheckedMessage<ArgKind::text>>(rules.missing), rules.keyword);
        }
        return false;
    }
    if (items.count != 1) errorAtLine(diagnostics, rules.wrong_count, items.count, rules.keyword, 1);
    if (items.count == 0) return false;
    const bool whole = storeName(context, name, items[0], rules.limit(context.parse.version), rules.length);
    const bool reserved = isReservedWord(name);
    if (reserved) errorAtLine(diagnostics, rules.reserved, name);
    switch (rules.repeats) {
    case RepeatedNames::ofSound: return whole && !reserved;
    case RepeatedNames::ofWhole: return whole;
    case RepeatedNames::ofAll: break;
    }
    return true;
}

} // namespace kestrel
