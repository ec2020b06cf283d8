#pragma once

#include "findings/format.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// The classes as which a code is reported.
[[nodiscard]] std::vector<std::string_view> classesOf(FindingCode code);
/// The same in one text, parted by commas.
[[nodiscard]] std::string joinedClasses(FindingCode code);

/// Lists every message that has a text: its code, the classes as which it is reported, the text, its topic. As JSON in
/// that form, in lines otherwise.
void listMessages(Output& out, FormatKind format, const FormatSettings& settings);

} // namespace kestrel
