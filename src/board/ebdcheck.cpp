#include "base/text.hpp"
#include "base/text_hash.hpp"
#include "board/ebdmdl.hpp"
#include "reader/names.hpp"

#include <string_view>
#include <vector>

namespace kestrel {

namespace {

void checkTexts(Diagnostics& diagnostics, const EbdMdl& board) {
    if (board.name.empty()) error(diagnostics, 4308);
    if (board.manufacturer.empty()) error(diagnostics, 4333, std::string_view("Manufacturer"), board.name);
    if (board.number_of_pins == 0) error(diagnostics, 4315, board.name);
}

/// A supply pin is connected to its plane without a path.
bool isRail(std::string_view signal_name) {
    return prefixEqualsNoCase(signal_name, "POWER", 5) || prefixEqualsNoCase(signal_name, "GND", 3);
}

void checkReferences(Diagnostics& diagnostics, const EbdPin& pin, std::int32_t references) {
    if (references == 0) {
        if (!isReservedWord(pin.signal_name) && !isRail(pin.signal_name)) error(diagnostics, 4328, pin.name);
    } else if (isRail(pin.signal_name)) {
        warning(diagnostics, 4329, pin.name);
    } else if (references > 1) {
        error(diagnostics, 4330, pin.name, references);
    }
}

void checkPins(Diagnostics& diagnostics, const EbdMdlState& state, const EbdMdl& board) {
    if (!state.pin_list_seen) {
        error(diagnostics, 4326);
        return;
    }
    if (board.number_of_pins != 0 && board.pins.empty()) {
        error(diagnostics, 4327);
        return;
    }
    ViewMap<std::int32_t> references;
    for (const EbdPath& path : board.paths) {
        for (const std::string& pin : path.pins) {
            ++references[pin];
        }
    }
    for (const EbdPin& pin : board.pins) {
        const auto at = references.find(pin.name);
        checkReferences(diagnostics, pin, at == references.end() ? 0 : at->second);
    }
    if (board.pins.size() != board.number_of_pins) error(diagnostics, 4331, board.number_of_pins, board.pins.size());
}

/// Elements hang only from elements that were read before them, so one pass in reading order meets every branch from
/// its beginning.
void checkPath(Diagnostics& diagnostics, const EbdMdl& board, const EbdPath& path) {
    const std::vector<ChainElement>& elements = path.chain.elements;
    if (elements.empty()) {
        error(diagnostics, 4356, path.name);
        return;
    }
    std::vector<bool> behind_nc(elements.size()); // on the same branch
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const ChainElement& element = elements[i];
        const bool is_nc = element.kind == ElementKind::nc;
        if (element.next != kNoElement) {
            if (is_nc && !behind_nc[i]) error(diagnostics, 4357, path.name);
            behind_nc[element.next] = is_nc || behind_nc[i];
        }
        if (element.kind == ElementKind::pin) {
            const std::string& pin = path.pins[element.payload];
            if (!board.pins.has(pin)) error(diagnostics, 4358, pin, path.name);
        } else if (element.kind == ElementKind::node) {
            const std::string& designator = path.nodes[element.payload].designator;
            if (!board.refdes_map.has(designator)) error(diagnostics, 4359, designator, path.name);
        }
    }
}

void checkPaths(Diagnostics& diagnostics, const EbdMdl& board) {
    if (board.paths.empty()) error(diagnostics, 4355, board.name);
    for (const EbdPath& path : board.paths) {
        checkPath(diagnostics, board, path);
    }
}

void warnOfUnusedDesignators(Diagnostics& diagnostics, const EbdMdl& board) {
    ViewSet used;
    for (const EbdPath& path : board.paths) {
        for (const EbdNode& node : path.nodes) {
            used.insert(node.designator);
        }
    }
    for (const EbdRefDes& entry : board.refdes_map) {
        if (!used.contains(entry.designator)) {
            warningText(diagnostics, "Reference designator %s, %s, %s not used in any path description",
                        entry.designator, entry.file_name, entry.component);
        }
    }
}

} // namespace

void checkBoard(Diagnostics& diagnostics, const EbdMdlState& state, const EbdMdl& board) {
    checkTexts(diagnostics, board);
    checkPins(diagnostics, state, board);
    if (!state.end_board_description_seen) error(diagnostics, 4332);
    checkPaths(diagnostics, board);
    warnOfUnusedDesignators(diagnostics, board);
}

} // namespace kestrel
