#pragma once

#include <string_view>

namespace kestrel {

struct Context;
struct EbdMdl;

/// Reads a row of "[Reference Designator Map]"; it is kept whatever was wrong with it.
void refDesLine(Context& context, EbdMdl& board, std::string_view text);

} // namespace kestrel
