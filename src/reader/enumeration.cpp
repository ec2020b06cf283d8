#include "reader/enumeration.hpp"

#include "ibis/run.hpp"

namespace kestrel {

std::optional<std::string_view> readSetting(Run& run, std::string_view line, std::string_view name,
                                            const SettingMessages& messages) {
    constexpr int kItems = 2;
    const ItemList items = splitItems(run, line, kItems, '=');
    if (items.count == kItems) return items[1];
    if (items.count < kItems) {
        errorAtLine(run.diagnostics, messages.missing, name);
    } else if (items[1] == "=") {
        errorAtLine(run.diagnostics, messages.equals_sign, name);
    } else {
        errorAtLine(run.diagnostics, messages.count, items.count, name, kItems);
    }
    return std::nullopt;
}

} // namespace kestrel
