#pragma once

namespace kestrel {

struct Diagnostics;
struct EbdMdl;
struct EbdMdlState;

/// Checks a board as a whole when it ends: its texts, its pins against its paths, its paths against its pins and its
/// map, its map against its paths.
void checkBoard(Diagnostics& diagnostics, const EbdMdlState& state, const EbdMdl& board);

} // namespace kestrel
