#include "package/ebdfollow.hpp"

#include "ibis/run.hpp"
#include "reader/cmn.hpp"
#include "reader/parse.hpp"

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kestrel {

namespace {

/// The pins that paths use of each designator, in reading order.
using UsedPins = std::unordered_map<std::string_view, std::vector<std::string_view>>;

/// A map entry and the pins used of it.
struct Reference {
    const EbdRefDes* entry;
    const std::vector<std::string_view>* pins;
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
        return component != nullptr ? findPin(*component, pin) != nullptr : board->pin_names.contains(pin);
    }
};

UsedPins collectUsedPins(const EbdMdl& board) {
    UsedPins used;
    for (const EbdPath& path : board.paths) {
        for (const EbdNode& node : path.nodes) {
            used[node.designator].push_back(node.pin);
        }
    }
    return used;
}

/// The files that the board refers to, in the order of its map. Names that are no .ibs or .ebd file were reported with
/// their row and lead nowhere.
std::vector<FileReference> collectFiles(const EbdMdl& board, const UsedPins& used) {
    std::vector<FileReference> files;
    std::unordered_map<std::string_view, std::size_t> places;
    for (const EbdRefDes& entry : board.refdes_map) {
        const auto pins = used.find(entry.designator);
        const std::optional<FileKind> kind = kindOfName(entry.file_name);
        if (pins == used.end() || (kind != FileKind::ibs && kind != FileKind::ebd)) {
            continue;
        }
        const auto [place, is_new] = places.try_emplace(entry.file_name, files.size());
        if (is_new) {
            files.push_back({.file_name = entry.file_name, .kind = *kind, .references = {}});
        }
        files[place->second].references.push_back({.entry = &entry, .pins = &pins->second});
    }
    return files;
}

/// Looks a reference up among what was read of its file.
void checkReference(Run& run, const Ibis& read, IbisVersion version, FileKind kind, const Reference& reference) {
    const std::string& name = reference.entry->component;
    const std::string& file_name = reference.entry->file_name;
    if (name.empty()) {
        return; // reported with its row
    }
    Target target;
    std::size_t limit = kMaxBoardPin;
    if (kind == FileKind::ibs) {
        target.component = read.components.find(name);
        limit = static_cast<std::size_t>(pinNameLimit(version));
    } else {
        target.board = read.board_descriptions.find(name);
    }
    if (!target.found()) {
        error(run.diagnostics, 4390, name, file_name);
        return;
    }
    std::unordered_set<std::string_view> told; // many paths may use the same pin
    for (const std::string_view pin : *reference.pins) {
        const bool too_long = pin.size() > limit;
        if ((!too_long && target.hasPin(pin)) || !told.insert(pin).second) {
            continue;
        }
        if (too_long) {
            error(run.diagnostics, 4393, pin, name);
        } else {
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
            if (equalsNoCase(entry.file_name, caller_name) &&
                caller.board_descriptions.find(entry.component) != nullptr) {
                error(run.diagnostics, 4394, file_name, entry.component, caller_name);
            }
        }
    }
}

/// Reads a file on a root of its own and checks the references into it; the reader's state is put back. What a file
/// that was not read might hold is left open.
void readFile(Run& run, const Ibis& caller, const FileReference& file) {
    const ParseState outer = run.parse;
    Ibis& read = createRoot(run);
    // A run of its own: until its "[IBIS Ver]" the file is held to the oldest rules.
    run.parse.version = IbisVersion::none;
    if (parseFile(run, file.file_name, file.kind)) {
        const IbisVersion version = run.parse.version;
        if (file.kind == FileKind::ibs) {
            finalChecks(run);
        } else {
            finalBoardChecks(run, true);
            reportRecursion(run, caller, outer.file_name, read, file.file_name);
        }
        for (const Reference& reference : file.references) {
            checkReference(run, read, version, file.kind, reference);
        }
    }
    freeRoot(run, read);
    run.parse = outer;
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
