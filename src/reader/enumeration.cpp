#include "reader/enumeration.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"

namespace kestrel {

std::optional<std::string_view> readSetting(Context& context, std::string_view line, std::string_view name,
                                            const SettingMessages& messages) {
    constexpr int kItems = 2;
    const ItemList items = splitItems(context, line, kItems, '=');
    if (items.count == kItems) return items[1];
    if (items.count < kItems) {
        errorAtLine(context.diagnostics, messages.missing, name);
    } else if (items[1] == "=") {
        errorAtLine(context.diagnostics, messages.equals_sign, name);
    } else {
        errorAtLine(context.diagnostics, messages.count, items.count, name, kItems);
    }
    return std::nullopt;
}

} // namespace kestrel
