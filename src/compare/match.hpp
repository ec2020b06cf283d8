#pragma once

#include "base/text_hash.hpp"

#include <cstddef>
#include <limits>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kestrel {

/// Walks the rows of two lists that belong together by their names, of equal names the first with the first: calls
/// `both(old, new)` in the order of NEW, and `one(row, is_new)` with what has no partner, that of NEW in between and
/// that of OLD at the end. The names may be texts that are made for it.
template <class OldRows, class NewRows, class NameOfOld, class NameOfNew, class Both, class One>
void matchRows(const OldRows& was, const NewRows& is, NameOfOld name_of_old, NameOfNew name_of_new, Both both,
               One one) {
    // Most lists are as they were.
    std::size_t alike = 0;
    while (alike < was.size() && alike < is.size() && name_of_old(was[alike]) == name_of_new(is[alike])) {
        both(was[alike], is[alike]);
        ++alike;
    }
    if (alike == was.size() && alike == is.size()) return;

    constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
    struct Chain {
        std::size_t first;
        std::size_t last;
    };
    using OldName = std::decay_t<decltype(name_of_old(was[0]))>;
    std::vector<OldName> names; // of OLD, from the first that is not alike on
    names.reserve(was.size() - alike);
    for (std::size_t i = alike; i < was.size(); ++i)
        names.push_back(name_of_old(was[i]));
    std::vector<std::size_t> next(names.size(), kNone);
    std::vector<bool> matched(names.size());
    ViewMap<Chain> chains;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto [at, is_first] = chains.try_emplace(std::string_view(names[i]), Chain{i, i});
        if (is_first) continue;
        next[at->second.last] = i;
        at->second.last = i;
    }
    for (std::size_t i = alike; i < is.size(); ++i) {
        const auto name = name_of_new(is[i]);
        const auto at = chains.find(std::string_view(name));
        if (at == chains.end() || at->second.first == kNone) {
            one(is[i], true);
            continue;
        }
        const std::size_t partner = at->second.first;
        at->second.first = next[partner];
        matched[partner] = true;
        both(was[alike + partner], is[i]);
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        if (!matched[i]) one(was[alike + i], false);
}

} // namespace kestrel
