#pragma once

#include <string>

namespace kestrel {

struct Context;
struct Source;

/// The text of a parameter file without its comments, each line with its end, so that lines can be counted in it.
/// Reports a string that is left open.
[[nodiscard]] std::string collectAmi(Context& context, const Source& source);

} // namespace kestrel
