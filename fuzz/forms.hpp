#pragma once

#include <string_view>

namespace kestrel::fuzz {

/// Holds a text to be one JSON value with white space around it, in UTF-8. A fault where it is not.
void demandJson(std::string_view text);

/// Holds each line of a text to be a JSON value.
void demandJsonLines(std::string_view text);

/// Which elements have no end tag.
enum class MarkupKind : bool { html, xml };

/// Holds a text to be well-formed markup in UTF-8: tags nest, values of attributes are quoted, names begin with a
/// letter, nothing but known entities follows an ampersand, and no character may not occur in it. A fault where it is
/// not.
void demandMarkup(std::string_view text, MarkupKind kind);

} // namespace kestrel::fuzz
