#pragma once

#include "findings/format.hpp"

namespace kestrel {

/// Lists every message that has a text: its code, the classes as which it is reported, the text; then every advice,
/// with its title for a text. As JSON in that form, in lines otherwise.
void listMessages(Output& out, FormatKind format, const FormatSettings& settings);

} // namespace kestrel
