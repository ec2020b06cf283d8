#pragma once

#include "topics/topic.hpp"

#include <string>
#include <string_view>

namespace kestrel {

/// How a topic is laid out as plain text.
struct PlainForm {
    std::size_t width = 0;            ///< of a line in characters; 0 for paragraphs of one line
    std::string_view heading_begin{}; ///< what goes around a heading
    std::string_view heading_end{};
};

/// The parts of a topic and its example under their headings, without the title.
[[nodiscard]] std::string plainText(const Topic& topic, const PlainForm& form = {});

/// The same in Markdown.
[[nodiscard]] std::string markdownText(const Topic& topic);

/// A text in which nothing means anything to Markdown, tables included.
[[nodiscard]] std::string escapedMarkdown(std::string_view text);

} // namespace kestrel
