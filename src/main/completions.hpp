#pragma once

#include <string>
#include <string_view>

namespace kestrel {

/// The shells for which completions can be made.
inline constexpr std::string_view kShells[] = {"bash", "zsh", "fish"};

/// The completions of verimark's command line for one of the shells, made from the table of its options.
[[nodiscard]] std::string completionsFor(std::string_view shell);

} // namespace kestrel
