#pragma once

#include <string_view>

namespace kestrel {

struct Run;
struct EbdMdl;

/// Reads a row of "[Reference Designator Map]"; it is kept whatever was wrong with it. Reports 4375 to 4388.
void refDesLine(Run& run, EbdMdl& board, std::string_view text);

} // namespace kestrel
