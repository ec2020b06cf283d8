#pragma once

#include <string_view>

namespace kestrel {

struct Context;

/// Checks the collected text of a parameter file: its tree, sections, parameters and the reserved ones among them. The
/// lines that are reported are those of the text.
void checkAmi(Context& context, std::string_view text);

} // namespace kestrel
