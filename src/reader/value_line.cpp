#include "reader/value_line.hpp"

#include "ibis/run.hpp"
#include "reader/cmn.hpp"

namespace kestrel {

bool readValueLine(Run& run, std::string_view text, const ValueLineMessages& messages, const ValueLineWords& words,
                   std::optional<double>& value) {
    constexpr int kItems = 3; // name, "=", number
    if (messages.given == ValueGiven::whenAccepted) value = 0.0;

    const ItemList items = splitItems(run, text, kItems, '=');
    if (items.count > kItems) errorAtLine(run.diagnostics, messages.wrong_count, items.count, words.subject, kItems);
    if (items.count < kItems || items[1] != "=") {
        errorAtLine(run.diagnostics, messages.invalid_line, words.subject);
        return false;
    }

    double number = 0.0;
    const ReadResult result = readScaled(items[2], number);
    if (result == ReadResult::noNumber) {
        errorAtLine(run.diagnostics, messages.invalid_value, words.subject, items[2]);
        return false;
    }
    if (result == ReadResult::numberAndText && messages.numeric_in_scale) {
        warningAtLine(run.diagnostics, *messages.numeric_in_scale, words.group, words.name, items[2]);
    }
    value = number;
    return true;
}

} // namespace kestrel
