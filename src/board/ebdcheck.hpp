#pragma once

namespace kestrel {

struct Run;
struct EbdMdl;

/// Checks a board as a whole when it ends: its texts, its pins against its paths, its paths against its pins and its
/// map. Reports 4308 to 4359 and warns of designators that no path uses, all without line.
void checkBoard(Run& run, const EbdMdl& board);

} // namespace kestrel
