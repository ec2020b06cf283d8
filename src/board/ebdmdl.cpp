#include "board/ebdmdl.hpp"

#include "base/text.hpp"
#include "board/ebdcheck.hpp"
#include "board/ebdrefdes.hpp"
#include "ibis/ebdfollow.hpp"
#include "ibis/run.hpp"
#include "reader/items.hpp"
#include "reader/names.hpp"
#include "reader/number.hpp"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace kestrel {

namespace {

constexpr NumberMessages kNumberOfPins{4310, 4311, 4312, 4313, 4314};

/// Stores a name; a cut may have left blanks at its end.
void storeNameOnce(Run& run, std::string& name, std::string_view text, std::string_view label) {
    if (setTextOnce(run.diagnostics, name, text, kLongNameLimit, label)) {
        name.resize(stripTrailing(name).size());
    }
}

void nameKeyword(Run& run, EbdMdl& board, std::string_view text) {
    storeNameOnce(run, board.name, text, "Define Ebd Model");
    currentRoot(run)->board_descriptions.enterName(board, board.name);
    setContext(run.diagnostics, board.name);
}

void manufacturerKeyword(Run& run, EbdMdl& board, std::string_view text) {
    storeNameOnce(run, board.manufacturer, text, "Manufacturer");
}

void numberOfPinsKeyword(Run& run, EbdMdl& board, std::string_view text) {
    if (run.ebdmdl.number_of_pins_seen) {
        errorAtLine(run.diagnostics, 4309);
    }
    run.ebdmdl.number_of_pins_seen = true;
    readNumber(run, text, board.number_of_pins, kNumberOfPins);
}

void pinListKeyword(Run& run, EbdMdl&, std::string_view text) {
    if (run.ebdmdl.pin_list_seen) {
        errorAtLine(run.diagnostics, 4336);
    }
    run.ebdmdl.pin_list_seen = true;
    const ItemList items = splitItems(run, text, 1);
    if (!items.has(0)) {
        errorAtLine(run.diagnostics, 4337);
        return;
    }
    if (!equalsNoCase(items[0], "signal_name")) {
        errorAtLine(run.diagnostics, 4338);
    }
    if (items.count > 1) {
        errorAtLine(run.diagnostics, 4339);
    }
}

void pathDescriptionKeyword(Run& run, EbdMdl& board, std::string_view text) {
    EbdMdlState& state = run.ebdmdl;
    if (!state.cursor.forks.empty()) {
        errorAtLine(run.diagnostics, 4303);
    }
    state.cursor = {};
    EbdPath& path = board.paths.emplace_back();
    storeNameOnce(run, path.name, text, "Path Description");
    if (!state.path_names.insert(path.name).second) {
        errorAtLine(run.diagnostics, 4354, path.name);
    }
}

/// A keyword that may be given once and has nothing behind it.
void markKeyword(Run& run, bool& seen, std::string_view text, std::string_view label) {
    if (seen) {
        errorAtLine(run.diagnostics, 4334, label);
    }
    if (!text.empty()) {
        errorAtLine(run.diagnostics, 4335, label);
    }
    seen = true;
}

void mapKeyword(Run& run, EbdMdl&, std::string_view text) {
    markKeyword(run, run.ebdmdl.reference_designator_map_seen, text, "Reference_Designator_Map");
}

void endKeyword(Run& run, EbdMdl&, std::string_view text) {
    markKeyword(run, run.ebdmdl.end_board_description_seen, text, "End_Board_Description");
}

/// A row of "[Pin List]". One for which the board has no room is dropped.
void pinRow(Run& run, EbdMdl& board, std::string_view text) {
    const ItemList items = splitItems(run, text, 2);
    if (!items.has(0)) {
        errorAtLine(run.diagnostics, 4316);
        return;
    }
    EbdPin pin;
    storeName(run.diagnostics, pin.name, items[0], kBoardPinLimit, 4317);
    if (board.number_of_pins == 0) {
        errorAtLine(run.diagnostics, 4318);
        return;
    }
    if (board.pins.size() >= board.number_of_pins) {
        errorAtLine(run.diagnostics, 4320);
        return;
    }
    if (!board.pin_names.insert(pin.name).second) {
        errorAtLine(run.diagnostics, 4322, pin.name);
    }
    if (!items.has(1)) {
        errorAtLine(run.diagnostics, 4323);
    }
    storeName(run.diagnostics, pin.signal_name, items[1], kBoardSignalLimit, 4324);
    if (items.count > 2) {
        errorAtLine(run.diagnostics, 4325);
    }
    board.pins.push_back(std::move(pin));
}

void pathRow(Run& run, EbdMdl& board, std::string_view text) { pathLine(run, board.paths.back(), text); }

void dataOutOfPlace(Run& run, EbdMdl&, std::string_view) { errorAtLine(run.diagnostics, 4302); }

/// A keyword of a board: what reads its line, and what reads the data lines under it.
struct KeywordRow {
    using Read = void (*)(Run& run, EbdMdl& board, std::string_view text);
    KeywordCode code;
    Read keyword;
    Read data;
};

constexpr std::array<KeywordRow, 7> kKeywords{{
    {KeywordCode::beginBoardDescription, nameKeyword, dataOutOfPlace},
    {KeywordCode::boardManufacturer, manufacturerKeyword, dataOutOfPlace},
    {KeywordCode::boardNumberOfPins, numberOfPinsKeyword, dataOutOfPlace},
    {KeywordCode::pinList, pinListKeyword, pinRow},
    {KeywordCode::pathDescription, pathDescriptionKeyword, pathRow},
    {KeywordCode::referenceDesignatorMap, mapKeyword, refDesLine},
    {KeywordCode::endBoardDescription, endKeyword, dataOutOfPlace},
}};

/// Reads a line under the keyword that it lies under.
void boardLine(Run& run, EbdMdl& board, const Line& line, KeywordRow::Read KeywordRow::*read) {
    const auto* const row = std::ranges::find(kKeywords, line.key, &KeywordRow::code);
    if (row == kKeywords.end()) {
        const SourceMark mark = here();
        programBugAtLine(run.diagnostics, 4304, mark.file, mark.line);
        return;
    }
    (row->*read)(run, board, line.text);
}

void reportDuplicates(Run& run, const Ibis& root) {
    std::unordered_map<std::string_view, std::uint32_t> left;
    for (const EbdMdl& board : root.board_descriptions.newestFirst()) {
        ++left[board.name];
    }
    for (const EbdMdl& board : root.board_descriptions.newestFirst()) {
        if (--left[board.name] > 0) {
            error(run.diagnostics, 4306, board.name);
        }
    }
}

} // namespace

void openEbdMdl(Run& run) {
    Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        const SourceMark mark = here();
        programBugAtLine(run.diagnostics, 4300, mark.file, mark.line);
        return;
    }
    run.ebdmdl = EbdMdlState{};
    run.ebdmdl.current = &root->board_descriptions.add(std::make_unique<EbdMdl>());
}

void ebdmdlKeywordSeen(Run& run, KeywordCode code) {
    const EbdMdl* const board = run.ebdmdl.current;
    if (board == nullptr || isBetween(code, KeywordCode::boardManufacturer, KeywordCode::endBoardDescription)) {
        return;
    }
    checkBoard(run, *board);
    run.ebdmdl = EbdMdlState{};
    setContext(run.diagnostics, std::nullopt);
}

void ebdmdlLine(Run& run, const Line& line) {
    EbdMdl* const board = run.ebdmdl.current;
    switch (line.kind) {
    case LineKind::keyword:
        if (board != nullptr) {
            boardLine(run, *board, line, &KeywordRow::keyword);
        } else {
            errorAtLine(run.diagnostics, 4301);
        }
        return;
    case LineKind::data:
        if (board != nullptr) {
            boardLine(run, *board, line, &KeywordRow::data);
        } else {
            errorAtLine(run.diagnostics, 4302);
        }
        return;
    case LineKind::blank: break;
    }
    const SourceMark mark = here();
    programBugAtLine(run.diagnostics, 4305, mark.file, mark.line);
}

void checkEbdMdls(Run& run, bool nested) {
    const Ibis* const root = currentRoot(run);
    if (root == nullptr) {
        return;
    }
    reportDuplicates(run, *root);
    if (nested) {
        return;
    }
    for (const EbdMdl& board : root->board_descriptions.newestFirst()) {
        followBoard(run, *root, board);
    }
}

} // namespace kestrel
