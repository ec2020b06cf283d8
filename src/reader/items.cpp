#include "reader/items.hpp"

#include "reader/context.hpp"

namespace kestrel {

namespace {

/// The first character from `at` on that is no white space. Too much of that is an assertion failure outside long-line
/// mode.
const char* skipSpaces(const Context& context, const char* at, const char* end) {
    const char* const begin = at;
    while (at != end && isSpace(*at)) {
        ++at;
    }
    if (at - begin > kMaxSkip && !context.parse.long_lines) assertionFailed(context.out, here());
    return at;
}

/// Where the item that begins at `at`, which is not the end, ends. The split character is an item of length 1.
const char* itemEnd(const char* at, const char* end, char split) {
    const char* const begin = at;
    while (at != end && *at != ' ' && *at != '\t' && *at != split) {
        ++at;
    }
    return at == begin ? at + 1 : at;
}

/// Without a split character the blank takes its place: it ends an item anyway and never begins one.
constexpr char stopFor(char split) { return split == '\0' ? ' ' : split; }

} // namespace

std::string_view skipWhiteSpace(const Context& context, std::string_view text) {
    const char* const end = text.data() + text.size();
    return {skipSpaces(context, text.data(), end), end};
}

ItemList splitItems(const Context& context, std::string_view text, int max, char split) {
    assert(max <= kMaxItems);
    const char stop = stopFor(split);
    const char* const end = text.data() + text.size();
    ItemList list;
    for (const char* at = skipSpaces(context, text.data(), end); at != end; at = skipSpaces(context, at, end)) {
        const char* const item = at;
        at = itemEnd(item, end, stop);
        if (list.kept < max) list.items[static_cast<std::size_t>(list.kept++)] = std::string_view(item, at);
        ++list.count;
    }
    return list;
}

std::string_view takeItem(const Context& context, std::string_view& text, char split) {
    text = skipWhiteSpace(context, text);
    if (text.empty()) return text;
    const char* const end = text.data() + text.size();
    const std::string_view item(text.data(), itemEnd(text.data(), end, stopFor(split)));
    text.remove_prefix(item.size());
    return item;
}

} // namespace kestrel
