#include "base/name_list.hpp"
#include "base/text.hpp"
#include "base/text_hash.hpp"
#include "ibis/checks.hpp"
#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "reader/names.hpp"

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kestrel {

namespace {

/// The distinct pins that paths use of each designator, in reading order.
using UsedPins = ViewMap<NameViews>;

UsedPins collectUsedPins(const EbdMdl& board) {
    UsedPins used;
    for (const EbdPath& path : board.paths) {
        for (const EbdNode& node : path.nodes) {
            used[node.designator].add(node.pin);
        }
    }
    return used;
}

/// What is kept of a file that was followed: its records that references name, none when it was not read.
struct FollowedFile {
    bool is_read = false;
    IbisVersion version = IbisVersion::none;
    ObjectList<Cmpnt> components;
    ObjectList<EbdMdl> boards;
};

/// The files followed so far, by their names in lower case.
using FollowedFiles = TextMap<FollowedFile>;

/// A file and the map entries of a board that refer into it.
struct FileReference {
    std::string key; ///< its name in lower case: spellings that differ in case are one file
    std::string_view name;
    FileKind kind;
    std::vector<const EbdRefDes*> entries;
};

/// The kind of file that a map entry leads to. Names that are no .ibs or .ebd file beside the board were reported with
/// their row and lead nowhere.
std::optional<FileKind> followedKind(std::string_view file_name) {
    if (file_name.find_first_of("/\\") != std::string_view::npos) return std::nullopt;
    const std::optional<FileKind> kind = kindOfName(file_name);
    return kind == FileKind::ibs || kind == FileKind::ebd ? kind : std::nullopt;
}

/// The files that the board refers to, in the order of its map. Of entries of one designator the first counts; the
/// others were reported.
std::vector<FileReference> collectFiles(const EbdMdl& board, const UsedPins& used) {
    std::vector<FileReference> files;
    TextMap<std::size_t> places;
    for (const EbdRefDes& entry : board.refdes_map) {
        const std::optional<FileKind> kind = followedKind(entry.file_name);
        if (!kind || !used.contains(entry.designator) || !board.refdes_map.isFirst(entry)) continue;
        std::string key = entry.file_name;
        lowerCase(key);
        const auto [place, is_new] = places.try_emplace(key, files.size());
        if (is_new) files.push_back({.key = key, .name = entry.file_name, .kind = *kind, .entries = {}});
        // A missing component was reported with its row.
        if (!entry.component.empty()) files[place->second].entries.push_back(&entry);
    }
    return files;
}

/// Holds the pins used of a component or board to those that it has, by `has_pin`.
template <class HasPin>
void checkPins(Diagnostics& diagnostics, const EbdRefDes& entry, const NameViews& pins, int limit, HasPin has_pin) {
    for (const std::string_view pin : pins.names) {
        if (std::cmp_greater(pin.size(), limit)) {
            error(diagnostics, 4393, pin, entry.component);
        } else if (!has_pin(pin)) {
            error(diagnostics, 4389, pin, entry.component, entry.file_name);
        }
    }
}

/// `version` is that of the file in which the boards are.
void checkBoardReference(Diagnostics& diagnostics, const ObjectList<EbdMdl>& boards, IbisVersion version,
                         const EbdRefDes& entry, const NameViews& pins) {
    if (const EbdMdl* const board = boards.find(entry.component)) {
        checkPins(diagnostics, entry, pins, boardPinLimit(version),
                  [board](std::string_view pin) { return board->pins.has(pin); });
    } else {
        error(diagnostics, 4390, entry.component, entry.file_name);
    }
}

void checkComponentReference(Diagnostics& diagnostics, const FollowedFile& file, const EbdRefDes& entry,
                             const NameViews& pins) {
    if (const Cmpnt* const component = file.components.find(entry.component)) {
        checkPins(diagnostics, entry, pins, pinNameLimit(file.version),
                  [component](std::string_view pin) { return isKnownPin(component->pins, pin); });
    } else {
        error(diagnostics, 4390, entry.component, entry.file_name);
    }
}

/// Reports the boards of the file that leads to `file` to which a board of `file` refers back.
void reportRecursion(Diagnostics& diagnostics, const Ibis& caller, std::string_view caller_name,
                     const FollowedFile& file, std::string_view file_name) {
    std::unordered_set<const EbdMdl*> reported;
    for (const EbdMdl& board : file.boards.newestFirst()) {
        for (const EbdRefDes& entry : board.refdes_map) {
            if (entry.component.empty() || !equalsNoCase(entry.file_name, caller_name)) continue;
            const EbdMdl* const named = caller.board_descriptions.find(entry.component);
            if (named == nullptr || !reported.insert(named).second) continue;
            const About about(diagnostics, *named);
            error(diagnostics, 4394, file_name, entry.component, caller_name);
        }
    }
}

/// A root of its own for a nested parse; the root and the reader's state before it come back with its end.
struct NestedRoot {
    explicit NestedRoot(Run& the_run)
        : run(the_run), kept(the_run.parse), other(the_run.diagnostics), root(createRoot(the_run)) {
        // A run of its own: until its "[IBIS Ver]" the file is held to the oldest rules.
        run.parse.version = IbisVersion::none;
    }
    NestedRoot(const NestedRoot&) = delete;
    NestedRoot& operator=(const NestedRoot&) = delete;
    ~NestedRoot() { freeRoot(run, root); }

    Run& run;
    KeptParse kept;
    OtherFile other;
    Ibis& root;
};

/// Reads a file that a board leads to.
FollowedFile readFile(Run& run, const EbdMdl& board, std::string_view name, FileKind kind) {
    const NestedRoot nested(run);
    FollowedFile file;
    {
        const About about(run.diagnostics, board); // one that does not open is the board's fault
        file.is_read = parseFile(run, name, kind);
    }
    if (!file.is_read) return file;
    file.version = run.parse.version;
    if (kind == FileKind::ibs) {
        finalChecks(run, nested.root);
    } else {
        checkBoards(run, nested.root, true);
    }
    file.components = std::move(nested.root.components);
    file.boards = std::move(nested.root.board_descriptions);
    return file;
}

/// Checks references into the file of the board itself, which need no reading.
void checkOwnFile(Context& context, const Ibis& root, const EbdMdl& board, const FileReference& file,
                  const UsedPins& used) {
    Diagnostics& diagnostics = context.diagnostics;
    const About about(diagnostics, board);
    for (const EbdRefDes* const entry : file.entries) {
        if (entry->component == board.name) {
            error(diagnostics, 4381, entry->designator, board.name);
        } else {
            checkBoardReference(diagnostics, root.board_descriptions, context.parse.version, *entry,
                                used.at(entry->designator));
        }
    }
}

/// Checks references into another file. What one that could not be read might hold is left open.
void checkOtherFile(Run& run, const Ibis& root, const EbdMdl& board, const FileReference& file, const UsedPins& used,
                    FollowedFiles& followed) {
    const auto [at, is_new] = followed.try_emplace(file.key);
    FollowedFile& target = at->second;
    if (is_new) {
        target = readFile(run, board, file.name, file.kind);
        reportRecursion(run.diagnostics, root, run.parse.file_name, target, file.name);
    }
    if (!target.is_read) return;
    const About about(run.diagnostics, board);
    for (const EbdRefDes* const entry : file.entries) {
        const NameViews& pins = used.at(entry->designator);
        if (file.kind == FileKind::ibs) {
            checkComponentReference(run.diagnostics, target, *entry, pins);
        } else {
            checkBoardReference(run.diagnostics, target.boards, target.version, *entry, pins);
        }
    }
}

} // namespace

void checkBoards(Run& run, const Ibis& root, bool nested) {
    root.board_descriptions.eachRepeatedName([&run](const EbdMdl& board, std::size_t) {
        const About about(run.diagnostics, board);
        error(run.diagnostics, 4306, board.name);
    });
    if (nested) return;
    FollowedFiles followed;
    for (const EbdMdl& board : root.board_descriptions.newestFirst()) {
        const UsedPins used = collectUsedPins(board);
        for (const FileReference& file : collectFiles(board, used)) {
            if (equalsNoCase(file.name, run.parse.file_name)) {
                checkOwnFile(run, root, board, file, used);
            } else {
                checkOtherFile(run, root, board, file, used, followed);
            }
        }
    }
}

} // namespace kestrel
