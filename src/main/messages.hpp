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

/// What a code says: the text of a message with "..." for what each finding fills in, the title of an advice.
[[nodiscard]] std::string textOf(FindingCode code);

/// Lists every message that has a text: its code, the classes as which it is reported, the text, its topic; then every
/// advice. As JSON in that form, in lines otherwise.
void listMessages(Output& out, FormatKind format, const FormatSettings& settings);

} // namespace kestrel
