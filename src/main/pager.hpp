#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrel {

/// The columns of the terminal on the standard output, as far as it has told.
[[nodiscard]] std::optional<std::size_t> terminalWidth();

/// Shows a text by the program that PAGER names, or by "less" where it is; false when there is none, or it did not run.
[[nodiscard]] bool showInPager(std::string_view text);

} // namespace kestrel
