#pragma once

#include <string>

namespace kestrel {

/// All checks of advice as one page in Markdown: what they say, by which formula and limit. It is docs/advice.md.
[[nodiscard]] std::string advicePage();

} // namespace kestrel
