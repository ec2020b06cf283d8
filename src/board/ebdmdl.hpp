#pragma once

#include "base/text_hash.hpp"
#include "board/ebdpath.hpp"
#include "reader/keyword.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel {

struct Run;

/// One row of "[Pin List]".
struct EbdPin {
    std::string name;        ///< at most 8 characters
    std::string signal_name; ///< at most 20 characters, empty when the row has none
};

/// One row of "[Reference Designator Map]": what is mounted on the board.
struct EbdRefDes {
    std::string designator; ///< at most 10 characters
    std::string file_name;  ///< of an .ibs or .ebd file; at most 24 characters below version class 4, else 44
    std::string component;  ///< at most 40 characters; of an .ebd file the name of a board
};

/// One "[Begin Board Description]".
struct EbdMdl {
    std::string name;                  ///< at most 40 characters
    std::string manufacturer;          ///< at most 40 characters
    std::uint32_t number_of_pins = 0;  ///< as stated; 0 until "[Number Of Pins]"
    std::vector<EbdPin> pins;          ///< those read, never more than number_of_pins, no name empty; in file order
    TextSet pin_names;                 ///< of the pins
    std::vector<EbdPath> paths;        ///< in file order
    std::vector<EbdRefDes> refdes_map; ///< in file order
};

/// The board being read, null outside one, and what was seen of it.
struct EbdMdlState {
    EbdMdl* current = nullptr;
    ChainCursor cursor;  ///< in the chain of the last path
    TextSet path_names;  ///< of the paths so far
    TextSet designators; ///< of the map so far
    bool pin_list_seen = false;
    bool number_of_pins_seen = false;
    bool reference_designator_map_seen = false;
    bool end_board_description_seen = false;
};

/// Opens a board at "[Begin Board Description]".
void openEbdMdl(Run& run);

/// Told of every keyword: one that is not a board's own closes the board and reports what it lacks (4308 to 4359, no
/// line).
void ebdmdlKeywordSeen(Run& run, KeywordCode code);

/// Reads a keyword line of a board or a data line under it.
void ebdmdlLine(Run& run, const Line& line);

/// Checks over the boards of the root once the file is read: 4306 (no line) for each repeated name, then, unless the
/// file is `nested`, what the boards' designators refer to.
void checkEbdMdls(Run& run, bool nested);

} // namespace kestrel
