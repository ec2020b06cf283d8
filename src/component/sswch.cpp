#include "component/sswch.hpp"

#include "ibis/run.hpp"

#include <unordered_set>

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
void dropNames(Run& run, Cmpnt& component, std::string_view text) {
    const int limit = modelNameLimit(run.parse.version);
    for (std::string_view item = takeItem(run, text); !item.empty(); item = takeItem(run, text)) {
        if (item.back() == '/') item.remove_suffix(1);
        if (!item.empty() && listOf(item) == List::none) component.dropped_groups.emplace(cutName(item, limit));
    }
}

void groupName(Run& run, Cmpnt& component, std::string_view text) {
    SwitchReader& reader = run.cmpnt.switches;
    std::string name;
    // A name that had to be cut may have meant another group, so it is not compared with the names around it.
    if (storeName(run.diagnostics, name, text, modelNameLimit(run.parse.version), 2506)) {
        List& first = reader.groups.try_emplace(name, reader.list).first->second;
        if (first != List::none && first != reader.list) {
            errorAtLine(run.diagnostics, 2507, name);
            first = List::none; // told once
        }
        component.switch_groups.add(name);
    }
    SwitchState& state = component.switch_states.back();
    (reader.list == List::on ? state.on : state.off).push_back(std::move(name));
}

/// Reads one word of a state; false when no state is open and the word opens none.
bool stateWord(Run& run, Cmpnt& component, std::string_view word) {
    SwitchReader& reader = run.cmpnt.switches;
    const List list = listOf(word);
    if (reader.list == List::none) {
        if (list == List::none) return false;
        component.switch_states.emplace_back();
        reader.groups = TextMap<List>(); // "= {}" would keep and clear the room of the largest state
    }
    if (list == List::none) {
        groupName(run, component, word);
    } else {
        reader.list = list;
    }
    return true;
}

void endState(Run& run, const Cmpnt& component) {
    run.cmpnt.switches.list = List::none;
    const SwitchState& state = component.switch_states.back();
    if (state.on.empty() && state.off.empty()) warningAtLine(run.diagnostics, 2505);
}

} // namespace

void switchGroupsHeader(Run& run, Cmpnt& component, std::string_view text) {
    if (component.switch_groups_seen) errorAtLine(run.diagnostics, 2501);
    component.switch_groups_seen = true;
    const int count = splitItems(run, text, 0).count;
    if (count == 0) return;
    errorAtLine(run.diagnostics, 2502, count + 1, "Series_Switch_Groups", 1);
    dropNames(run, component, text);
}

void switchGroupsLine(Run& run, Cmpnt& component, std::string_view text) {
    SwitchReader& reader = run.cmpnt.switches;
    std::string_view rest = text;
    for (std::string_view item = takeItem(run, rest); !item.empty(); item = takeItem(run, rest)) {
        const bool ends = item.back() == '/';
        const std::string_view word = item.substr(0, item.size() - (ends ? 1 : 0));
        const bool reads = word.empty() ? reader.list != List::none : stateWord(run, component, word);
        if (!reads) {
            errorAtLine(run.diagnostics, 2503, item);
            dropNames(run, component, text);
            break;
        }
        if (ends) endState(run, component);
        text = rest;
    }
    run.parse.continuation_pending = reader.list != List::none;
}

void checkSwitchGroups(Run& run, const Cmpnt& component) {
    std::unordered_set<std::string_view> mapped;
    for (const SPin& row : component.series_pins) {
        mapped.insert(row.group);
    }
    for (const std::string& group : component.switch_groups.names) {
        if (!mapped.contains(group)) warning(run.diagnostics, 2508, group, component.name);
    }
}

} // namespace kestrel
