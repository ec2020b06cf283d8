#pragma once

#include <string>

namespace kestrel {

/// All topics as one page in Markdown: by areas of keywords, with an index by code. It is docs/messages.md.
[[nodiscard]] std::string messagesPage();

} // namespace kestrel
