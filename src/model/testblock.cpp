#include "model/testblock.hpp"

#include "ibis/run.hpp"

namespace kestrel {

BlockName readBlockName(Run& run, std::string_view text, std::string_view keyword, const BlockNameMessages& messages) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, 1);
    if (items.count == 0) {
        errorAtLine(diagnostics, messages.missing);
        return {};
    }
    if (items.count > 1) errorAtLine(diagnostics, messages.wrong_count, items.count, keyword, 1);
    BlockName name;
    name.is_new = storeName(diagnostics, name.text, items[0], kLongNameLimit, messages.length);
    if (name.is_new && isReservedWord(name.text)) {
        errorAtLine(diagnostics, messages.reserved, name.text);
        name.is_new = false;
    }
    return name;
}

void reportRepeatedName(Run& run, const BlockNameMessages& messages, std::string_view name) {
    errorAtLine(run.diagnostics, messages.repeated, name);
}

bool readTestType(Run& run, std::string_view rest, std::string_view name, const BlockWordMessages& messages,
                  TestType& type) {
    const std::optional<std::string_view> word = readWordLine(run, rest, name, messages.word);
    if (!word) return false;
    const auto known = readEnumeration(run.diagnostics, kTestTypes, name, *word, messages.type);
    type = known.value_or(TestType::notGiven);
    return known.has_value();
}

bool readReferredName(Run& run, std::string_view rest, std::string_view name, const BlockWordMessages& messages,
                      std::string& referred) {
    const std::optional<std::string_view> word = readWordLine(run, rest, name, messages.word);
    if (!word) return false;
    referred = cutName(*word, kLongNameLimit);
    if (referred.size() < word->size()) {
        errorAtLine(run.diagnostics, messages.length, name, kLongNameLimit);
        return false;
    }
    if (isReservedWord(*word)) {
        errorAtLine(run.diagnostics, messages.reserved, name, *word);
        return false;
    }
    return true;
}

} // namespace kestrel
