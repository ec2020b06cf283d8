#pragma once

#include "diagnostics/finding_code.hpp"

#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

/// Reads a code with or without the letter of a class ahead of it, such as "905", "E905" or "Q201"; nothing where the
/// text is none. Whether there is such a code is not asked.
[[nodiscard]] std::optional<FindingCode> readAskedCode(std::string_view text);

/// The codes with topics whose findings may read like this: with values filled in, as a program prints it or without
/// what is ahead of the text, in any case of letters. Of several those of which most is said in the same words.
[[nodiscard]] std::vector<FindingCode> codesOfText(std::string_view text);

/// The code with a topic whose text is most like a text; nothing when none is.
[[nodiscard]] std::optional<FindingCode> nearestCode(std::string_view text);

} // namespace kestrel
