#pragma once

#include "findings/format.hpp"
#include "topics/topic.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// The topics that a question leads to, or what is wrong with it.
struct Explained {
    std::vector<const Topic*> topics;
    std::vector<FindingCode> codes{}; ///< those that were meant, where a text is that of several
    std::string problem{};            ///< empty when there are topics
};

/// Finds what somebody asks about: a code, a topic's name, or the text of a finding.
[[nodiscard]] Explained findExplained(std::string_view asked);

/// How explanations are laid out for people.
struct ExplainForm {
    std::size_t width = 80; ///< of a line in characters
    bool color = false;     ///< headings stand out, as on a terminal
};

/// A topic with its messages as people read it. Of several only their titles and what was meant, to choose from.
[[nodiscard]] std::string explanation(const Explained& explained, const ExplainForm& form);

/// The topics as a JSON object.
void explainAsJson(Output& out, const Explained& explained, const FormatSettings& settings);

} // namespace kestrel
