#include "base/string_list.hpp"

namespace kestrel {

bool addUnique(StringList& list, std::string_view text) {
    if (!list.index.insert(text).second) {
        return false;
    }
    list.texts.push_back(text);
    return true;
}

} // namespace kestrel
