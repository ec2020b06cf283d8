#pragma once

#include "base/indexed_rows.hpp"
#include "board/ebdpath.hpp"
#include "reader/sections.hpp"

#include <cstdint>
#include <string>

namespace kestrel {

/// One row of "[Pin List]".
struct EbdPin {
    std::string name;          ///< at most 8 characters
    std::string signal_name{}; ///< at most 20 characters, empty when the row has none
};

/// One row of "[Reference Designator Map]": what is mounted on the board.
struct EbdRefDes {
    std::string designator;  ///< at most 10 characters
    std::string file_name{}; ///< of an .ibs or .ebd file; at most 24 characters below version class 4, else 44
    std::string component{}; ///< at most 40 characters; of an .ebd file the name of a board
};

/// One "[Begin Board Description]", whose name has at most 40 characters.
struct EbdMdl : RecordOf<SubjectKind::board> {
    std::string manufacturer;                                  ///< at most 40 characters
    std::uint32_t number_of_pins = 0;                          ///< as stated; 0 until "[Number Of Pins]"
    IndexedRows<EbdPin, &EbdPin::name> pins;                   ///< those read, never more than number_of_pins
    IndexedRows<EbdPath, &EbdPath::name> paths;                ///< in file order
    IndexedRows<EbdRefDes, &EbdRefDes::designator> refdes_map; ///< in file order
};

/// The board being read and what was seen of it.
struct EbdMdlState : RecordState<EbdMdl> {
    ChainCursor cursor; ///< in the chain of the last path
    bool pin_list_seen = false;
    bool number_of_pins_seen = false;
    bool reference_designator_map_seen = false;
    bool end_board_description_seen = false;
};

/// Reads boards. At the end of one it is checked as a whole.
extern const RecordModule<EbdMdlState> kEbdMdl;

/// Reads a row of "[Reference Designator Map]"; it is kept whatever was wrong with it.
void refDesLine(Context& context, EbdMdl& board, std::string_view text);

/// Checks a board as a whole when it ends: its texts, its pins against its paths, its paths against its pins and its
/// map, its map against its paths.
void checkBoard(Diagnostics& diagnostics, const EbdMdlState& state, const EbdMdl& board);

} // namespace kestrel
