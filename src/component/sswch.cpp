#include "component/sswch.hpp"

#include "reader/context.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"

#include <utility>

namespace kestrel {

namespace {

using List = SwitchReader::List;

/// The list that a word of a state opens.
List listOf(std::string_view word) {
    if (word == "On") return List::on;
    if (word == "Off") return List::off;
    return List::none;
}

/// The names of a line that was reported are not missed again.
void dropNames(const Context& context, SwitchGroups& table, std::string_view text) {
    const int limit = modelNameLimit(context.parse.version);
    for (std::string_view item = takeItem(context, text); !item.empty(); item = takeItem(context, text)) {
        if (item.back() == '/') item.remove_suffix(1);
        if (!item.empty() && listOf(item) == List::none) table.dropped.emplace(cutName(item, limit));
    }
}

void groupName(Context& context, SwitchReader& reader, SwitchGroups& table, std::string_view text) {
    std::string name;
    // A name that had to be cut may have meant another group, so it is not compared with the names around it.
    if (storeName(context.diagnostics, name, text, modelNameLimit(context.parse.version), 2506)) {
        List& first = reader.groups.try_emplace(name, reader.list).first->second;
        if (first != List::none && first != reader.list) {
            errorAtLine(context.diagnostics, 2507, name);
            first = List::none; // reported once
        }
        table.groups.add(name);
    }
    SwitchState& state = table.states.back();
    (reader.list == List::on ? state.on : state.off).push_back(std::move(name));
}

/// Reads one word of a state; false when no state is open and the word opens none.
bool stateWord(Context& context, SwitchReader& reader, SwitchGroups& table, std::string_view word) {
    const List list = listOf(word);
    if (reader.list == List::none) {
        if (list == List::none) return false;
        table.states.emplace_back();
        reader.groups = TextMap<List>(); // "= {}" would keep and clear the room of the largest state
    }
    if (list == List::none) {
        groupName(context, reader, table, word);
    } else {
        reader.list = list;
    }
    return true;
}

void endState(Context& context, SwitchReader& reader, const SwitchState& state) {
    reader.list = List::none;
    if (state.on.empty() && state.off.empty()) warningAtLine(context.diagnostics, 2505);
}

} // namespace

void openSwitchGroups(Context& context, std::unique_ptr<SwitchGroups>& table, std::string_view text) {
    if (table != nullptr) {
        errorAtLine(context.diagnostics, 2501);
    } else {
        table = std::make_unique<SwitchGroups>();
    }
    const int count = splitItems(context, text, 0).count;
    if (count == 0) return;
    errorAtLine(context.diagnostics, 2502, count + 1, "Series_Switch_Groups", 1);
    dropNames(context, *table, text);
}

void switchGroupsLine(Context& context, SwitchReader& reader, SwitchGroups& table, std::string_view text) {
    std::string_view rest = text;
    for (std::string_view item = takeItem(context, rest); !item.empty(); item = takeItem(context, rest)) {
        const bool ends = item.back() == '/';
        const std::string_view word = item.substr(0, item.size() - (ends ? 1 : 0));
        const bool reads = word.empty() ? reader.list != List::none : stateWord(context, reader, table, word);
        if (!reads) {
            errorAtLine(context.diagnostics, 2503, item);
            dropNames(context, table, text);
            break;
        }
        if (ends) endState(context, reader, table.states.back());
        text = rest;
    }
    context.parse.continuation_pending = reader.list != List::none;
}

} // namespace kestrel
