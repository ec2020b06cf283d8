#include "ibis/ebdfollow.hpp"

#include "base/string_list.hpp"
#include "base/text.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "reader/names.hpp"

#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrel {

namespace {

/// The distinct pins that paths use of each designator, in reading order.
using UsedPins = std::unordered_map<std::string_view, StringList>;

/// A map entry and the pins used of it.
struct Reference {
    const EbdRefDes* entry;
    const StringList* pins;
};

/// A file and what the board refers to in it.
struct FileReference {
    std::string_view file_name;
    FileKind kind;
    std::vector<Reference> references;
};

/// What a reference names: a component of an .ibs file or a board of an .ebd file.
struct Target {
    const Cmpnt* component = nullptr;
    const EbdMdl* board = nullptr;

    [[nodiscard]] bool found() const { return component != nullptr || board != nullptr; }
    [[nodiscard]] bool hasPin(std::string_view pin) const {
        return component != nullptr ? isKnownPin(component->pins, pin) : board->pin_names.contains(pin);
    }
};

UsedPins collectUsedPins(const EbdMdl& board) {
    UsedPins used;
    for (const EbdPath& path : board.paths) {
        for (const EbdNode& node : path.nodes) {
            addUnique(used[node.designator], node.pin);
        }
    }
    return used;
}

/// The kind of file that a map entry leads to. Names that are no .ibs or .ebd file beside the board were reported with
/// their row and lead nowhere.
std::optional<FileKind> followedKind(const std::string& file_name) {
    if (file_name.find_first_of("/\\") != std::string::npos) return std::nullopt;
    const std::optional<FileKind> kind = kindOfName(file_name);
    return kind == FileKind::ibs || kind == FileKind::ebd ? kind : std::nullopt;
}

/// The files that the board refers to, in the order of its map; spellings that differ in case are one file. An entry
/// that says the same as an earlier one adds nothing.
std::vector<FileReference> collectFiles(const EbdMdl& board, const UsedPins& used) {
    std::vector<FileReference> files;
    TextMap<std::size_t> places;
    TextSet entries;
    for (const EbdRefDes& entry : board.refdes_map) {
        const auto pins = used.find(entry.designator);
        const std::optional<FileKind> kind = followedKind(entry.file_name);
        if (pins == used.end() || !kind) continue;
        std::string key = entry.file_name;
        lowerCase(key);
        const auto [place, is_new] = places.try_emplace(key, files.size());
        if (is_new) files.push_back({.file_name = entry.file_name, .kind = *kind, .references = {}});
        // Blanks part the three names, none of which can hold one. A missing component was reported with its row.
        const bool is_new_entry = entries.insert(key + ' ' + entry.designator + ' ' + entry.component).second;
        if (is_new_entry && !entry.component.empty()) {
            files[place->second].references.push_back({.entry = &entry, .pins = &pins->second});
        }
    }
    return files;
}

/// Looks a reference up among what was read of its file.
void checkReference(Run& run, const Ibis& read, IbisVersion version, FileKind kind, const Reference& reference) {
    const std::string& name = reference.entry->component;
    const std::string& file_name = reference.entry->file_name;
    Target target;
    int limit = kBoardPinLimit;
    if (kind == FileKind::ibs) {
        target.component = read.components.find(name);
        limit = pinNameLimit(version);
    } else {
        target.board = read.board_descriptions.find(name);
    }
    if (!target.found()) {
        error(run.diagnostics, 4390, name, file_name);
        return;
    }
    for (const std::string_view pin : reference.pins->texts) {
        if (std::cmp_greater(pin.size(), limit)) {
            error(run.diagnostics, 4393, pin, name);
        } else if (!target.hasPin(pin)) {
            error(run.diagnostics, 4389, pin, name, file_name);
        }
    }
}

/// References into the file of the board itself, which need no reading.
void checkOwnFile(Run& run, const Ibis& root, const EbdMdl& board, const FileReference& file) {
    for (const Reference& reference : file.references) {
        if (reference.entry->component == board.name) {
            error(run.diagnostics, 4381, reference.entry->designator, board.name);
        } else {
            checkReference(run, root, run.parse.version, file.kind, reference);
        }
    }
}

/// Reports the boards of a file just read that refer back to a board of the file that refers to them.
void reportRecursion(Run& run, const Ibis& caller, std::string_view caller_name, const Ibis& read,
                     std::string_view file_name) {
    for (const EbdMdl& board : read.board_descriptions.newestFirst()) {
        for (const EbdRefDes& entry : board.refdes_map) {
            if (!entry.component.empty() && equalsNoCase(entry.file_name, caller_name) &&
                caller.board_descriptions.find(entry.component) != nullptr) {
                error(run.diagnostics, 4394, file_name, entry.component, caller_name);
            }
        }
    }
}

/// A root of its own for a nested parse; the root and the reader's state before it come back with its end.
struct NestedRoot {
    explicit NestedRoot(Run& the_run) : run(the_run), outer(the_run.parse), root(createRoot(the_run)) {
        // A run of its own: until its "[IBIS Ver]" the file is held to the oldest rules.
        run.parse.version = IbisVersion::none;
    }
    NestedRoot(const NestedRoot&) = delete;
    NestedRoot& operator=(const NestedRoot&) = delete;
    ~NestedRoot() {
        freeRoot(run, root);
        run.parse = std::move(outer);
    }

    Run& run;
    ParseState outer;
    Ibis& root;
};

/// Reads a file on a root of its own and checks the references into it. What a file that was not read might hold is
/// left open.
void readFile(Run& run, const Ibis& caller, const FileReference& file) {
    const NestedRoot nested(run);
    if (!parseFile(run, file.file_name, file.kind)) return;
    const IbisVersion version = run.parse.version;
    if (file.kind == FileKind::ibs) {
        finalChecks(run);
    } else {
        finalBoardChecks(run, true);
        reportRecursion(run, caller, nested.outer.file_name, nested.root, file.file_name);
    }
    for (const Reference& reference : file.references) {
        checkReference(run, nested.root, version, file.kind, reference);
    }
}

} // namespace

void followBoard(Run& run, const Ibis& root, const EbdMdl& board) {
    const UsedPins used = collectUsedPins(board);
    for (const FileReference& file : collectFiles(board, used)) {
        if (equalsNoCase(file.file_name, run.parse.file_name)) {
            checkOwnFile(run, root, board, file);
        } else {
            readFile(run, root, file);
        }
    }
}

} // namespace kestrel
