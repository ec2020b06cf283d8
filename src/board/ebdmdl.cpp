#include "board/ebdmdl.hpp"

#include "base/text.hpp"
#include "reader/items.hpp"
#include "reader/line_form.hpp"
#include "reader/names.hpp"

namespace kestrel {

namespace {

constexpr NumberMessages kNumberOfPins{4310, 4311, 4312, 4313, 4314};

/// Stores a name; a cut may have left blanks at its end.
void storeNameOnce(Context& context, std::string& name, std::string_view text, std::string_view label) {
    if (setTextOnce(context.diagnostics, name, text, longNameLimit(context.parse.version), label))
        name.resize(stripTrailing(name).size());
}

void nameKeyword(Context& context, EbdMdlState& state, EbdMdl& board, std::string_view text) {
    std::string name(board.name);
    storeNameOnce(context, name, text, "Define Ebd Model");
    board.name = context.names.enter(name);
    state.list->enterNewest(context.names);
    setContext(context.diagnostics, board.name.view());
}

void manufacturerKeyword(Context& context, EbdMdl& board, std::string_view text) {
    storeNameOnce(context, board.manufacturer, text, "Manufacturer");
}

void numberOfPinsKeyword(Context& context, EbdMdlState& state, EbdMdl& board, std::string_view text) {
    if (std::exchange(state.number_of_pins_seen, true)) errorAtLine(context.diagnostics, 4309);
    readNumber(context, text, board.number_of_pins, kNumberOfPins);
}

void pinListKeyword(Context& context, EbdMdlState& state, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    if (std::exchange(state.pin_list_seen, true)) errorAtLine(diagnostics, 4336);
    const ItemList items = splitItems(context, text, 1);
    if (!items.has(0)) {
        errorAtLine(diagnostics, 4337);
        return;
    }
    if (!equalsNoCase(items[0], "signal_name")) errorAtLine(diagnostics, 4338);
    if (items.count > 1) errorAtLine(diagnostics, 4339);
}

void pathKeyword(Context& context, EbdMdlState& state, EbdMdl& board, std::string_view text) {
    if (!state.cursor.forks.empty()) errorAtLine(context.diagnostics, 4303);
    state.cursor = {};
    EbdPath path;
    storeNameOnce(context, path.name, text, "Path Description");
    if (!board.paths.add(std::move(path))) errorAtLine(context.diagnostics, 4354, board.paths.back().name);
}

/// A keyword that may be given once and has nothing behind it.
void markKeyword(Context& context, bool& seen, std::string_view text, std::string_view label) {
    if (std::exchange(seen, true)) errorAtLine(context.diagnostics, 4334, label);
    if (!text.empty()) errorAtLine(context.diagnostics, 4335, label);
}

void mapKeyword(Context& context, EbdMdlState& state, std::string_view text) {
    markKeyword(context, state.reference_designator_map_seen, text, "Reference_Designator_Map");
}

void endKeyword(Context& context, EbdMdlState& state, std::string_view text) {
    markKeyword(context, state.end_board_description_seen, text, "End_Board_Description");
}

/// A row of "[Pin List]". One for which the board has no room is dropped.
void pinRow(Context& context, EbdMdl& board, std::string_view text) {
    Diagnostics& diagnostics = context.diagnostics;
    const ItemList items = splitItems(context, text, 2);
    if (!items.has(0)) {
        errorAtLine(diagnostics, 4316);
        return;
    }
    std::string name;
    storeName(diagnostics, name, items[0], boardPinLimit(context.parse.version), 4317);
    if (board.number_of_pins == 0) {
        errorAtLine(diagnostics, 4318);
        return;
    }
    if (board.pins.size() >= board.number_of_pins) {
        errorAtLine(diagnostics, 4320);
        return;
    }
    const bool is_new = board.pins.add({.name = std::move(name)});
    EbdPin& pin = board.pins.back();
    if (!is_new) errorAtLine(diagnostics, 4322, pin.name);
    if (!items.has(1)) errorAtLine(diagnostics, 4323);
    storeName(diagnostics, pin.signal_name, items[1], boardSignalLimit(context.parse.version), 4324);
    if (items.count > 2) errorAtLine(diagnostics, 4325);
}

void pathRow(Context& context, EbdMdlState& state, EbdMdl& board, std::string_view text) {
    pathLine(context, board.paths.back(), state.cursor, text);
}

void dataOutOfPlace(Context& context, std::string_view /*text*/) { errorAtLine(context.diagnostics, 4302); }

using K = KeywordCode;

constexpr auto kKeywords = sectionTable<EbdMdlState>({
    section<EbdMdlState, nameKeyword, dataOutOfPlace>(K::beginBoardDescription),
    section<EbdMdlState, manufacturerKeyword, dataOutOfPlace>(K::boardManufacturer),
    section<EbdMdlState, numberOfPinsKeyword, dataOutOfPlace>(K::boardNumberOfPins),
    section<EbdMdlState, pinListKeyword, pinRow>(K::pinList),
    section<EbdMdlState, pathKeyword, pathRow>(K::pathDescription),
    section<EbdMdlState, mapKeyword, refDesLine>(K::referenceDesignatorMap),
    section<EbdMdlState, endKeyword, dataOutOfPlace>(K::endBoardDescription),
});

void closeBoard(Context& context, EbdMdlState& state, EbdMdl& board) {
    checkBoard(context.diagnostics, state, board);
    setContext(context.diagnostics, std::nullopt);
}

} // namespace

const RecordModule<EbdMdlState> kEbdMdl{
    .opens = K::beginBoardDescription,
    .find = [](K code) { return kKeywords.find(code); },
    .close = closeBoard,
    .orphan = reportOrphan<4301, 4302>,
    .impossible = reportImpossible<LineKind::blank, 4305, 4304>,
};

} // namespace kestrel
