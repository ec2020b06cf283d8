#pragma once

namespace kestrel {

struct Run;
struct Ibis;
struct EbdMdl;

/// Follows the designators that the paths of a board use into their files, each of which is read once, on a root of its
/// own, with its own final checks. `root` is that of the board's file, which is the file of the reader's state.
/// Reports 4381, 4389, 4390, 4393 and 4394 (no line) and whatever the files themselves give rise to.
void followBoard(Run& run, const Ibis& root, const EbdMdl& board);

} // namespace kestrel
