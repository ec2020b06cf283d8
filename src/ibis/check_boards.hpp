#pragma once

namespace kestrel {

struct Run;
struct Ibis;

/// Checks over the boards of a root once its file, that of the reader's state, is read: repeated names and, unless the
/// file is `nested`, what the boards' designators refer to. The files that those lead to are each read once, when the
/// first board leads there, on a root of their own, with their own final checks.
void checkBoards(Run& run, const Ibis& root, bool nested);

} // namespace kestrel
