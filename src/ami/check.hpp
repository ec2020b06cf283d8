#pragma once

#include <string>
#include <string_view>

namespace kestrel {

struct Context;
struct Source;

/// The text of a parameter file without its comments, each line with its end, so that lines can be counted in it.
/// Reports a string that is left open.
[[nodiscard]] std::string collectAmi(Context& context, Source& source);

/// Checks the collected text of a parameter file: its tree, sections, parameters and the reserved ones among them. The
/// lines that are reported are those of the text.
void checkAmi(Context& context, std::string_view text);

} // namespace kestrel
