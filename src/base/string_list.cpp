#include "base/string_list.hpp"

namespace kestrel {

bool addUnique(StringList& list, std::string_view text) {
    if (!list.index.insert(text).second) {
        return false;
    }
    list.texts.push_back(text);
    return true;
}

void addSeveral(StringList& list, std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) {
        addUnique(list, text);
    }
}

} // namespace kestrel
