#include "model/msel.hpp"

#include "ibis/run.hpp"

#include <memory>
#include <string_view>
#include <unordered_set>

namespace kestrel {

namespace {

constexpr std::string_view kKeyword = "Model Selector";

/// Room that the name and the description of an entry share, in characters.
constexpr std::size_t kEntryRoom = 120;

/// Reads the name behind "[Model Selector]"; a cut name is judged like any other.
void nameLine(Run& run, MSel& selector, std::string_view text) {
    Diagnostics& diagnostics = run.diagnostics;
    const ItemList items = splitItems(run, text, 1);
    if (items.count == 0) {
        errorAtLine(diagnostics, 4010);
        return;
    }
    if (items.count > 1) errorAtLine(diagnostics, 4011, items.count, kKeyword, 1);
    storeName(diagnostics, selector.name, items[0], modelNameLimit(run.parse.version), 4012);
    if (isReservedWord(selector.name)) errorAtLine(diagnostics, 4013, selector.name);
    auto& selectors = currentRoot(run)->model_selectors;
    if (selectors.find(selector.name) != nullptr) errorAtLine(diagnostics, 4014, selector.name);
    selectors.enterName(selector, selector.name);
}

std::string_view entryDescription(Run& run, std::string_view text, std::size_t name_length) {
    const std::size_t room = kEntryRoom - name_length;
    if (text.size() > room) errorAtLine(run.diagnostics, 4019, text, static_cast<std::uint32_t>(room));
    return text.substr(0, room);
}

/// Reads "model description" and appends it, repeated or not.
void entryLine(Run& run, MSel& selector, std::string_view text) {
    constexpr int kItems = 2;
    const ItemList items = splitItems(run, text, kItems);
    if (items.count == 0) {
        errorAtLine(run.diagnostics, 4016);
        return;
    }
    if (items.count < kItems) errorAtLine(run.diagnostics, 4011, items.count, kKeyword, kItems);
    const auto name_end = static_cast<std::size_t>(items[0].data() + items[0].size() - text.data());
    MSelEntry& entry = selector.entries.emplace_back();
    storeName(run.diagnostics, entry.model_name, items[0], modelNameLimit(run.parse.version), 4017);
    if (equalsNoCase(entry.model_name, "NA")) errorAtLine(run.diagnostics, 4018);
    entry.description = entryDescription(run, trim(text.substr(name_end)), entry.model_name.size());
    if (!run.msel.entry_names.insert(entry.model_name).second) {
        errorAtLine(run.diagnostics, 4025, entry.model_name);
    }
}

/// Model names of all pins and rows between pins of a root.
std::unordered_set<std::string_view> usedModelNames(const Ibis& root) {
    std::unordered_set<std::string_view> names;
    for (const Cmpnt& component : root.components.newestFirst()) {
        for (const Pin& pin : component.pins) {
            names.insert(pin.model_name);
        }
        if (component.series_pins == nullptr) continue;
        for (const SPin& row : component.series_pins->rows) {
            names.insert(row.model_name);
        }
    }
    return names;
}

/// Looks the entry's model up and marks it; a name without a model, or a reserved word, counts as single-ended.
bool isSingleEnded(Run& run, const MSel& selector, std::string_view model_name) {
    if (isReservedWord(model_name)) return true;
    const Mdl* model = referenceMdl(run, model_name);
    if (model != nullptr) return !isDifferential(*model);
    error(run.diagnostics, 4024, model_name, selector.name);
    return true;
}

/// The first entry decides of which kind the selector is; the others are held to it.
void checkEntries(Run& run, MSel& selector) {
    for (const MSelEntry& entry : selector.entries) {
        const bool single_ended = isSingleEnded(run, selector, entry.model_name);
        if (!selector.single_ended) selector.single_ended = single_ended;
        if (single_ended == *selector.single_ended) continue;
        if (single_ended) {
            warning(run.diagnostics, 4023, entry.model_name, selector.name);
        } else {
            warning(run.diagnostics, 4022, entry.model_name, selector.name);
        }
    }
}

} // namespace

void openMSel(Run& run) {
    Ibis* root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBugAtLine(run.diagnostics, 4000, mark.file, mark.line);
        return;
    }
    run.msel.current = &root->model_selectors.add(std::make_unique<MSel>());
}

void mselKeywordSeen(Run& run, KeywordCode /*code*/) {
    const MSel* selector = run.msel.current;
    if (selector == nullptr) return;
    // A set that is only cleared keeps, and clears each time, the room of the largest selector.
    run.msel = MSelState{};
    if (selector->entries.empty()) {
        error(run.diagnostics, 4005, selector->name);
    } else if (selector->entries.size() == 1) {
        warning(run.diagnostics, 4006, selector->name);
    }
}

void mselLine(Run& run, const Line& line) {
    MSel* selector = run.msel.current;
    const bool is_own = line.key == KeywordCode::modelSelector;
    if (line.kind == LineKind::data) {
        if (selector == nullptr || !is_own) {
            errorAtLine(run.diagnostics, 4002);
        } else {
            entryLine(run, *selector, line.text);
        }
        return;
    }
    if (selector == nullptr) {
        errorAtLine(run.diagnostics, 4001);
        return;
    }
    const SourceMark mark = here();
    if (line.kind != LineKind::keyword) {
        programBugAtLine(run.diagnostics, 4004, mark.file, mark.line);
    } else if (!is_own) {
        programBugAtLine(run.diagnostics, 4003, mark.file, mark.line);
    } else {
        nameLine(run, *selector, line.text);
    }
}

void checkMSels(Run& run) {
    const Ibis* root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBug(run.diagnostics, 4020, mark.file, mark.line);
        return;
    }
    if (root->model_selectors.empty()) return;
    // Gathered once: there may be as many selectors as pins.
    const std::unordered_set<std::string_view> used = usedModelNames(*root);
    for (MSel& selector : root->model_selectors.newestFirst()) {
        // Names that are missing have been reported and are not each other's.
        if (!selector.name.empty() && referenceMdl(run, selector.name) != nullptr) {
            error(run.diagnostics, 4021, selector.name);
        }
        if (!root->components.empty() && !used.contains(selector.name)) {
            warning(run.diagnostics, 4026, selector.name);
        }
        checkEntries(run, selector);
    }
}

} // namespace kestrel
